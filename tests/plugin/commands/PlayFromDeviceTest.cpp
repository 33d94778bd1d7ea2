#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PlayFromDevice : public House {
 protected:
  void SetUp() override {
    start();
    host->addDevice("Quick Album", "Q", 12)->fields["Values"] = std::string(
        " \x02"
        "0\x01(Refresh)\x02"
        "1\x01"
        "Abbey Road\x02"
        "2\x01  \x02"
        "3");
    journal.clear();
  }
  void play(int command, int brightness) {
    plugin.dispatch.PlayFromDevice("Album", std::int16_t(command), std::int16_t(brightness), false);
  }
  void say(const std::string& phrase, int brightness = 0) {
    host->lastVoiceCommand = phrase;
    play(13, brightness);
  }
  static constexpr const char* kFallBack = "SetDeviceValueByName(\"Media Player Quick Album\", 0)";
};

}  // namespace

TEST_F(PlayFromDevice, TheFirstValueRefreshesTheList) {
  play(19, 1);
  EXPECT_THAT(journal.lines(), ElementsAre("UpdateMediaEvents(Album)", kFallBack));
}

TEST_F(PlayFromDevice, ALaterValuePlaysItsNameAndTheListFallsBack) {
  play(19, 2);
  EXPECT_THAT(journal.with("WMPPlay"), ElementsAre("WMPPlay(Album, Abbey Road, )"));
  EXPECT_LT(journal.find("player: setMode Shuffle off"), journal.find("WMPPlay(Album, Abbey Road, )"));
  EXPECT_EQ(journal.lines().back(), kFallBack);
}

TEST_F(PlayFromDevice, ABlankNameOrAMissingEntryPlaysNothing) {
  play(19, 3);
  play(19, 4);
  EXPECT_THAT(journal.with("WMPPlay"), IsEmpty());
  EXPECT_THAT(journal.with("player:"), IsEmpty()) << "nor is the order changed";
  EXPECT_EQ(journal.count(kFallBack), 2U);
}

TEST_F(PlayFromDevice, ValueZeroDoesNothing) {
  play(19, 0);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PlayFromDevice, APhraseWithAndWithoutTheCategoryPlaysTheSameName) {
  say("play album abbey road");
  say("play abbey road");
  say("Play ALBUM abbey road");
  EXPECT_THAT(journal.with("WMPPlay"),
              ElementsAre("WMPPlay(Album, abbey road, )", "WMPPlay(Album, abbey road, )",
                          "WMPPlay(Album, abbey road, )"));
}

TEST_F(PlayFromDevice, TheCharacterBehindTheCategoryIsPassedOverWhole) {
  for (const char* character : {" ", "\u00C4", "\u202F", "\U0001F3B5", "\xFF"})
    say(std::string("play album") + character + "abbey road");
  EXPECT_THAT(journal.with("WMPPlay"), ::testing::SizeIs(5));
  EXPECT_THAT(journal.with("WMPPlay"), ::testing::Each(std::string("WMPPlay(Album, abbey road, )")));
}

TEST_F(PlayFromDevice, ACategoryWordThatTakesMoreBytesInAnotherCaseIsStillThatWord) {
  host->lastVoiceCommand = "play PLAYL\u0130ST Mine";  // a dotted capital I
  plugin.dispatch.PlayFromDevice("PlayList", 13, 0, false);
  EXPECT_THAT(journal.with("WMPPlay"), ElementsAre("WMPPlay(PlayList, Mine, )"));
}

TEST_F(PlayFromDevice, APhraseThatDoesNotBeginWithPlayLeavesTheValueAlone) {
  for (const char* phrase : {"play", "", "please play", "playabbey"}) say(phrase, 2);
  EXPECT_THAT(journal.with("WMPPlay"), IsEmpty());
  EXPECT_THAT(journal.with("SetDeviceValueByName"), IsEmpty());
}

TEST_F(PlayFromDevice, PlayWithTheCategoryAloneNamesNothing) {
  say("play album", 1);
  EXPECT_THAT(journal.with("WMPPlay"), IsEmpty());
  EXPECT_THAT(journal.with("player:"), IsEmpty());
  EXPECT_TRUE(journal.has(kFallBack));
}

TEST_F(PlayFromDevice, AMissingDeviceIsSkipped) {
  host->devices.pop_back();
  play(19, 2);
  EXPECT_THAT(journal.with("WMPPlay"), IsEmpty());
  EXPECT_TRUE(journal.has(kFallBack));
}
