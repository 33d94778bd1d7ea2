#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "base/Failure.hpp"
#include "bus/PollLoop.hpp"
#include "standin/Options.hpp"
#include "standin/house/LoopGate.hpp"
#include "standin/http/WebRules.hpp"
#include "standin/routes/LoginLimit.hpp"
#include "standin/voice/VoicePattern.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

TEST(WebRules, OnlyTheServersOwnNamesAreAnswered) {
  const AllowedHosts local(false, {"house.example"});
  for (const char* host :
       {"localhost", "LOCALHOST:8080", "127.0.0.1:8080", "127.1.2.3", "[::1]:80", "House.Example:1"}) {
    EXPECT_TRUE(local.allows(host)) << host;
  }
  for (const char* host :
       {"", "evil.example", "localhost.evil.example", "192.168.1.5", "127.0.0.1.evil.example",
        "localhost:80:90", "[::1", "local host", "localhost:8x", "127.0.0.1@evil"}) {
    EXPECT_FALSE(local.allows(host)) << host;
  }
  const AllowedHosts open(true, {});
  EXPECT_TRUE(open.allows("192.168.1.5:8080"));
  EXPECT_FALSE(open.allows("evil.example"));
}

TEST(WebRules, AnOriginMustBeTheHostItself) {
  EXPECT_TRUE(SameOrigin("http://localhost:8080", "localhost:8080"));
  EXPECT_FALSE(SameOrigin("http://localhost:8081", "localhost:8080"));
  EXPECT_FALSE(SameOrigin("http://evil.example", "localhost:8080"));
  EXPECT_FALSE(SameOrigin("null", "localhost:8080"));
  EXPECT_FALSE(SameOrigin("", "localhost:8080"));
}

