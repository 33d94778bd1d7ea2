#include "standin/coverservices/DiscCovers.hpp"

#include <arpa/inet.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>

#include "demo/Cover.hpp"
#include "standin/coverservices/CoverServices.hpp"
#include "standin/coverservices/DiscContents.hpp"
#include "standin/hostobjects/PublicWeb.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace {

using standin::DiscCovers;
using standin::TocOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kDisc = "2+96+12C+20D";

class CoversOfDiscs : public testing::Test {
 protected:
  CoversOfDiscs() {
    house.settings.save("covers.ini", "services", "metadata", services.address());
    house.settings.save("covers.ini", "services", "covers", services.address() + "/");
    services.stored = engine::demo::CoverPng(1, 300);
  }
  std::unique_ptr<DiscCovers> made(std::chrono::milliseconds pause = std::chrono::milliseconds(0)) {
    return std::make_unique<DiscCovers>(house, folder.path() / "discs", pause);
  }
  std::unique_ptr<DiscCovers> switchedOn(std::chrono::milliseconds pause = std::chrono::milliseconds(0)) {
    auto covers = made(pause);
    covers->switchTo(true);
    return covers;
  }

  support::CoverServices services;
  support::TempFolder folder;
  standin::House house{folder.path() / "house"};
};

TEST_F(CoversOfDiscs, AreAskedOfNobodyUntilTheOwnerHasSwitchedThemOn) {
  const auto covers = made();
  EXPECT_FALSE(covers->on());
  EXPECT_EQ(covers->about(kDisc), std::nullopt);
  EXPECT_EQ(covers->cover(support::CoverServices::kRelease, true), std::nullopt);
  EXPECT_TRUE(services.asked().empty());
  covers->switchTo(true);
  EXPECT_TRUE(made()->on()) << "after a start too";
  covers->switchTo(false);
  EXPECT_EQ(covers->about(kDisc), std::nullopt);
}

TEST_F(CoversOfDiscs, AreFoundByTheDiscsContentsAndAskedForOnce) {
  const auto covers = switchedOn();
  const std::string about = covers->about(kDisc).value_or("");
  EXPECT_GE(about.size(), 50U) << "a shorter text is taken for none";
  EXPECT_THAT(about,
              HasSubstr(std::string("<largeCoverParams>?large=") + support::CoverServices::kRelease + "<"));
  EXPECT_THAT(about,
              HasSubstr(std::string("<smallCoverParams>?small=") + support::CoverServices::kRelease + "<"));
  EXPECT_EQ(covers->cover(support::CoverServices::kRelease, true), services.stored);
  EXPECT_EQ(covers->cover(support::CoverServices::kRelease, false), services.stored);
  EXPECT_THAT(services.agent(), HasSubstr("Vantorix-Media-Player/"));
  const auto first = services.asked();
  EXPECT_THAT(first, ElementsAre("/ws/2/discid/-?toc=1+2+525+150+300&cdstubs=no&fmt=json",
                                 "/release/76df3287-6cda-33eb-8e9a-044b5e15ffdd/front-1200",
                                 "/release/76df3287-6cda-33eb-8e9a-044b5e15ffdd/front-250"));
  EXPECT_EQ(covers->about(kDisc), about);
  EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), services.stored);
  EXPECT_EQ(services.asked(), first) << "kept, after a start too";
}

TEST_F(CoversOfDiscs, AreAskedForWithAPauseInBetween) {
  const auto pause = std::chrono::milliseconds(120);
  const auto covers = switchedOn(pause);
  const auto begin = std::chrono::steady_clock::now();
  covers->about(kDisc);
  covers->about("1+96+12C");
  covers->cover(support::CoverServices::kRelease, true);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 2 * pause);
  EXPECT_EQ(services.asked().size(), 3U);
}

TEST_F(CoversOfDiscs, ThatNobodyKnowsAreNotAskedForAgainAtOnce) {
  services.disc = [](httplib::Response& answer) { answer.status = 404; };
  const auto covers = switchedOn();
  EXPECT_EQ(covers->about(kDisc), std::nullopt);
  EXPECT_EQ(covers->about(kDisc), std::nullopt);
  EXPECT_EQ(services.asked().size(), 1U);
}

