#include "standin/http/LiveStream.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "standin/routes/Visitors.hpp"

namespace standin {
namespace {

using testing::HasSubstr;

constexpr std::chrono::milliseconds kAtOnce{0};
constexpr LiveStream::Times kNoWait{.heartbeat = kAtOnce, .sessionCheck = std::chrono::hours(1)};

class ALiveStream : public testing::Test {
 protected:
  LiveFeed feed{{.kept = 4}};
  bool lives = true;
  LiveStream stream{feed, {.session = "a"}, [this] { return lives; }, kNoWait};
  const std::string first = stream.next();
};

TEST_F(ALiveStream, TellsAPageHowLongToWaitBeforeItComesAgain) { EXPECT_EQ(first, "retry: 1000\n\n"); }

TEST_F(ALiveStream, EndsWithItsSession) {
  feed.tell(kSessionsEnded, "{}");
  feed.tell("log", "for all");
  EXPECT_THAT(stream.next(), HasSubstr("for all")) << "it was another one's";
  lives = false;
  feed.tell(kSessionsEnded, "{}");
  feed.tell("log", "not for strangers");
  EXPECT_EQ(stream.next(), "");
}

TEST_F(ALiveStream, EndsWithItsSessionAlsoWhereItHasMissedTheNews) {
  feed.tell("log", "before");
  EXPECT_THAT(stream.next(), HasSubstr("before"));
  lives = false;
  feed.tell(kSessionsEnded, "{}");
  for (int i = 0; i < 6; ++i) feed.tell("log", "more than is kept");
  EXPECT_EQ(stream.next(), "");
}

TEST_F(ALiveStream, GoesOnWhereItHasOnlyFallenBehind) {
  for (int i = 0; i < 6; ++i) feed.tell("log", "more than is kept");
  EXPECT_THAT(stream.next(), HasSubstr("event: reload"));
  feed.tell("log", "news");
  EXPECT_THAT(stream.next(), HasSubstr("news"));
}

TEST(LiveStreams, LookNowAndThenWhetherTheirSessionHasGrownOld) {
  LiveFeed feed;
  bool lives = true;
  LiveStream stream(feed, {.session = "a"}, [&] { return lives; },
                    {.heartbeat = kAtOnce, .sessionCheck = kAtOnce});
  stream.next();
  EXPECT_THAT(stream.next(), HasSubstr("event: alive"));
  lives = false;
  EXPECT_EQ(stream.next(), "");
}

TEST(LiveStreams, DontAskForTheirSessionAtEachPieceOfNews) {
  LiveFeed feed;
  int looked = 0;
  LiveStream stream(
      feed, {.session = "a"}, [&] { return ++looked > 0; }, kNoWait);
  for (int i = 0; i < 5; ++i) {
    feed.tell("log", "news");
    stream.next();
  }
  EXPECT_EQ(looked, 0);
}

TEST(LiveStreams, HaveAPlaceInTheFeedForAsLongAsTheyLive) {
  LiveFeed feed({.readers = 1, .forOwner = 0});
  {
    const LiveStream stream(feed, {.session = "a"}, [] { return true; });
    EXPECT_TRUE(stream.admitted());
    EXPECT_FALSE(LiveStream(feed, {.session = "b"}, [] { return true; }).admitted());
  }
  EXPECT_TRUE(LiveStream(feed, {.session = "b"}, [] { return true; }).admitted());
}

}  // namespace
}  // namespace standin
