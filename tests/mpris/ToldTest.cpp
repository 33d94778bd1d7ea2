#include <gmock/gmock.h>

#include "Desk.hpp"

using mpris::Dict;
using mpris::Texts;
using mpris_test::Desk;
using mpris_test::Value;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using namespace std::chrono_literals;

namespace {

/// What is told while something plays.
class Told : public Desk {
 protected:
  void SetUp() override {
    player.plays();
    face.begin();
  }
  [[nodiscard]] std::vector<std::int64_t> jumps() const {
    std::vector<std::int64_t> positions;
    for (const Signal& signal : signals)
      if (signal.name == "Seeked") positions.push_back(std::get<std::int64_t>(signal.values[0].held));
    return positions;
  }
};

}  // namespace

TEST_F(Told, WhatPlaysIsDescribed) {
  player.now["artist"] = "The Testers";
  player.now["album"] = "Counting";
  player.now["albumArtist"] = "Various";
  player.info = {{"Genre", "Numbers"}, {"WM/TrackNumber", "7"}};
  player.picture = "file:///covers/a b%.jpg";
  EXPECT_EQ(get("Metadata"), Value(Dict{{"mpris:trackid", mpris::Path{track()}},
                                        {"mpris:length", std::int64_t{180'000'000}},
                                        {"mpris:artUrl", "file:///covers/a%20b%25.jpg"},
                                        {"xesam:title", "One"},
                                        {"xesam:artist", Texts{"The Testers"}},
                                        {"xesam:album", "Counting"},
                                        {"xesam:albumArtist", Texts{"Various"}},
                                        {"xesam:genre", Texts{"Numbers"}},
                                        {"xesam:trackNumber", 7},
                                        {"xesam:url", "file:///music/One.flac"}}));
  EXPECT_THAT(track(), StartsWith("/org/vantorix/track/"));
}

TEST_F(Told, AStationsTitleStandsAboveTheStation) {
  player.now["source"] = "http://radio.example/live";
  player.now["name"] = "Radio Example";
  player.now["duration"] = 0.0;
  player.now["streamTitle"] = "Somebody - Something";
  EXPECT_EQ(metadata("xesam:title"), Value("Somebody - Something"));
  EXPECT_EQ(metadata("xesam:artist"), Value(Texts{"Radio Example"}));
  EXPECT_EQ(metadata("xesam:url"), Value("http://radio.example/live"));
  EXPECT_EQ(metadata("mpris:length"), Value("none"));
}

