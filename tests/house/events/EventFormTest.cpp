// The plug-in's dialogs as forms of the page.
#include <gmock/gmock.h>

#include "EventsInTheHouse.hpp"

namespace {

using support::EventsAtAnyWidth;
using support::EventUser;
using support::kEnter;
using support::kSpace;
using support::kUp;

class EventForm : public EventsAtAnyWidth {
 protected:
  void SetUp() override {
    user.open("/new");
    ASSERT_TRUE(user.has("#event-name"));
  }
  void openForm() {
    user.add("actions", "Media Player: play, pause, …");
    ASSERT_TRUE(user.has("#form-2:enabled"));
  }
  void killThePlugIn() {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    ::kill(static_cast<pid_t>(connection.processOf("org.vantorix.vxif_WMP9")), SIGKILL);
  }
  bool freed() {
    return user.browser.eventually("return !document.querySelector('.form-end .primary').disabled");
  }
  std::string error(int field) { return user.text("#form-" + std::to_string(field) + "-error"); }
};

INSTANTIATE_TEST_SUITE_P(Desk, EventForm, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, EventForm, testing::Values(360));

TEST_P(EventForm, TheStoredTextIsWhatThePlugInReads) {
  user.enter("#event-name", "Play");
  openForm();
  user.choose("#form-2", "Play: Album");
  user.choose("#form-6", "Counting");
  user.press("Refresh Titles");
  ASSERT_TRUE(user.browser.eventually(
      "return [...document.querySelector('#form-12').options ?? []].some(each => each.text === 'Two')"));
  user.choose("#form-12", "Two");
  user.press("Use it");
  ASSERT_TRUE(user.shows("Play: Album: Counting/Two"));
  user.press("Save");
  ASSERT_TRUE(user.toasts("is saved"));
  EXPECT_EQ(rule("Play")["actions"][0]["stored"],
            "Media Player\u0002Media Player Actions\u0002Play: "
            "Album\u0002\u0002Counting\u0002\u0002\u0002Two\u0002\u0002"
            "No Action\u0002");
  EXPECT_EQ(ask("/api/event/history")["evaluations"], Json::array());
}

TEST_P(EventForm, TheButtonStandsBesideItsListWhereThereIsRoom) {
  openForm();
  const Json place = user.browser.run(
      "const [list, button, mode] = ['#form-12', '.form-button', '#form-16']"
      ".map(each => document.querySelector(each).getBoundingClientRect());"
      "return {beside: button.left >= list.right && Math.abs(button.bottom - list.bottom) < 4,"
      " wider: list.width > mode.width, same: "
      "document.querySelector('#form-6').getBoundingClientRect().width === list.width}");
  EXPECT_EQ(place["beside"], GetParam() > 500);
  EXPECT_EQ(place["wider"], GetParam() > 500);
  EXPECT_EQ(place["same"], true);
  EXPECT_TRUE(user.fits());
}

TEST_P(EventForm, WhatThePlugInRefusesIsSaidBesideTheFieldThatItMeans) {
  openForm();
  user.choose("#form-2", "Play: Album");
  user.press("Use it");
  ASSERT_TRUE(user.has("#form-6[aria-invalid=true]"));
  EXPECT_EQ(error(6), "Please select an Album to play!");
  EXPECT_EQ(user.browser.run("return document.activeElement.id"), "form-6");
  user.choose("#form-6", "Counting");
  EXPECT_EQ(error(6), "");
  user.choose("#form-8", "The Testers");
  user.press("Use it");
  ASSERT_TRUE(user.browser.eventually(
      "return document.querySelector('.plugin-form').innerText.includes('must be blank')"));
  user.choose("#form-8", "(nothing)");
  user.press("Use it");
  ASSERT_TRUE(user.browser.eventually(
      "return document.querySelector('.plugin-form').innerText.includes('Refresh then verify Titles')"));
  user.press("Refresh Titles");
  ASSERT_TRUE(user.has("#form-6:enabled"));
  user.press("Use it");
  EXPECT_TRUE(user.shows("Play: Album: Counting/(Play entire list)"));
}

TEST_P(EventForm, OpensAgainWithTheListsWhereThePlugInAsksForThat) {
  run("host.SaveINISetting('Settings', 'RefreshActions', 'False', 'vxif_WMP.ini')");
  killThePlugIn();
  ASSERT_TRUE(house.logHas("The plug-in has been lost"));
  ASSERT_TRUE(house.becomes("ready"));
  user.open("/new");
  user.enter("#event-name", "Play");
  openForm();
  user.choose("#form-2",
              "To enable a Media Player action: Select this, click \"OK\" or \"SUBMIT\", then return here");
  user.press("Use it");
  user.choose("#form-2", "Stop");
  user.press("Use it");
  ASSERT_TRUE(user.has("[data-list=actions] .part-words"));
  user.press("Save");
  ASSERT_TRUE(user.toasts("is saved"));
  ASSERT_EQ(rule("Play")["actions"].size(), 1U) << "the prompt is no action";
  EXPECT_THAT(rule("Play")["actions"][0]["stored"].get<std::string>(),
              testing::HasSubstr("Media Player Actions\u0002Stop\u0002"));
}

TEST_P(EventForm, AConditionThatThePlugInNeverMeetsIsToldAsSuch) {
  user.add("conditions", "Media Player: its mode");
  EXPECT_TRUE(user.shows("The player never says yes to a condition of its mode"));
}

TEST_P(EventForm, WhatIsEnteredIsThereAgainAfterAReload) {
  openForm();
  user.choose("#form-2", "Play: Album");
  user.choose("#form-6", "Counting");
  user.open("/new");
  ASSERT_TRUE(user.has("#form-6:enabled"));
  EXPECT_EQ(user.browser.run("return document.querySelector('#form-2').value"), "Play: Album");
  EXPECT_EQ(user.browser.run("return document.querySelector('#form-6').value"), "Counting");
}

TEST_P(EventForm, AnotherBrowserIsToldWhoHasItAndMayTakeItOver) {
  openForm();
  user.choose("#form-2", "Pause");
  EventUser other(house, 1280);
  other.open("/new");
  other.add("actions", "Media Player: play, pause, …");
  ASSERT_TRUE(other.has(".form-trouble"));
  other.press("Take it over");
  ASSERT_TRUE(other.has("#form-2:enabled"));
  ASSERT_TRUE(user.shows("Another browser has taken this form over."));
  EXPECT_EQ(user.browser.run("return document.querySelector('#form-2').value"), "Pause");
  user.press("Take it back");
  ASSERT_TRUE(user.has("#form-2:enabled"));
  ASSERT_TRUE(other.shows("Another browser has taken this form over."));
  user.press("Use it");
  EXPECT_TRUE(user.browser.eventually("return document.querySelector('.part')?.innerText.includes('Pause')"));
}

TEST_P(EventForm, NothingIsLostWhileThePlugInIsAway) {
  openForm();
  user.choose("#form-2", "Play: Album");
  user.choose("#form-6", "Counting");
  killThePlugIn();
  ASSERT_TRUE(user.has(".form-trouble"));
  EXPECT_EQ(user.browser.run("return document.querySelector('#form-6').value"), "Counting");
  ASSERT_TRUE(house.becomes("ready"));
  ASSERT_TRUE(user.has("#form-6:enabled"));
  EXPECT_EQ(user.browser.run("return document.querySelector('#form-6').value"), "Counting");
  ASSERT_TRUE(freed());
  user.press("Refresh Titles");
  ASSERT_TRUE(user.has("#form-6:enabled"));
  user.press("Use it");
  EXPECT_TRUE(user.shows("Play: Album: Counting/(Play entire list)"));
}

TEST_P(EventForm, AnEventIsMadeWithTheKeyboardAlone) {
  user.open();
  ASSERT_TRUE(user.has(".template-cards"));
  ASSERT_TRUE(user.walkTo("New event"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.has("#event-name:focus"));
  user.write("Good night");
  // The player's trigger: the form of the plug-in.
  ASSERT_TRUE(user.walkTo("+ Add a trigger"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.walkTo("Media Player: something happens"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.has("#form-2:enabled"));
  ASSERT_TRUE(user.walkTo("Trigger"));
  user.write("Playback E");
  ASSERT_TRUE(user.walkTo("Use it"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.shows("Media Player Playback Ended"));
  // A condition of the house's own, which is to fail.
  ASSERT_TRUE(user.walkTo("+ Add a condition"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.walkTo("Days of the week"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.shows("It is Mon to Fri"));
  // Two actions, which then change places.
  for (const char* words : {"Good night", "Sleep well"}) {
    ASSERT_TRUE(user.walkTo("+ Add an action"));
    user.browser.press({kEnter});
    ASSERT_TRUE(user.walkTo("Say something"));
    user.browser.press({kEnter});
    user.write(words);
  }
  user.browser.run(
      "document.querySelector('#head-actions').closest('section').querySelectorAll('.handle')[1].focus()");
  user.browser.press({kSpace, kUp, kEnter});
  ASSERT_TRUE(user.walkTo("Save"));
  user.browser.press({kEnter});
  ASSERT_TRUE(user.toasts("“Good night” is saved"));
  const Json made = rule("Good night");
  ASSERT_FALSE(made.is_null());
  EXPECT_EQ(made["triggers"][0]["stored"], "Media Player\u0002Media Player Triggers\u0002Playback Ended");
  EXPECT_EQ(made["conditions"][0]["days"], Json::array({1, 2, 3, 4, 5}));
  EXPECT_EQ(made["actions"][0]["text"], "Sleep well");
  EXPECT_EQ(made["actions"][1]["text"], "Good night");
  EXPECT_TRUE(user.fits());
  // Nothing of this has run anything.
  EXPECT_EQ(ask("/api/event/history")["evaluations"], Json::array());
}

TEST_P(EventForm, PutsNothingInTheWayOfAnybody) {
  openForm();
  user.choose("#form-2", "Play: Album");
  user.press("Use it");
  ASSERT_TRUE(user.has("[aria-invalid=true]"));
  for (const char* scheme : {"light", "dark"}) {
    user.browser.likes(scheme);
    EXPECT_THAT(support::Barriers(user.browser), testing::IsEmpty()) << scheme << " at " << window();
  }
}

}  // namespace
