#include "standin/house/LiveFeed.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace {

using standin::LiveFeed;
using std::chrono::milliseconds;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr milliseconds kAtOnce{0};
constexpr const char* kReload = "event: reload\ndata: {}\n\n";
constexpr const char* kAlive = "event: alive\ndata: {}\n\n";

/// The name of the last event in what was heard.
std::string LastOf(const std::string& heard) {
  const auto at = heard.rfind("id: ") + 4;
  return heard.substr(at, heard.find('\n', at) - at);
}

TEST(LiveFeed, AReaderHearsWhatIsToldAfterItCame) {
  LiveFeed feed;
  feed.tell("device", "1");
  LiveFeed::Reader reader(feed);
  feed.tell("device", "2");
  const std::string heard = reader.wait(kAtOnce);
  EXPECT_THAT(heard, EndsWith("event: device\ndata: 2\n\n"));
  EXPECT_THAT(heard, Not(HasSubstr("data: 1")));
  EXPECT_EQ(reader.wait(kAtOnce), kAlive);
  feed.close();
  EXPECT_EQ(reader.wait(std::chrono::hours(1)), "");
}

TEST(LiveFeed, WhatIsForTheOwnerAloneNobodyElseHears) {
  LiveFeed feed;
  LiveFeed::Reader guest(feed);
  LiveFeed::Reader owner(feed, {}, {}, LiveFeed::Audience::kOwner);
  feed.tell("log", "for all");
  feed.tell("log", "for the owner", LiveFeed::Audience::kOwner);
  const std::string heard = guest.wait(kAtOnce);
  EXPECT_THAT(heard, EndsWith("data: for all\n\n"));
  EXPECT_THAT(heard, Not(HasSubstr("owner")));
  EXPECT_EQ(guest.wait(kAtOnce), kAlive);
  feed.tell("log", "a secret", LiveFeed::Audience::kOwner);
  EXPECT_EQ(guest.wait(kAtOnce), kAlive) << "it is no end either";
  EXPECT_THAT(owner.wait(kAtOnce), HasSubstr("data: for the owner\n\n"));
  // Nor does one that comes back and has missed it.
  LiveFeed::Reader again(feed, {}, LastOf(heard));
  EXPECT_EQ(again.wait(kAtOnce), kAlive);
  feed.tell("log", "more");
  EXPECT_THAT(again.wait(kAtOnce), EndsWith("data: more\n\n"));
}

TEST(LiveFeed, AReaderThatFallsBehindIsToldToLoadAnew) {
  LiveFeed feed({.kept = 4});
  LiveFeed::Reader reader(feed);
  for (int i = 0; i < 6; ++i) feed.tell("n", std::to_string(i));
  EXPECT_THAT(reader.wait(kAtOnce), EndsWith(kReload));
  feed.tell("n", "6");
  EXPECT_THAT(reader.wait(kAtOnce), EndsWith("event: n\ndata: 6\n\n"));
}

TEST(LiveFeed, KeepsSoManyBytesOfEvents) {
  LiveFeed feed({.bytes = 1000});
  LiveFeed::Reader reader(feed);
  for (int i = 0; i < 4; ++i) feed.tell("n", std::string(300, 'x'));
  EXPECT_THAT(reader.wait(kAtOnce), EndsWith(kReload)) << "the first is gone";
  feed.tell("n", std::string(300, 'y'));
  EXPECT_THAT(reader.wait(kAtOnce), HasSubstr(std::string(300, 'y')));
}

TEST(LiveFeed, AnEventThatIsTooLongHasThePagesLoadAnew) {
  LiveFeed feed({.longest = 100});
  LiveFeed::Reader reader(feed);
  feed.tell("n", std::string(200, 'x'));
  const std::string heard = reader.wait(kAtOnce);
  EXPECT_THAT(heard, EndsWith(kReload));
  EXPECT_THAT(heard, Not(HasSubstr("x")));
  feed.tell("n", "short");
  EXPECT_THAT(reader.wait(kAtOnce), EndsWith("event: n\ndata: short\n\n"));
}

