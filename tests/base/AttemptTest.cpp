#include "base/Attempt.hpp"

#include <gtest/gtest.h>

using base::Attempt;
using base::Failure;

TEST(Attempt, GoesOnBehindAFailedStatement) {
  Attempt step;
  int reached = 0;
  EXPECT_FALSE(step([] { throw Failure(base::number::kPermissionDenied); }));
  EXPECT_TRUE(step([&] { reached = 1; }));
  EXPECT_EQ(reached, 1);
}

TEST(Attempt, KeepsTheFirstFailurePendingUntilItIsCleared) {
  Attempt step;
  EXPECT_FALSE(step.failed());
  EXPECT_EQ(step.number(), 0);
  step([] { throw Failure(70, "first"); });
  step([] { throw Failure(91, "second"); });
  EXPECT_EQ(step.number(), 70);
  EXPECT_EQ(step.text(), "first");
  step.clear();
  EXPECT_FALSE(step.failed());
  step([] { throw Failure(91, "third"); });
  EXPECT_EQ(step.number(), 91);
}

TEST(Attempt, LeavesTheTargetOfAFailedStatementUnchanged) {
  Attempt step;
  int target = 7;
  const auto failing = []() -> int { throw Failure(13); };
  step([&] { target = failing(); });
  EXPECT_EQ(target, 7);
}

TEST(Attempt, TakesAnyOtherExceptionAsAnInternalFailure) {
  Attempt step;
  step([] { throw std::runtime_error("out of step"); });
  EXPECT_EQ(step.number(), base::number::kInternal);
  EXPECT_EQ(step.text(), "out of step");
}

TEST(Handled, JumpsToItsHandlerWithTheFailure) {
  const int result = base::Handled([]() -> int { throw Failure(462); },
                                   [](const Failure& failure) { return failure.number(); });
  EXPECT_EQ(result, 462);
  EXPECT_EQ(base::Handled([] { return 1; }, [](const Failure&) { return 2; }), 1);
}

TEST(Failure, DescribesItsNumber) {
  EXPECT_EQ(Failure(91).description(), "Object missing");
  EXPECT_EQ(Failure(91, "").description(), "Object missing");
  EXPECT_EQ(Failure(-123456).description(), "Application-defined error");
  EXPECT_EQ(base::number::kNameInUse, -1072889802);
}
