// Each template makes an event that works on a library of music, from a few choices.
#include <gmock/gmock.h>

#include "EventsInTheHouse.hpp"

namespace {

using support::EventsAtAnyWidth;
using support::kDown;
using support::kEnter;
using testing::HasSubstr;

class EventTemplates : public EventsAtAnyWidth {
 protected:
  void begin(const std::string& name) {
    user.open("/new/" + name);
    ASSERT_TRUE(user.has(".filling"));
  }
  /// Chooses the first that a field finds for what is typed.
  void find(const std::string& field, const std::string& words) {
    user.browser.run(
        "const field = document.querySelector(`.filling "
        "input[role=combobox][aria-label=\"${arguments[0]}\"]`);"
        "field.scrollIntoView({block: 'center'}); field.focus()",
        {field});
    user.write(words);
    ASSERT_TRUE(user.browser.eventually(
        "const found = document.querySelector('.pick-list:not([hidden]) [role=option][aria-selected=true]');"
        "return found && found.textContent.includes(arguments[0])",
        {words}));
    user.browser.press({kEnter});
  }
  /// What an event's last trigger has come to.
  bool comes(const std::string& name, const std::string& outcome) {
    return support::Eventually([&] {
      const Json newest =
          ask("/api/event/history?count=1&id=" + std::to_string(listed(name)["id"].get<int>()));
      return !newest["evaluations"].empty() && newest["evaluations"][0]["outcome"] == outcome;
    });
  }
  void save() {
    user.press("Save");
    ASSERT_TRUE(user.browser.eventually("return /^#events\\/\\d+$/.test(location.hash)"))
        << user.text(".event-end");
  }
};

INSTANTIATE_TEST_SUITE_P(Desk, EventTemplates, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, EventTemplates, testing::Values(360));

TEST_P(EventTemplates, WakeUpAsksForTheMusicAndRefusesToDoWithout) {
  begin("wake");
  user.press("Save");
  EXPECT_TRUE(user.shows("Choose what to wake with"));
  EXPECT_TRUE(listed("Wake up").is_null());
  begin("wake");
  user.choose(".music-choice select", "the album");
  find("Wake with", "Counting");
  save();
  const Json made = rule("Wake up");
  EXPECT_EQ(made["triggers"][0]["at"], "07:00");
  EXPECT_EQ(
      made["actions"][0]["choices"],
      Json::array(
          {"Media Player\u0002Media Player Actions\u0002Play: Album\u0002\u0002Counting\u0002\u0002\u0002"
           "(Play entire list)\u0002\u0002No Action\u0002"}));
}

TEST_P(EventTemplates, WakeUpWithAPlaylistIsHeardEverLouder) {
  ASSERT_EQ(house.post("/api/play", {{"category", "Album"}, {"name", "Counting"}}), 200);
  ASSERT_TRUE(house.textBecomes("Title", "One"));
  ASSERT_EQ(house.post("/api/queue/save", {{"to", "Morning"}}), 200);
  ASSERT_EQ(house.press("Status", "Stop"), 200);
  begin("wake");
  find("Wake with", "Morning");
  save();
  const int id = listed("Wake up")["id"];
  ASSERT_EQ(house.post("/api/event/run", {{"id", id}}), 200);
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
  const auto volume = [&] { return ask("/api/player")["volume"].get<int>(); };
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(support::Eventually([&, at = volume()] { return volume() > at; }));
  EXPECT_EQ(listed("Wake up")["running"], 1);
  ASSERT_EQ(house.post("/api/event/stop", {{"id", id}}), 200);
  EXPECT_TRUE(comes("Wake up", "stopped"));
}

TEST_P(EventTemplates, TheSleepTimerWaitsAndFades) {
  begin("sleep");
  save();
  const Json made = rule("Sleep timer");
  EXPECT_EQ(made["actions"][0]["seconds"], 1200);
  EXPECT_EQ(made["actions"][1]["then"], "stop");
  EXPECT_EQ(made["conditions"][0]["stored"], "Media Player\u0002Media Player Status\u0002Playing\u0002Yes");
}

TEST_P(EventTemplates, AnAnnouncementIsSaid) {
  begin("announce");
  user.enter(".filling textarea", "Dinner!");
  save();
  const Json made = rule("Announcement");
  EXPECT_EQ(made["actions"][0]["text"], "Dinner!");
  user.press("Run the actions");
  EXPECT_TRUE(house.logHas("Speech: Dinner!"));
}

TEST_P(EventTemplates, PauseAndResumeAreTwoEvents) {
  begin("pause");
  find("Pause while this is on", "Lamp");
  save();
  const Json pause = rule("Pause for Hall Lamp");
  const Json resume = rule("Resume after Hall Lamp");
  ASSERT_FALSE(pause.is_null());
  ASSERT_FALSE(resume.is_null());
  EXPECT_EQ(pause["triggers"][0]["ref"], lamp);
  EXPECT_EQ(pause["triggers"][0]["value"], "2");
  EXPECT_EQ(resume["triggers"][0]["value"], "3");
}

TEST_P(EventTemplates, PauseAndResumeTouchOnlyTheMusicThatTheyHavePaused) {
  begin("pause");
  EXPECT_TRUE(user.shows("Since this was asked last, “Pause for a device” has run"));
  find("Pause while this is on", "Lamp");
  save();
  const std::string resume = "Resume after Hall Lamp";
  ASSERT_TRUE(support::Eventually([&] { return !listed(resume).is_null(); }));
  house.press("Loop Mode", "Loop toggle");
  ASSERT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  house.press("Status", "Restart");
  ASSERT_TRUE(house.textBecomes("Status", "Playing"));
  turnLamp(true);
  EXPECT_TRUE(house.textBecomes("Status", "Paused"));
  turnLamp(false);
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));

  house.press("Status", "Pause");
  ASSERT_TRUE(house.textBecomes("Status", "Paused"));
  turnLamp(true);
  ASSERT_TRUE(comes("Pause for Hall Lamp", "refused"));
  turnLamp(false);
  ASSERT_TRUE(comes(resume, "refused"));
  EXPECT_EQ(house.text("Status"), "Paused");
  user.open();
  EXPECT_TRUE(user.shows("“Pause for Hall Lamp” has run (it did not run when it was triggered last)"))
      << user.text("#page");
}

TEST_P(EventTemplates, GoodNightPutsTheLampOff) {
  begin("night");
  find("Lamp", "Lamp");
  save();
  user.open();
  ASSERT_TRUE(user.has(".event"));
  const std::string event = user.text(".event");
  for (const char* words :
       {"Media Player Playback Ended", "Media Player Muted: No", "Turn Hall Lamp off", "Good night"})
    EXPECT_THAT(event, HasSubstr(words));
  turnLamp(true);
  user.open("/" + std::to_string(listed("Good night")["id"].get<int>()));
  user.press("Run the actions");
  EXPECT_TRUE(support::Eventually([&] { return house.device("Lamp")["status"] == 3; }));
}

TEST_P(EventTemplates, WhatIsChangedByHandIsNotOverwritten) {
  begin("announce");
  user.enter("#event-name", "Mine");
  ASSERT_TRUE(user.shows("and changed since"));
  EXPECT_EQ(user.browser.run("return document.querySelector('.filling .part-fields')"), nullptr);
  user.press("Fill it in anew");
  EXPECT_TRUE(
      user.browser.eventually("return document.querySelector('#event-name').value === 'Announcement'"));
}

}  // namespace