TEST_F(CoversOfDiscs, ComeToNothingWhenTheServiceAnswersAnythingElse) {
  const auto answered = [&](const std::string& text) {
    services.disc = [text](httplib::Response& answer) { answer.set_content(text, "text/html"); };
    return switchedOn()->about(kDisc).has_value();
  };
  for (const char* text : {"<html><body>Please sign in</body></html>", "{", "[]", "{\"releases\": 1}",
                           R"({"releases": [1, {"id": 7}, {"id": "../../etc/passwd"}]})", ""})
    EXPECT_FALSE(answered(text)) << text;
  const std::string good =
      R"({"releases": [{"id": "76df3287-6cda-33eb-8e9a-044b5e15ffdd", "cover-art-archive": {"front": true}}]})";
  EXPECT_FALSE(answered(std::string(std::size_t{2} << 20U, ' ') + good)) << "too long";
  EXPECT_FALSE(answered(std::string(500'000, '['))) << "as deep as it is long";
  const std::string deep = std::string(500'000, '[') + std::string(500'000, ']');
  EXPECT_FALSE(answered(R"({"releases": [{"id": "76df3287-6cda-33eb-8e9a-044b5e15ffdd",
                            "cover-art-archive": )" +
                        deep + "}]}"))
      << "well-formed, and deeper than the stack";
  EXPECT_TRUE(answered(std::string(2000, ' ') + good));
}

TEST_F(CoversOfDiscs, AreNoneWhereAPictureIsNoneOrHasNoEnd) {
  services.picture = [](httplib::Response& answer) {
    answer.set_content("<html>no picture</html>", "image/jpeg");
  };
  EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), std::nullopt);
  const std::string cut = services.stored.substr(0, services.stored.size() / 2);
  services.picture = [cut](httplib::Response& answer) { answer.set_content(cut, "image/jpeg"); };
  EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), std::nullopt);
  services.picture = [](httplib::Response& answer) {
    answer.set_content_provider(1000, "image/jpeg", [](std::size_t, std::size_t, httplib::DataSink& sink) {
      sink.write("\xFF\xD8\xFF", 3);
      return false;  // cut off in the middle
    });
  };
  EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), std::nullopt);
}

TEST_F(CoversOfDiscs, AreReadNoFurtherThanAPictureMayBeLong) {
  std::atomic<std::size_t> sent = 0;
  services.picture = [&sent](httplib::Response& answer) {
    answer.set_chunked_content_provider("image/jpeg", [&sent](std::size_t, httplib::DataSink& sink) {
      const std::string piece(std::size_t{64} << 10U, '\xFF');
      if (!sink.write(piece.data(), piece.size())) return false;
      sent += piece.size();
      return true;
    });
  };
  EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), std::nullopt);
  EXPECT_LT(sent, std::size_t{64} << 20U) << "and what lies in between on the way";
}

TEST_F(CoversOfDiscs, WaitForATurnWithoutBeingTakenForUnknown) {
  const auto covers = switchedOn(std::chrono::seconds(6));
  ASSERT_TRUE(covers->about(kDisc).has_value());
  EXPECT_TRUE(support::Eventually([&] { return covers->about("1+96+12C").has_value(); }));
}

TEST_F(CoversOfDiscs, AreNotLookedForWhereAServiceSendsTheHouseIntoItsOwnNetwork) {
  support::CoverServices neighbour;
  neighbour.stored = services.stored;
  const auto whyNot = [&](const std::string& place) -> std::string {
    services.picture = [place](httplib::Response& answer) { answer.set_redirect(place, 302); };
    EXPECT_EQ(switchedOn()->cover(support::CoverServices::kRelease, true), std::nullopt) << place;
    try {
      standin::FetchPublic(services.address() + "/release/x", {.userAgent = "test", .neighbours = [] {
                                                                 return std::vector<standin::NetPrefix>{
                                                                     *standin::ReadPrefix("2001:db8:1::/64"),
                                                                     *standin::ReadPrefix("198.51.100.0/24")};
                                                               }});
    } catch (const base::Failure& failure) {
      return failure.description();
    }
    return "it was followed";
  };
  for (const std::string& place :
       {neighbour.address() + "/archive/picture", std::string("http://10.0.0.1/p.jpg"),
        std::string("http://[::1]/p.jpg"), std::string("http://[2001:db8:1::5]/p.jpg"),
        std::string("http://198.51.100.77/p.jpg")})
    EXPECT_EQ(whyNot(place), "It leads on into a house's own network") << place;
  EXPECT_EQ(whyNot("file:///etc/passwd"), "It leads on to what is no page of the web");
  EXPECT_EQ(whyNot(services.address() + "/release/round-and-round"), "It leads on and on");
}

TEST_F(CoversOfDiscs, DoNotWaitForAServiceThatDoesNotAnswer) {
  services.disc = [](httplib::Response& answer) {
    answer.set_content_provider(1000, "application/json",
                                [](std::size_t, std::size_t, httplib::DataSink& sink) {
                                  std::this_thread::sleep_for(std::chrono::milliseconds(20));
                                  return sink.write(" ", 1);
                                });
  };
  EXPECT_THROW(standin::FetchPublic(services.address() + "/ws/2/discid/-",
                                    {.userAgent = "test", .limit = std::chrono::milliseconds(200)}),
               base::Failure);
}