TEST_F(Told, NamesThatTheBusDoesNotTakeAreMended) {
  player.now["name"] = std::string(
      "a\0b\nc\xFF"
      "d\xEF\xBF\xBF",
      10);
  EXPECT_EQ(metadata("xesam:title"), Value("a b c\xEF\xBF\xBD"
                                           "d\xEF\xBF\xBD"));
  player.now["name"] = std::string(10'000, 'x');
  EXPECT_EQ(metadata("xesam:title"), Value(std::string(4096, 'x')));
}

TEST_F(Told, AnotherItemHasAnotherId) {
  const std::string first = track();
  EXPECT_EQ(track(), first);
  player.plays("Two", 1);
  const std::string second = track();
  EXPECT_NE(second, first);
  player.plays("Two", 2);  // the same file once more, behind itself
  EXPECT_NE(track(), second);
}

TEST_F(Told, AnItemThatIsMovedInTheQueueKeepsItsId) {
  const std::string first = track();
  player.now["place"] = 2;
  player.now["revision"] = 5.0;
  EXPECT_EQ(track(), first);
}

TEST_F(Told, AnItemThatIsChosenAnewHasAnotherId) {
  const std::string first = track();
  player.now["queueMark"] = 2.0;
  EXPECT_NE(track(), first);
}

TEST_F(Told, WithoutAnItemNothingIsDescribed) {
  player.now["playState"] = 1;
  player.now["place"] = -1;
  player.now["count"] = 0;
  EXPECT_EQ(get("Metadata"), Value(Dict()));
  EXPECT_EQ(get("CanPlay"), Value(true)) << "the library is played then";
}

TEST_F(Told, ChangesThatComeTogetherAreToldTogetherAndNothingElseIs) {
  player.now["playState"] = 2;
  player.now["volume"] = 20;
  face.changed();
  face.changed();
  settle();
  ASSERT_EQ(signals.size(), 1U);
  EXPECT_EQ(signals[0].values,
            (mpris::Values{kPlayer, Dict{{"PlaybackStatus", "Paused"}, {"Volume", 0.2}}, Texts()}));
  changes();
  EXPECT_EQ(signals.size(), 1U) << "nothing has changed since";
}

TEST_F(Told, AnotherItemIsOneChange) {
  const std::string before = track();
  player.now["playState"] = 8;
  changes();
  player.plays("Two", 1);
  player.now["playState"] = 9;
  changes();
  player.now["playState"] = 3;
  changes();
  EXPECT_THAT(told(), ElementsAre("Metadata"));
  EXPECT_NE(track(), before);
}

TEST_F(Told, WhileItPlaysNothingIsToldOfThePosition) {
  for (int i = 0; i < 100; ++i) {
    goesOn(1s);
    changes();
  }
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_EQ(get("Position"), Value(std::int64_t{100'000'000}));
}

TEST_F(Told, AJumpIsToldWithWhereItWent) {
  goesOn(10s);
  player.now["position"] = 90.0;
  changes();
  EXPECT_THAT(jumps(), ElementsAre(90'000'000));
  goesOn(10s);
  changes();
  EXPECT_THAT(jumps(), ElementsAre(90'000'000));
}

TEST_F(Told, ASmallJumpIsToldWhereSomebodyHasChosenIt) {
  player.now["position"] = 0.4;
  changes();
  EXPECT_THAT(jumps(), IsEmpty()) << "a decoder tells its place in steps";
  player.now["position"] = 0.6;
  face.sought();
  settle();
  EXPECT_THAT(jumps(), ElementsAre(600'000));
}

TEST_F(Told, ASeekByTheBusIsAJump) {
  call("Seek", {std::int64_t{5'000'000}});
  face.sought();  // the player tells it too
  settle();
  EXPECT_THAT(jumps(), ElementsAre(5'000'000));
}

TEST_F(Told, APauseIsNoJump) {
  goesOn(10s);
  player.now["playState"] = 2;
  changes();
  loop.advance(60s);
  changes();
  player.now["playState"] = 3;
  changes();
  goesOn(10s);
  changes();
  EXPECT_THAT(jumps(), IsEmpty());
}

TEST_F(Told, AnItemBeginsAtItsStartOrItIsAJump) {
  goesOn(100s);
  player.plays("Two", 1);
  changes();
  EXPECT_THAT(jumps(), IsEmpty());
  player.plays("Three", 2);
  player.now["position"] = 4.0;  // it was faded into
  changes();
  EXPECT_THAT(jumps(), ElementsAre(4'000'000));
}

TEST_F(Told, WhatWasStoppedInItsMiddleAndGoesOnThereJumps) {
  player.now["playState"] = 1;
  player.now["position"] = 42.0;
  changes();
  EXPECT_THAT(jumps(), IsEmpty());
  player.now["playState"] = 3;
  changes();
  EXPECT_THAT(jumps(), ElementsAre(42'000'000));
}

TEST_F(Told, AnItemThatIsRepeatedJumpsToItsStart) {
  goesOn(170s);
  player.now["position"] = 0.0;
  changes();
  EXPECT_THAT(jumps(), ElementsAre(0));
}

TEST_F(Told, AScanGoesOnAtItsRate) {
  player.now["playState"] = 4;
  changes();
  EXPECT_THAT(told(), ElementsAre("Rate"));
  loop.advance(10s);
  player.now["position"] = 50.0;
  changes();
  EXPECT_THAT(jumps(), IsEmpty());
}

TEST_F(Told, WaitingForMoreIsMadeUpForOnceItGoesOn) {
  player.now["playState"] = 6;
  changes();
  loop.advance(5s);
  player.now["playState"] = 3;
  changes();
  EXPECT_THAT(told(), ElementsAre("Seeked"));
  EXPECT_THAT(jumps(), ElementsAre(0));
}

TEST_F(Told, WhoeverComesLaterAsksForWhatIsSo) {
  listening = false;
  player.plays("Two", 1);
  player.now["position"] = 60.0;
  changes();
  EXPECT_THAT(told(), IsEmpty());
  listening = true;
  face.begin();
  changes();
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(Told, WhatCouldNotBeToldForAWhileIsToldBehind) {
  listening = false;
  player.now["volume"] = 10;
  changes();
  listening = true;
  changes();
  EXPECT_THAT(told(), ElementsAre("Volume"));
}

TEST_F(Told, WhatCanBeDoneIsToldAsItChanges) {
  player.now["next"] = false;
  player.now["previous"] = true;
  changes();
  EXPECT_THAT(told(), ElementsAre("CanGoNext", "CanGoPrevious"));
  EXPECT_EQ(get("CanPause"), Value(true));
  player.now["playState"] = 2;
  player.now["pause"] = false;
  EXPECT_EQ(get("CanPause"), Value(true)) << "what is paused can be paused";
}

TEST_F(Told, ThePictureIsLookedForOncePerItem) {
  player.picture = "file:///covers/one.jpg";
  EXPECT_EQ(metadata("mpris:artUrl"), Value("none")) << "it has been looked for before";
  player.plays("Two", 1);
  EXPECT_EQ(metadata("mpris:artUrl"), Value("file:///covers/one.jpg"));
}
