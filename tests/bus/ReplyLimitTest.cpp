#include "bus/ReplyLimit.hpp"

#include <gtest/gtest.h>

#include "support/VirtualLoop.hpp"

using base::Milliseconds;
using bus::ReplyLimit;

namespace {

/// How long calls hold up a process that has just been told to stop, if none of them is answered.
Milliseconds HeldUp(support::VirtualLoop& loop, const ReplyLimit& limit, int calls) {
  const Milliseconds begin = loop.now();
  for (int i = 0; i < calls; ++i) {
    while (!limit.over() && loop.now() - begin < std::chrono::hours(1))
      loop.advance(std::max(Milliseconds(1), limit.cut(std::chrono::minutes(30))));
  }
  return loop.now() - begin;
}

}  // namespace

TEST(AStop, IsTakenWithinASecondHoweverManyCallsHang) {
  support::VirtualLoop loop;
  ReplyLimit limit(loop);
  limit.begin(ReplyLimit::kForStop);
  const Milliseconds took = HeldUp(loop, limit, 5);
  EXPECT_LT(took, std::chrono::seconds(1));
  EXPECT_GE(took, Milliseconds(500)) << "a peer that answers has its time";
}

TEST(AStop, ThatIsAskedForAgainIsTakenNoLater) {
  support::VirtualLoop loop;
  ReplyLimit limit(loop);
  limit.begin(ReplyLimit::kForStop);
  loop.advance(Milliseconds(600));
  limit.begin(ReplyLimit::kForStop);
  EXPECT_LT(Milliseconds(600) + HeldUp(loop, limit, 2), std::chrono::seconds(1));
}

TEST(AStop, LimitsNothingBeforeItAndNothingOnceItIsLifted) {
  support::VirtualLoop loop;
  ReplyLimit limit(loop);
  loop.advance(std::chrono::seconds(2));
  EXPECT_FALSE(limit.over());
  EXPECT_EQ(limit.cut(std::chrono::minutes(30)), std::chrono::minutes(30));
  limit.begin(Milliseconds(1));
  loop.advance(Milliseconds(1));
  EXPECT_TRUE(limit.over());
  EXPECT_EQ(limit.cut(std::chrono::minutes(30)), Milliseconds(0));
  limit.lift();
  EXPECT_FALSE(limit.over());
  EXPECT_EQ(limit.cut(Milliseconds(5)), Milliseconds(5));
}
