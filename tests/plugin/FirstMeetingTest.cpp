// What the player's first look at the music leads to, when it ends behind or beside start-up.
#include "FirstMeeting.hpp"

#include "support/House.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class AFirstMeeting : public support::House {
 protected:
  AFirstMeeting() { meeting.meetIn(plugin); }
  /// The time within which it is noticed.
  void soon() { loop.advance(base::Milliseconds(100)); }
  std::vector<std::string> readAnew() { return journal.with("UpdateMediaEvents("); }

  FirstMeeting meeting{loop};
};

}  // namespace

TEST_F(AFirstMeeting, ReadsAnewWhatIsStaleOnceStartUpIsThrough) {
  connect();
  ASSERT_EQ(initIO(), "");
  meeting.met();
  loop.advance(base::Milliseconds(2));
  journal.clear();
  plugin.stale.markCategories();
  soon();
  EXPECT_THAT(readAnew(), ElementsAre("UpdateMediaEvents(Album)", "UpdateMediaEvents(Artist)",
                                      "UpdateMediaEvents(Genre)"));
  journal.clear();
  soon();
  EXPECT_THAT(readAnew(), IsEmpty()) << "once";
}

TEST_F(AFirstMeeting, ReadsNothingWhereTheSettingSaysSo) {
  host->settings["updatemediaevents"] = "False";
  connect();
  ASSERT_EQ(initIO(), "");
  loop.advance(base::Milliseconds(2));
  plugin.stale.markCategories();
  meeting.met();
  soon();
  EXPECT_THAT(readAnew(), IsEmpty());
}

TEST_F(AFirstMeeting, WaitsForNothingAfterAStartThatFailed) {
  host->version = "1.6.50";
  connect();
  ASSERT_NE(initIO(), "");
  meeting.met();
  soon();
  EXPECT_THAT(readAnew(), IsEmpty());
  EXPECT_FALSE(meeting.waits());
}
