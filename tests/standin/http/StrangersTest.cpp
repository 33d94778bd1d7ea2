// What the server does about those who try: it counts refused posts, and makes guessing slow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/WebHouse.hpp"

namespace {

using support::WebClient;
using testing::ElementsAre;

std::vector<std::string> RefusalsIn(standin::House& house) {
  std::vector<std::string> found;
  for (const standin::LogLine& line : house.log.newest(100, "Warning"))
    if (line.text.find("refused") != std::string::npos) found.push_back(line.text);
  return found;
}

TEST(Strangers, WhosePostsAreRefusedAreCountedInTheLog) {
  support::WebHouse house(std::chrono::hours(24));
  WebClient stranger(house.port());
  const auto toldOf = [&] {
    std::vector<std::string> told;
    house.onLoop([&](standin::House& all) { told = RefusalsIn(all); });
    return told;
  };
  const auto deletes = [&] { return stranger.postForm("/WMP_PListEdit", "button=Delete+List"); };
  EXPECT_EQ(deletes(), 401);
  EXPECT_TRUE(support::Eventually([&] { return !toldOf().empty(); }));
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(deletes(), 401);
    EXPECT_EQ(stranger.postText("/WMP_Setup", "a=b", WebClient::kForm, {{"Origin", "http://evil.example"}}),
              403);
    EXPECT_EQ(stranger.postText("/WMP_Setup", "a=b", WebClient::kForm,
                                {{"Origin", "http://evil.example"}, {"Host", "evil.example"}}),
              403);
  }
  EXPECT_THAT(toldOf(), ElementsAre("1 post refused: 1 without session"));
  // All others are one line, written at the latest when the server ends.
  EXPECT_THAT(
      RefusalsIn(house.end()),
      ElementsAre(
          "1 post refused: 1 without session",
          "60 posts refused: 20 from another origin, 20 with a foreign host name, 20 without session"));
}

TEST(Strangers, WhoGuessPasswordsAreSlowedDownAndNobodyElseIs) {
  support::WebHouse house;
  house.onLoop([](standin::House& all) {
    all.users.setHash(standin::kFirstUser, standin::HashPassword("s3cret-enough"));
    all.users.setHash(standin::kGuest, standin::kAdmitted);
  });
  WebClient stranger(house.port());
  const auto tries = [&](const char* name, const char* password) {
    return stranger.post("/api/login", {{"name", name}, {"password", password}});
  };
  for (int i = 0; i < 5; ++i) EXPECT_EQ(tries("owner", "wrong"), 403);
  EXPECT_EQ(tries("Owner", "s3cret-enough"), 429);
  EXPECT_EQ(tries("guest", ""), 200);
  house.wait(std::chrono::seconds(1));
  EXPECT_EQ(tries("owner", "wrong"), 403);
  house.wait(std::chrono::seconds(1));
  EXPECT_EQ(tries("owner", "s3cret-enough"), 429);  // each wrong one makes the next wait longer
  house.wait(std::chrono::seconds(1));
  EXPECT_EQ(tries("owner", "s3cret-enough"), 200);
}

TEST(Strangers, WhoGuessFromManyAddressesAreSlowedDownTogetherAndTheOwnerIsNot) {
  support::WebHouse house;
  house.onLoop([](standin::House& all) {
    all.users.setHash(standin::kFirstUser, standin::HashPassword("s3cret-enough"));
  });
  WebClient owner(house.port());
  owner.cookie = house.sessionOf("owner");
  const auto triesFrom = [&](int address, const char* password) {
    WebClient stranger(house.port());
    stranger.raw().set_interface("127.0.1." + std::to_string(address));
    return stranger.post("/api/login", {{"name", "owner"}, {"password", password}});
  };
  for (int i = 1; i <= 60; ++i) EXPECT_EQ(triesFrom(i, "wrong"), 403) << i;
  EXPECT_EQ(triesFrom(61, "s3cret-enough"), 429);
  EXPECT_EQ(owner.post("/api/password", {{"old", "s3cret-enough"}, {"password", "another-one"}}), 200);
  EXPECT_EQ(owner.post("/api/login", {{"name", "owner"}, {"password", "another-one"}}), 200);
  house.wait(std::chrono::seconds(1));
  EXPECT_EQ(triesFrom(61, "another-one"), 200);
}

TEST(Strangers, ANameThatNobodyCouldHaveIsWrong) {
  support::WebHouse house;
  WebClient stranger(house.port());
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(stranger.post("/api/login", {{"name", std::string(60'000, 'x')}, {"password", ""}}), 403);
  EXPECT_EQ(stranger.post("/api/login", {{"name", std::string(60'000, 'x')}, {"password", ""}}), 429);
}

}  // namespace
