#include "engine/playback/Crossfade.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include "base/Failure.hpp"
#include "engine/playback/PlaybackStates.hpp"
#include "support/VirtualLoop.hpp"

namespace engine::testing {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// An output of the crossfade's that sounds as far as it is told.
class SeenOutput : public FakeOutput {
 public:
  explicit SeenOutput(OutputEvents& whom) : events(whom) {}
  void volume(std::int32_t percent) override { loud = percent; }
  void mute(bool value) override { muted = value; }

  OutputEvents& events;
  std::int32_t loud = -1;
  bool muted = false;
};

class Crossfading : public ::testing::Test, protected OutputEvents {
 protected:
  Crossfading() { fade.listener(*this); }

  void started(EntryId entry) override { note("started", entry); }
  void heightKnown(EntryId entry, std::int32_t height) override {
    if (height > 0) note("height", entry);
  }
  void lengthKnown(EntryId entry, double) override { note("length", entry); }
  void titleTold(EntryId entry, const std::string&) override { note("title", entry); }
  void ended(EntryId entry) override {
    note("ended", entry);
    if (whenEnded) whenEnded();
  }
  void failed(EntryId entry, const std::string&) override { note("failed", entry); }
  void stalled(bool) override { told.emplace_back("stalled"); }
  void note(const std::string& what, EntryId entry) { told.push_back(what + " " + std::to_string(entry)); }

  std::unique_ptr<Output> make(OutputEvents& events) {
    if (noMore) throw base::Failure(base::number::kCannotCreate);
    auto output = std::make_unique<SeenOutput>(events);
    outputs.push_back(output.get());
    ++made;
    return output;
  }
  SeenOutput& first() { return *outputs.at(0); }
  SeenOutput& second() { return *outputs.at(1); }

  /// The first title sounds, a minute long, and the second is to follow.
  void playing() {
    fade.volume(100);
    fade.load(1, "/one");
    first().events.lengthKnown(1, 60);
    first().events.started(1);
    fade.append(2, "/two");
    told.clear();
  }
  void at(double place) {
    first().place = place;
    loop.advance(seconds(1));
  }
  void untilSecondIsOpen() {
    playing();
    at(53);
    second().events.lengthKnown(2, 100);
    second().events.started(2);
  }

