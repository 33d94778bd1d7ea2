// The host's operations that take their time: waits, and pages of the web.
#include <gtest/gtest.h>
#include <httplib.h>

#include <functional>
#include <string>
#include <thread>

#include "base/Failure.hpp"
#include "standin/hostobjects/HostHouse.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"
#include "standin/house/Quotas.hpp"
#include "support/FailureNumber.hpp"
#include "support/TestCertificate.hpp"
#include "support/faults/SilentServer.hpp"

namespace standin {
namespace {

class HostWaiting : public support::HostHouse {};

TEST_F(HostWaiting, WaitSecsTurnsTheLoopWhileItLasts) {
  int ticks = 0;
  const auto timer = loop.makeTimer(std::chrono::milliseconds(50), [&] { ++ticks; });
  timer->enabled(true);
  const auto begin = loop.now();
  call("WaitSecs", {std::int16_t{1}});
  EXPECT_GE(loop.now() - begin, std::chrono::milliseconds(1000));
  EXPECT_GE(ticks, 3);
}

TEST_F(HostWaiting, WaitSecsEndsWhenTheLoopIsAskedToQuit) {
  const auto timer = loop.makeTimer(std::chrono::milliseconds(50), [&] { loop.quit(0); });
  timer->enabled(true);
  const auto begin = loop.now();
  call("WaitSecs", {std::int16_t{3600}});
  EXPECT_LT(loop.now() - begin, std::chrono::seconds(60));
  EXPECT_EQ(loop.run(), 0);
}

TEST_F(HostWaiting, WaitsWithinWaitsAreLimited) {
  int depth = 0;
  std::int32_t failure = 0;
  std::function<void()> wait = [&] {
    ++depth;
    loop.post(wait);
    failure = std::max(failure, support::FailureNumberOf([&] { call("WaitSecs", {std::int16_t{1}}); }));
    if (failure != 0) loop.quit(0);
  };
  wait();
  EXPECT_EQ(failure, base::number::kInternal);
  EXPECT_EQ(depth, 51);
}

TEST_F(HostWaiting, OfProgramsOtherThanThePlugInAreFewAndShort) {
  LoopWaits theirs{loop, speech, LoopWaits::kFetchLimit, [] { return true; }};
  const auto refusal = [&](int seconds) {
    return support::FailureNumberOf([&] { theirs.seconds(seconds); });
  };
  EXPECT_EQ(refusal(6), base::number::kInternal);
  int begun = 0;
  int refused = 0;
  const std::function<void()> wait = [&] {
    ++begun;
    loop.post(wait);
    refused = std::max(refused, refusal(5));
    loop.quit(0);  // the rest need not be waited for
  };
  wait();
  EXPECT_EQ(refused, base::number::kInternal);
  EXPECT_EQ(begun, LoopWaits::kMostOfStrangers + 1);
}

TEST_F(HostWaiting, WhoHasATextSaidAndWaitsIsOneOfThem) {
  LoopWaits theirs{loop, speech, LoopWaits::kFetchLimit, [] { return true; }};
  int refused = 0;
  int begun = 0;
  const std::function<void()> wait = [&] {
    if (++begun > LoopWaits::kMostOfStrangers) {
      refused = support::FailureNumberOf([&] { theirs.speak("One more", true); });
      return loop.quit(0);
    }
    loop.post(wait);
    theirs.seconds(5);
  };
  wait();
  EXPECT_EQ(refused, base::number::kInternal);
}

TEST_F(HostWaiting, GetUrlAnswersTheBodyByteForByteWhileTheLoopTurns) {
  httplib::Server web;
  const std::string body("a\0\xFF<b>c</b>", 11);
  web.Get("/cover/x y", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content(body, "image/jpeg");
  });
  const int port = web.bind_to_any_port("127.0.0.1");
  std::thread thread([&] { web.listen_after_bind(); });
  EXPECT_EQ(text("GetUrl", {"127.0.0.1", "/cover/x y", false, port}), body);
  EXPECT_EQ(text("GetUrl", {"127.0.0.1", "cover/x y", true, port}), std::string("a\0\xFF"
                                                                                "c",
                                                                                4));
  EXPECT_EQ(support::FailureNumberOf([&] {
              call("GetUrl", {"127.0.0.1", "/none", false, port});
            }),
            base::number::kDeviceIo);
  web.stop();
  thread.join();
}

TEST_F(HostWaiting, FetchesWithinFetchesEndTogetherWhenTheLoopIsAskedToQuit) {
  constexpr int kWithin = 40;
  const support::SilentServer server;
  LoopWaits patient{loop, speech, std::chrono::minutes(10)};
  int begun = 0;
  int ended = 0;
  base::Milliseconds begin{};
  std::function<void()> fetch = [&] {
    if (++begun < kWithin) {
      loop.post(fetch);
    } else {
      begin = loop.now();
      loop.quit(0);
    }
    EXPECT_EQ(support::FailureNumberOf([&] { patient.fetch("127.0.0.1", "/", server.port(), ""); }),
              base::number::kDeviceIo);
    ++ended;
  };
  fetch();
  EXPECT_EQ(ended, kWithin);
  EXPECT_LT(loop.now() - begin, std::chrono::seconds(kWithin / 2))
      << "one after the other each takes a second";
}

TEST_F(HostWaiting, AnAddressThatIsNoneIsRefusedBeforeAnybodyIsAsked) {
  const std::string blanks(kLongestPlainText + 1, ' ');
  for (const base::Args& args : {base::Args{blanks, "/"}, base::Args{"127.0.0.1", blanks}})
    EXPECT_EQ(support::FailureNumberOf([&] { call("GetUrl", args); }), base::number::kOverflow);
}

TEST(AnAddressOfThePlayers, OfManyBlanksIsWrittenInOneGo) {
  constexpr std::size_t kMany = std::size_t{4} << 20U;
  const std::string url = UrlOf("house", "/" + std::string(kMany, ' '), 80);
  EXPECT_EQ(url.size(), std::string("http://house:80/").size() + 3 * kMany);
  EXPECT_EQ(url.find(' '), std::string::npos);
}

TEST(AnAddressOfThePlayers, KeepsTheSchemeAndThePortThatItNames) {
  EXPECT_EQ(UrlOf("127.0.0.1", "cover/x y", 8080), "http://127.0.0.1:8080/cover/x%20y");
  EXPECT_EQ(UrlOf("http://meta.example", "/redir/a.asp?cd=1+2", 80),
            "http://meta.example:80/redir/a.asp?cd=1+2");
  EXPECT_EQ(UrlOf("http://meta.example:8080", "/a", 80), "http://meta.example:8080/a");
  EXPECT_EQ(UrlOf("HTTP://meta.example:8080/cover/?large=x", "", 80),
            "http://meta.example:8080/cover/?large=x");
  EXPECT_EQ(UrlOf("https://meta.example/cover/x", "", 80), "https://meta.example/cover/x");
  EXPECT_EQ(UrlOf("http://[::1]:8080/cover/x", "", 80), "http://[::1]:8080/cover/x");
  EXPECT_EQ(UrlOf("[::1]", "", 80), "http://[::1]:80/");
  EXPECT_EQ(UrlOf("http://meta.example/", "/a", 80), "http://meta.example:80/a");
}

TEST_F(HostWaiting, GetUrlAsksTheHouseItselfForCoversWhereItsMachineIsNamedWithoutAPort) {
  httplib::Server web;
  web.Get("/redir/GetMDRCD.asp", [&](const httplib::Request& request, httplib::Response& response) {
    response.set_content("about " + request.get_param_value("cd"), "text/xml");
  });
  web.Get("/cover/", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content("a cover", "image/jpeg");
  });
  house.webPort = web.bind_to_any_port("127.0.0.1");
  std::thread thread([&] { web.listen_after_bind(); });
  constexpr std::int16_t kUsual = 80;
  EXPECT_EQ(text("GetUrl", {"http://127.0.0.1", "/redir/GetMDRCD.asp?locale=409&cd=1+96", false, kUsual}),
            "about 1 96");
  EXPECT_EQ(text("GetUrl", {"HTTP://127.0.0.1/cover/?large=x", "", false, kUsual}), "a cover");
  EXPECT_NE(support::FailureNumberOf([&] {
              call("GetUrl", {"http://127.0.0.1:1/cover/?large=x", "", false, kUsual});
            }),
            0)
      << "a port that is named is kept";
  web.stop();
  thread.join();
}