TEST(WebRules, DataIsLoadedByItsOwnPagesByReadersAndByOtherPrograms) {
  EXPECT_TRUE(MayLoadData({}));
  EXPECT_TRUE(MayLoadData({.site = "same-origin", .mode = "cors", .dest = "empty"}));
  EXPECT_TRUE(MayLoadData({.site = "none", .mode = "navigate", .dest = "document"}));
  EXPECT_TRUE(MayLoadData({.site = "cross-site", .mode = "navigate", .dest = "document"}));
  EXPECT_FALSE(MayLoadData({.site = "cross-site", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadData({.site = "same-site", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadData({.site = "cross-site", .mode = "cors", .dest = "empty"}));
}

TEST(WebRules, APageIsLoadedToBeShownAndForNothingElse) {
  EXPECT_TRUE(MayLoadPage({}));
  EXPECT_TRUE(MayLoadPage({.site = "none", .mode = "navigate", .dest = "document"}));
  EXPECT_TRUE(MayLoadPage({.site = "cross-site", .mode = "navigate", .dest = "document"}));
  EXPECT_FALSE(MayLoadPage({.site = "same-origin", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadPage({.site = "cross-site", .mode = "navigate", .dest = "iframe"}));
  EXPECT_FALSE(MayLoadPage({.site = "cross-site", .mode = "no-cors", .dest = "empty"}));
  EXPECT_FALSE(MayLoadPage(
      {.site = "cross-site", .mode = "navigate", .dest = "document", .purpose = "prefetch;prerender"}));
}

TEST(WebRules, ACookieIsFoundByItsWholeName) {
  EXPECT_EQ(CookieValue("a=1; vantorix=abc; b=2", "vantorix"), "abc");
  EXPECT_EQ(CookieValue("xvantorix=abc", "vantorix"), "");
  EXPECT_EQ(CookieValue("vantorix", "vantorix"), "");
}

TEST(WebRules, NoPathLeadsOutOfTheFolder) {
  const support::TempFolder folder;
  const auto root = folder.path() / "html";
  std::filesystem::create_directories(root / "images/Media Player");
  std::ofstream(root / "images/Media Player/x.gif") << "gif";
  std::ofstream(folder.path() / "secret") << "secret";
  std::filesystem::create_symlink(folder.path() / "secret", root / "link");
  std::filesystem::create_directory_symlink(folder.path(), root / "up");
  std::filesystem::create_symlink(root / "images/Media Player/x.gif", root / "inside");
  EXPECT_TRUE(FileBelow(root, "/images/Media Player/x.gif").has_value());
  EXPECT_TRUE(FileBelow(root, "/images\\Media Player\\x.gif").has_value());
  EXPECT_TRUE(FileBelow(root, "/inside").has_value());
  for (const std::string path :
       {"/../secret", "/images/../../secret", "/..\\secret", "/link", "/up/secret", "/", "", "/images",
        "/nothing", "//etc/passwd", "/./images/Media Player/x.gif"}) {
    EXPECT_FALSE(FileBelow(root, path).has_value()) << path;
  }
  EXPECT_FALSE(FileBelow(root, std::string("/inside\0x", 9)).has_value());
}

TEST(Voice, ChoicesAndOptionalWordsFit) {
  const VoicePattern pattern("(Play|Player) [No] (Stop|Next|Shuffle|Volume Up|Add to PlayList)");
  EXPECT_TRUE(pattern.fits("player no shuffle"));
  EXPECT_TRUE(pattern.fits("PLAY  volume up"));
  EXPECT_TRUE(pattern.fits("play add to playlist"));
  EXPECT_FALSE(pattern.fits("play volume"));
  EXPECT_FALSE(pattern.fits("play no"));
  EXPECT_FALSE(pattern.fits("please play stop"));
  EXPECT_FALSE(pattern.fits(""));
}

TEST(Voice, NestedAndBrokenPatternsAreNoDanger) {
  EXPECT_TRUE(VoicePattern("play [the (album|record) [named]] (blue|green night)")
                  .fits("play the record named green night"));
  EXPECT_TRUE(VoicePattern("play (blue|green").fits("play green"));
  EXPECT_TRUE(VoicePattern("play )").fits("play"));
  EXPECT_FALSE(VoicePattern("").fits("play"));
  std::string deep(100000, '(');
  EXPECT_FALSE(VoicePattern(deep).fits("play"));
  std::string optional;
  for (int i = 0; i < 200; ++i) optional += "[a] ";
  std::string said;
  for (int i = 0; i < 150; ++i) said += "a ";
  EXPECT_TRUE(VoicePattern(optional).fits(said));
  EXPECT_FALSE(VoicePattern(optional).fits(said + "b"));
}

TEST(LoopGate, WorkRunsOnTheLoopAndItsFailureComesBack) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::seconds(20));
  const auto home = std::this_thread::get_id();
  std::thread web([&] {
    std::thread::id ran;
    const auto outcome = gate.run([&](const auto& done) {
      ran = std::this_thread::get_id();
      done();
    });
    EXPECT_EQ(outcome, LoopGate::Outcome::kDone);
    EXPECT_EQ(ran, home);
    EXPECT_THROW(gate.run([](const auto&) { throw base::Failure(61); }), base::Failure);
    loop.post([&] { loop.quit(0); });
  });
  loop.run();
  web.join();
}

TEST(LoopGate, WorkThatComesTooLateIsNeverBegun) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::milliseconds(20));
  bool begun = false;
  EXPECT_EQ(gate.run([&](const auto&) { begun = true; }), LoopGate::Outcome::kTooLate);
  loop.pump();
  EXPECT_FALSE(begun);
}

TEST(LoopGate, AClosedGateAnswersAtOnce) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::minutes(5));
  std::atomic<bool> done = false;
  std::thread web([&] {
    EXPECT_EQ(gate.run([](const auto&) {}), LoopGate::Outcome::kClosed);
    done = true;
  });
  gate.close();
  web.join();
  EXPECT_TRUE(done);
}

TEST(LoginLimit, GuessingGetsSlower) {
  LoginLimit limit;
  LoginLimit::Time now{};
  for (int i = 0; i < 4; ++i) limit.failed(now);
  EXPECT_TRUE(limit.mayTry(now));
  limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now));
  now += std::chrono::seconds(1);
  EXPECT_TRUE(limit.mayTry(now));
  for (int i = 0; i < 100; ++i) limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now + std::chrono::seconds(63)));
  EXPECT_TRUE(limit.mayTry(now + std::chrono::seconds(64)));
  limit.succeeded();
  EXPECT_TRUE(limit.mayTry(now));
}

TEST(Options, AreReadAndWrongOnesRefused) {
  const Options options =
      ReadOptions({"--port", "0", "--data", "/tmp/x", "--allow-host", "a", "--allow-host", "b"});
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.data, "/tmp/x");
  EXPECT_EQ(options.allowedHosts, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(ReadOptions({}).port, 8080);
  EXPECT_EQ(ReadOptions({}).listen, "127.0.0.1");
  EXPECT_FALSE(ReadOptions({}).data.empty());
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"--port"}, {"--port", "70000"}, {"--port", "8x"}, {"--what"}, {"file"}}) {
    EXPECT_THROW(ReadOptions(wrong), base::Failure);
  }
}

}  // namespace
}  // namespace standin