  support::VirtualLoop loop;
  std::vector<SeenOutput*> outputs;  // those that have gone too
  int made = 0;
  bool noMore = false;
  bool together = false;
  std::vector<std::string> told;
  std::function<void()> whenEnded;
  Crossfade fade{loop, 5, [this](OutputEvents& events) { return make(events); },
                 [this](const std::string&, const std::string&) { return together; }};
};

TEST_F(Crossfading, TheNextTitleIsOpenedInSilenceAMomentBefore) {
  playing();
  at(49);
  EXPECT_EQ(made, 1);
  at(52);
  ASSERT_EQ(made, 2);
  EXPECT_THAT(second().loaded, ElementsAre("/two"));
  EXPECT_TRUE(second().paused);
  EXPECT_EQ(second().loud, 0);
  EXPECT_EQ(first().loud, 100);
}

TEST_F(Crossfading, BothSoundAndOneGoesOverIntoTheOther) {
  untilSecondIsOpen();
  EXPECT_TRUE(second().paused);
  at(55);
  EXPECT_FALSE(second().paused);
  EXPECT_GT(first().loud, 95);
  int before = first().loud;
  int after = second().loud;
  for (const double place : {56.0, 57.0, 58.0, 59.0}) {
    at(place);
    EXPECT_LT(first().loud, before);
    EXPECT_GT(second().loud, after);
    before = first().loud;
    after = second().loud;
  }
  at(57.5);
  EXPECT_NEAR(first().loud, 89, 1);  // whose third power is half of the loudness
  EXPECT_NEAR(second().loud, 89, 1);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(Crossfading, TheEndIsToldWhenTheLastSoundWasHeardAndThenTheNextOnesStart) {
  untilSecondIsOpen();
  at(55);
  at(60);
  second().place = 5;
  first().events.ended(1);
  EXPECT_THAT(told, ElementsAre("ended 1", "started 2", "length 2"));
  EXPECT_EQ(second().loud, 100);
  EXPECT_EQ(fade.position(), 5);
}

TEST_F(Crossfading, TheSecondOutputsTitleGoesOverInItsTurn) {
  untilSecondIsOpen();
  at(55);
  first().events.ended(1);
  fade.append(3, "/three");
  loop.pump();
  second().place = 92;
  loop.advance(seconds(1));
  ASSERT_EQ(made, 3);
  EXPECT_THAT(outputs[2]->loaded, ElementsAre("/three"));
}

TEST_F(Crossfading, WhatIsTooShortFollowsAtTheEnd) {
  playing();
  at(53);
  second().events.lengthKnown(2, 9);
  second().events.started(2);
  at(56);
  EXPECT_TRUE(second().paused);
  EXPECT_EQ(first().loud, 100);
  first().events.ended(1);
  EXPECT_THAT(told, ElementsAre("ended 1", "started 2", "length 2"));
  EXPECT_FALSE(second().paused);
  EXPECT_EQ(second().loud, 100);
}

TEST_F(Crossfading, AStationHasNoEndToFadeAt) {
  fade.load(1, "http://x/radio");
  first().events.started(1);
  fade.append(2, "/two");
  at(4000);
  EXPECT_EQ(made, 1);
  first().events.ended(1);
  EXPECT_THAT(first().loaded, ElementsAre("http://x/radio", "/two"));
}

TEST_F(Crossfading, WhatCantBeOpenedIsToldInItsTurn) {
  playing();
  at(53);
  second().events.failed(2, "gone");
  at(58);
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(first().loud, 100);
  first().events.ended(1);
  EXPECT_THAT(told, ElementsAre("ended 1", "failed 2"));
}

TEST_F(Crossfading, WithoutASecondOutputTheFirstOneGoesOn) {
  playing();
  noMore = true;
  at(56);
  first().events.ended(1);
  EXPECT_THAT(first().loaded, ElementsAre("/one", "/two"));
}

TEST_F(Crossfading, TracksThatBelongTogetherFollowWithoutAGap) {
  together = true;
  playing();
  EXPECT_EQ(first().appended, "/two");
  at(57);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(first().loud, 100);
  first().events.ended(1);
  first().events.started(2);
  EXPECT_THAT(told, ElementsAre("ended 1", "started 2"));
}

TEST_F(Crossfading, APauseHoldsBoth) {
  untilSecondIsOpen();
  at(56);
  fade.pause(true);
  EXPECT_TRUE(first().paused);
  EXPECT_TRUE(second().paused);
  const int loud = first().loud;
  loop.advance(seconds(30));
  EXPECT_EQ(first().loud, loud);
  fade.pause(false);
  EXPECT_FALSE(first().paused);
  EXPECT_FALSE(second().paused);
}

TEST_F(Crossfading, WhoGoesBackInTheTitleHearsItAlone) {
  untilSecondIsOpen();
  at(57);
  fade.seek(20);
  EXPECT_EQ(first().loud, 100);
  EXPECT_EQ(first().place, 20);
  loop.pump();
  EXPECT_EQ(made, 2);
  at(54);
  EXPECT_EQ(made, 3);  // and it is opened anew in time
}

TEST_F(Crossfading, WhatFollowsCanBeChangedUntilItIsHeard) {
  untilSecondIsOpen();
  EXPECT_TRUE(fade.dropNext());
  fade.append(3, "/three");
  loop.advance(seconds(1));
  ASSERT_EQ(made, 3);
  outputs[2]->events.lengthKnown(3, 100);
  outputs[2]->events.started(3);
  at(55.5);
  EXPECT_FALSE(fade.dropNext());
}

TEST_F(Crossfading, AnotherChoiceEndsTheFade) {
  untilSecondIsOpen();
  at(57);
  fade.load(7, "/other");
  EXPECT_EQ(first().loud, 100);
  EXPECT_THAT(first().loaded, ElementsAre("/one", "/other"));
  first().events.started(7);
  EXPECT_THAT(told, ElementsAre("started 7"));
}

TEST_F(Crossfading, AStopWithinTheFadeStopsBoth) {
  untilSecondIsOpen();
  at(57);
  SeenOutput& other = second();
  fade.stop();
  EXPECT_EQ(first().now, 0U);
  EXPECT_EQ(other.now, 0U);
  loop.advance(seconds(10));
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(Crossfading, TheVolumeOfBothFollowsTheListeners) {
  untilSecondIsOpen();
  at(55);
  at(57.5);
  fade.volume(50);
  EXPECT_NEAR(first().loud, 45, 1);
  EXPECT_NEAR(second().loud, 45, 1);
  fade.mute(true);
  EXPECT_TRUE(first().muted);
  EXPECT_TRUE(second().muted);
}

TEST_F(Crossfading, WhoChoosesSomethingElseAtTheEndGetsThat) {
  untilSecondIsOpen();
  at(58);
  whenEnded = [this] { fade.load(9, "/chosen"); };
  first().events.ended(1);
  EXPECT_THAT(told, ElementsAre("ended 1"));
  EXPECT_THAT(first().loaded, ElementsAre("/one", "/chosen"));
}

/// The states that a player tells, with all of this below it.
TEST(CrossfadedPlayback, TellsTheStatesInTheirOrder) {
  support::VirtualLoop loop;
  std::vector<SeenOutput*> outputs;
  Crossfade fade(
      loop, 5,
      [&](OutputEvents& events) {
        auto output = std::make_unique<SeenOutput>(events);
        outputs.push_back(output.get());
        return output;
      },
      [](const std::string&, const std::string&) { return false; });
  ErrorList errors;
  std::vector<std::int32_t> states;
  Playback playback(loop, fade, errors, 1,
                    {[&](player::PlayState state) { states.push_back(state); }, [] {}});
  fade.listener(playback);
  std::vector<player::MediaRef> items;
  for (const char* path : {"/one", "/two"}) items.push_back(std::make_shared<LooseMedia>(path, TrackTags()));
  playback.assign(std::make_shared<ListPlaylist>("list", items));
  playback.play();
  outputs[0]->events.lengthKnown(1, 60);
  outputs[0]->events.started(1);
  outputs[0]->place = 53;
  loop.advance(seconds(1));
  ASSERT_EQ(outputs.size(), 2U);
  outputs[1]->events.lengthKnown(2, 60);
  outputs[1]->events.started(2);
  outputs[0]->place = 57;
  loop.advance(seconds(1));
  EXPECT_EQ(playback.queue().current(), playback.queue().playlist()->item(0));
  outputs[1]->place = 5;
  outputs[0]->events.ended(1);
  EXPECT_EQ(playback.queue().current()->sourceURL(), "/two");
  EXPECT_EQ(playback.position(), 5);
  EXPECT_EQ(playback.queue().current()->duration(), 60);
  outputs[1]->events.ended(2);
  EXPECT_THAT(states, ElementsAre(10, 9, 3, 8, 9, 3, 8, 1));
}

}  // namespace
}  // namespace engine::testing