TEST_F(HostWaiting, GetUrlAsksAHouseThatSpeaksHttpsByItsCertificate) {
  const support::TestCertificate made(folder.path());
  httplib::SSLServer web(made.certificate.c_str(), made.key.c_str());
  web.Get("/cover/", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content("a cover", "image/jpeg");
  });
  house.webPort = web.bind_to_any_port("127.0.0.1");
  std::thread thread([&] { web.listen_after_bind(); });
  constexpr std::int16_t kUsual = 80;
  const base::Array asked{"http://127.0.0.1", "/cover/?large=x", false, kUsual};
  house.webCertificate = made.certificate;
  EXPECT_EQ(text("GetUrl", asked), "a cover");
  house.webCertificate.clear();
  EXPECT_NE(support::FailureNumberOf([&] { call("GetUrl", asked); }), 0) << "it speaks nothing else";
  web.stop();
  thread.join();
}

TEST_F(HostWaiting, GetUrlAsksTheHouseForCoversWhereItListensThoughItsMachineIsNamed) {
  httplib::Server web;
  web.Get("/redir/GetMDRCD.asp", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content("about it", "text/xml");
  });
  web.Get("/cover/", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content("a cover", "image/jpeg");
  });
  house.webHost = "127.0.0.2";
  house.webPort = web.bind_to_any_port(house.webHost);
  std::thread thread([&] { web.listen_after_bind(); });
  constexpr std::int16_t kUsual = 80;
  for (const char* name : {"localhost", "127.0.0.1", "[::1]", "127.0.0.2"}) {
    const std::string host = std::string("http://") + name;
    EXPECT_EQ(text("GetUrl", {host, "/redir/GetMDRCD.asp?locale=409&cd=1+96", false, kUsual}), "about it");
    EXPECT_EQ(text("GetUrl", {"HTTP" + host.substr(4) + "/cover/?large=x", "", false, kUsual}), "a cover");
  }
  web.stop();
  thread.join();
}

}  // namespace
}  // namespace standin