TEST(LiveFeed, APageWhoseStreamWasCutHearsWhatItHasMissedOnce) {
  LiveFeed feed;
  std::string last;
  {
    LiveFeed::Reader reader(feed);
    feed.tell("n", "1");
    last = LastOf(reader.wait(kAtOnce));
  }
  feed.tell("n", "2");
  feed.tell("n", "3");
  LiveFeed::Reader again(feed, {}, last);
  const std::string heard = again.wait(kAtOnce);
  EXPECT_THAT(heard, HasSubstr("data: 2\n"));
  EXPECT_THAT(heard, EndsWith("data: 3\n\n"));
  EXPECT_THAT(heard, Not(HasSubstr("data: 1\n")));
  LiveFeed::Reader third(feed, {}, LastOf(heard));
  EXPECT_EQ(third.wait(kAtOnce), kAlive);
}

TEST(LiveFeed, APageThatWasAwayForTooLongOrHeardAnotherServerLoadsAnew) {
  LiveFeed feed({.kept = 2});
  LiveFeed other;
  other.tell("n", "1");
  LiveFeed::Reader listener(feed);
  feed.tell("n", "1");
  const std::string last = LastOf(listener.wait(kAtOnce));
  for (int i = 2; i < 9; ++i) feed.tell("n", std::to_string(i));
  for (const std::string& heard : {last, std::string("0.0"), std::string("nonsense"), last + "999"}) {
    LiveFeed::Reader reader(feed, {}, heard);
    const std::string answer = reader.wait(kAtOnce);
    EXPECT_THAT(answer, EndsWith(kReload)) << heard;
    // From there on it is one like all others.
    EXPECT_EQ(LiveFeed::Reader(feed, {}, LastOf(answer)).wait(kAtOnce), kAlive) << heard;
  }
}

TEST(LiveFeed, ReadersAreCountedInAllAndByBrowser) {
  LiveFeed feed({.readers = 3, .ofSession = 2, .forOwner = 0});
  const LiveFeed::Reader first(feed, "a");
  {
    const LiveFeed::Reader second(feed, "a");
    EXPECT_TRUE(second.admitted());
    EXPECT_FALSE(LiveFeed::Reader(feed, "a").admitted());
    const LiveFeed::Reader third(feed, "b");
    EXPECT_TRUE(third.admitted());
    EXPECT_FALSE(LiveFeed::Reader(feed, "c").admitted());
    EXPECT_EQ(feed.readers(), 3U);
    EXPECT_EQ(feed.readersOf("a"), 2U);
  }
  EXPECT_EQ(feed.readersOf("a"), 1U);
  EXPECT_EQ(feed.readersOf("b"), 0U);
  EXPECT_EQ(feed.readers(), 1U);
  EXPECT_TRUE(LiveFeed::Reader(feed, "a").admitted());
}

TEST(LiveFeed, GuestsLeavePlacesForTheOwner) {
  LiveFeed feed({.readers = 4, .ofSession = 4, .forOwner = 2});
  constexpr auto kGuests = LiveFeed::Audience::kAll;
  constexpr auto kOwner = LiveFeed::Audience::kOwner;
  const LiveFeed::Reader page(feed, "owner", {}, kOwner);
  const LiveFeed::Reader guest(feed, "guest", {}, kGuests);
  std::optional<LiveFeed::Reader> other(std::in_place, feed, "other guest", "", kGuests);
  EXPECT_TRUE(other->admitted()) << "the owner's pages lie in his own places first";
  EXPECT_FALSE(LiveFeed::Reader(feed, "third guest", {}, kGuests).admitted());
  {
    const LiveFeed::Reader another(feed, "owner", {}, kOwner);
    EXPECT_TRUE(another.admitted());
    EXPECT_FALSE(LiveFeed::Reader(feed, "owner", {}, kOwner).admitted()) << "of all there are so many";
  }
  other.reset();
  EXPECT_TRUE(LiveFeed::Reader(feed, "third guest", {}, kGuests).admitted()) << "one has gone";
}

TEST(LiveFeed, OfFewerPlacesThanAreTheOwnersGuestsGetNone) {
  LiveFeed feed({.readers = 1, .forOwner = 2});
  EXPECT_FALSE(LiveFeed::Reader(feed, "guest").admitted());
  EXPECT_TRUE(LiveFeed::Reader(feed, "owner", {}, LiveFeed::Audience::kOwner).admitted());
}

}  // namespace
