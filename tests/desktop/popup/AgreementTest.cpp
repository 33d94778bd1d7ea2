// What a window's manager is asked and tells of a window, and what of it is the user's doing.
#include <gtest/gtest.h>

#include "desktop/popup/Agreement.hpp"

namespace desktop::testing {
namespace {

class AgreementWithAManager : public ::testing::Test {
 protected:
  void ask(Standing standing) {
    agreement.want(standing);
    ASSERT_TRUE(agreement.mayAsk());
    agreement.ask();
  }
  /// Asked, and done.
  void bring(Standing standing) {
    ask(standing);
    EXPECT_FALSE(agreement.told(standing));
    ASSERT_TRUE(agreement.settled());
  }

  Agreement agreement;
};

TEST_F(AgreementWithAManager, IsThereBeforeAnythingIsWanted) { EXPECT_TRUE(agreement.settled()); }

TEST_F(AgreementWithAManager, HoldsWhenItHasDoneWhatWasWanted) {
  ask(Standing::kSeen);
  EXPECT_FALSE(agreement.settled());
  EXPECT_FALSE(agreement.told(Standing::kSeen));
  EXPECT_TRUE(agreement.settled());
}

TEST_F(AgreementWithAManager, WhatItTellsOfBeforeIsAskedForAgainAndNobodysDoing) {
  bring(Standing::kSeen);
  ask(Standing::kInTaskBar);
  EXPECT_TRUE(agreement.told(Standing::kSeen)) << "it may have missed the wish while it brought the window";
  EXPECT_FALSE(agreement.settled());
  EXPECT_FALSE(agreement.told(Standing::kInTaskBar));
  EXPECT_TRUE(agreement.settled());
}

TEST_F(AgreementWithAManager, WhatItTellsLaterIsTheUsersDoing) {
  bring(Standing::kSeen);
  EXPECT_FALSE(agreement.told(Standing::kInTaskBar)) << "he may";
  EXPECT_TRUE(agreement.settled());
  EXPECT_EQ(agreement.wanted(), Standing::kSeen);
}

TEST_F(AgreementWithAManager, IsThereAtOnceForWhatTheUserHasDoneHimself) {
  bring(Standing::kSeen);
  EXPECT_FALSE(agreement.told(Standing::kInTaskBar));
  ask(Standing::kInTaskBar);
  EXPECT_TRUE(agreement.settled()) << "nothing more will be told of it";
}

TEST_F(AgreementWithAManager, AChangeOfMindWaitsForBoth) {
  bring(Standing::kSeen);
  ask(Standing::kInTaskBar);
  ask(Standing::kSeen);
  EXPECT_FALSE(agreement.settled()) << "the first wish is still on its way";
  EXPECT_TRUE(agreement.told(Standing::kInTaskBar));
  EXPECT_FALSE(agreement.told(Standing::kSeen));
  EXPECT_TRUE(agreement.settled());
}

TEST_F(AgreementWithAManager, AWindowIsTakenAwayOnlyWhenItHasBeenTakenOn) {
  ask(Standing::kSeen);
  for (const Standing next : {Standing::kInTaskBar, Standing::kAway}) {
    agreement.want(next);
    EXPECT_FALSE(agreement.mayAsk());
  }
  EXPECT_FALSE(agreement.settled());
  EXPECT_FALSE(agreement.told(Standing::kSeen));
  EXPECT_FALSE(agreement.settled());
  EXPECT_TRUE(agreement.mayAsk());
}

TEST_F(AgreementWithAManager, AWindowComesBackOnlyWhenItHasBeenLetGo) {
  bring(Standing::kSeen);
  ask(Standing::kAway);
  for (const Standing back : {Standing::kInTaskBar, Standing::kSeen}) {
    agreement.want(back);
    EXPECT_FALSE(agreement.mayAsk());
  }
  EXPECT_FALSE(agreement.told(Standing::kAway));
  EXPECT_TRUE(agreement.mayAsk());
  agreement.ask();
  EXPECT_FALSE(agreement.settled());
  EXPECT_FALSE(agreement.told(Standing::kSeen));
  EXPECT_TRUE(agreement.settled());
}

TEST_F(AgreementWithAManager, AWishThatWasTakenBackInTimeIsNone) {
  bring(Standing::kSeen);
  ask(Standing::kAway);
  agreement.want(Standing::kSeen);
  ask(Standing::kAway);
  EXPECT_FALSE(agreement.told(Standing::kAway));
  EXPECT_TRUE(agreement.settled());
}

}  // namespace
}  // namespace desktop::testing
