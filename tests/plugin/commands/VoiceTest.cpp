#include "support/House.hpp"

using support::House;

namespace {

struct Spoken {
  const char* phrase;
  const char* call;  ///< what the player is told first
};

class Voice : public House, public ::testing::WithParamInterface<Spoken> {
 protected:
  void SetUp() override {
    start();
    wmp9->state = player::kPlaying;
  }
  void say(const std::string& phrase) {
    host->lastVoiceCommand = phrase;
    callVxif("SetIO", base::Value(), "Q", "1", std::int16_t{13}, std::int16_t{0}, std::int16_t{0},
             std::int16_t{0});
  }
};

}  // namespace

TEST_P(Voice, TheFirstPhraseOfTheTableDecides) {
  // A stopped player tells "resume", which starts it, from "pause", which leaves it alone.
  if (std::string(GetParam().phrase).find("resume") != std::string::npos) wmp9->state = player::kStopped;
  say(GetParam().phrase);
  ASSERT_FALSE(playerCalls().empty());
  EXPECT_EQ(playerCalls().front(), std::string("player: ") + GetParam().call);
}
INSTANTIATE_TEST_SUITE_P(
    Phrases, Voice,
    ::testing::Values(
        Spoken{"player stop", "stop"}, Spoken{"Unstoppable", "stop"}, Spoken{"resume the pause", "play"},
        Spoken{"resume pause next previous restart eject no loop unmute no shuffle volume up "
               "volume down no display controls add to playlist stop",
               "stop"},
        Spoken{"stop and resume and pause", "stop"}, Spoken{"please pause", "pause"},
        Spoken{"next song", "next"}, Spoken{"PREVIOUS", "previous"}, Spoken{"restart", "currentPosition 0"},
        Spoken{"eject", "eject 0"}, Spoken{"no loop", "setMode Loop off"}, Spoken{"loop", "setMode Loop on"},
        Spoken{"unmute", "mute off"}, Spoken{"no mute", "mute off"}, Spoken{"mute the music", "mute on"},
        Spoken{"no shuffle", "setMode Shuffle off"}, Spoken{"shuffle", "setMode Shuffle on"},
        Spoken{"volume up", "volume 60"}, Spoken{"volume down", "volume 40"}));

TEST_F(Voice, DisplayControlsAreSwitchedByTheirPhrases) {
  say("no display controls");
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  say("display controls");
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(Voice, AddingToThePlaylistTellsOfAFailure) {
  neighbours.addResult = std::int32_t{-4};
  say("add to playlist");
  EXPECT_TRUE(journal.has("AddMediaToPlayList(Vantorix)"));
  EXPECT_TRUE(logged("Error", "Media Player: Unable to add current selection to playlist, error:-4"));
}

TEST_F(Voice, AddingToThePlaylistIsSilentWhenItSucceeds) {
  say("add to playlist");
  EXPECT_TRUE(journal.has("AddMediaToPlayList(Vantorix)"));
  EXPECT_TRUE(journal.with("WriteLog").empty());
}

TEST_F(Voice, AnUnknownPhraseDoesNothing) {
  say("open the window");
  EXPECT_TRUE(playerCalls().empty());
  EXPECT_TRUE(journal.with("WriteLog").empty());
}