TEST_F(CoversOfDiscs, AreNotWaitedForAtTheEnd) {
  std::promise<void> asked;
  std::promise<void> over;
  services.disc = [&](httplib::Response&) {
    asked.set_value();
    over.get_future().wait();
  };
  const auto covers = switchedOn(std::chrono::seconds(4));
  auto answer = std::async(std::launch::async, [&] { return covers->about(kDisc); });
  asked.get_future().wait();
  auto nextTurn = std::async(std::launch::async, [&] { return covers->about("1+96+12C"); });
  covers->end();
  EXPECT_EQ(answer.get(), std::nullopt);
  EXPECT_EQ(nextTurn.get(), std::nullopt);
  EXPECT_EQ(covers->cover(support::CoverServices::kRelease, true), std::nullopt);
  EXPECT_EQ(services.asked().size(), 1U);
  over.set_value();
}

TEST(ADiscsContents, AreReadAsThePlayerTellsThem) {
  EXPECT_EQ(TocOf("2+96+12C+20D"), "1+2+525+150+300");
  EXPECT_EQ(TocOf("2 96 12C 20D"), "1+2+525+150+300") << "as an address brings it";
  for (const char* none : {"", "+", "2", "2+96+12C", "2+96+12C+20D+300", "2+12C+96+20D", "0+96", "64+96+12C",
                           "2+96+12C+FFFFFFFF", "2+96+12C+20D&x=1", "2+96++20D", "x"})
    EXPECT_EQ(TocOf(none), std::nullopt) << none;
}

/// An address as a socket takes it.
struct Place {
  explicit Place(const char* text) {
    auto& four = reinterpret_cast<sockaddr_in&>(bytes);
    auto& six = reinterpret_cast<sockaddr_in6&>(bytes);
    bytes.ss_family = AF_INET;
    if (inet_pton(AF_INET, text, &four.sin_addr) == 1) return;
    bytes.ss_family = AF_INET6;
    EXPECT_EQ(inet_pton(AF_INET6, text, &six.sin6_addr), 1) << text;
  }
  [[nodiscard]] const sockaddr& address() const { return reinterpret_cast<const sockaddr&>(bytes); }
  sockaddr_storage bytes{};
};

TEST(TheNetwork, HasPartsThatBeginWithTheSameBits) {
  const auto holds = [](const char* prefix, const char* place) {
    const auto read = standin::ReadPrefix(prefix);
    EXPECT_TRUE(read) << prefix;
    return read && read->holds(Place(place).address());
  };
  EXPECT_TRUE(holds("2001:db8:1::/64", "2001:db8:1::1"));
  EXPECT_FALSE(holds("2001:db8:1::/64", "2001:db8:1:1::1"));
  EXPECT_TRUE(holds("2001:db8:1::/63", "2001:db8:1:1::1"));
  EXPECT_TRUE(holds("198.51.100.64/26", "198.51.100.127"));
  EXPECT_FALSE(holds("198.51.100.64/26", "198.51.100.128"));
  EXPECT_FALSE(holds("198.51.100.64/26", "2001:db8:1::1"));
  for (const char* none :
       {"", "/", "2001:db8::", "2001:db8::/129", "198.51.100.0/33", "198.51.100.0/-1", "x/8"})
    EXPECT_FALSE(standin::ReadPrefix(none)) << none;
  const auto here = standin::PrefixesHere();
  EXPECT_TRUE(std::any_of(here.begin(), here.end(), [](const standin::NetPrefix& each) {
    return each.holds(Place("127.0.0.1").address());
  })) << "every machine is in its own";
}

TEST(TheNetwork, LeadsNobodyFromASafeConnectionToAnOpenOne) {
  using standin::WhyNotOn;
  EXPECT_EQ(WhyNotOn("http://a/x", "http://b/y"), "");
  EXPECT_EQ(WhyNotOn("http://a/x", "HTTPS://b/y"), "");
  EXPECT_EQ(WhyNotOn("https://a/x", "https://b/y"), "");
  EXPECT_EQ(WhyNotOn("HTTPS://a/x", "http://a/x"), "It leads on from a safe connection to an open one");
  for (const char* other : {"file:///etc/passwd", "ftp://a/x", "gopher://a/x", ""})
    EXPECT_EQ(WhyNotOn("http://a/x", other), "It leads on to what is no page of the web") << other;
}

TEST(TheNetwork, IsPublicWhereItBelongsToNoHouse) {
  const auto isPublic = [](const char* text) { return standin::IsPublicAddress(Place(text).address()); };
  for (const char* each : {"8.8.8.8", "142.132.240.1", "172.32.0.1", "2a01:4f8::1", "2607:f8b0::5"})
    EXPECT_TRUE(isPublic(each)) << each;
  for (const char* each :
       {"127.0.0.1", "10.1.2.3", "172.16.0.1", "172.31.255.255", "192.168.1.1", "169.254.1.1", "100.64.0.1",
        "0.0.0.0", "224.0.0.1", "255.255.255.255", "::1", "::", "fe80::1", "fc00::1", "fd12::1", "ff02::1",
        "::ffff:127.0.0.1", "64:ff9b::7f00:1", "2002:7f00:1::"})
    EXPECT_FALSE(isPublic(each)) << each;
}

}  // namespace
