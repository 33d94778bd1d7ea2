// Making, changing, trying and deleting an event, at a desk and on a phone.
#include <gmock/gmock.h>

#include "EventsInTheHouse.hpp"

namespace {

using support::EventsAtAnyWidth;
using support::EventsInTheHouse;
using json = nlohmann::json;
using testing::HasSubstr;

class EventEditor : public EventsAtAnyWidth {};

INSTANTIATE_TEST_SUITE_P(Desk, EventEditor, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, EventEditor, testing::Values(360));

TEST_P(EventEditor, ItTellsWhatWouldHappenAndWhichConditionSaidNo) {
  const int id = store("Lamp off", {{"conditions",
                                     {{{"kind", "device"},
                                       {"ref", lamp},
                                       {"field", "status"},
                                       {"is", "equals"},
                                       {"value", "17"},
                                       {"not", false}}}},
                                    {"actions", {{{"kind", "device"}, {"ref", lamp}, {"command", "off"}}}}});
  turnLamp(true);
  user.open("/" + std::to_string(id));
  user.press("What would happen?");
  ASSERT_TRUE(user.has(".foreseen.wouldnt")) << user.text("#page");
  EXPECT_THAT(user.text(".foreseen"), HasSubstr("It would not run."));
  EXPECT_TRUE(user.has(".foreseen .fails"));
  EXPECT_EQ(house.device("Lamp")["status"], 2);
  user.press("As if triggered");
  ASSERT_TRUE(user.has(".last-run .fails"));
  EXPECT_THAT(user.text(".last-run"), HasSubstr("Did not run"));
  EXPECT_EQ(house.device("Lamp")["status"], 2);
  user.press("Run the actions");
  EXPECT_TRUE(
      user.browser.eventually("return document.querySelector('.last-run')?.innerText.includes('Ran')"));
  EXPECT_TRUE(support::Eventually([&] { return house.device("Lamp")["status"] == 3; }));
  user.press("History", ".last-run");
  ASSERT_TRUE(user.has(".history li"));
  EXPECT_TRUE(user.shows("Did not run"));
  EXPECT_TRUE(user.fits());
}

TEST_P(EventEditor, SaveLiesAboveThePlayersBarWhereverTheFormIsScrolledTo) {
  json waits = json::array();
  for (int i = 0; i < 12; ++i) waits.push_back({{"kind", "wait"}, {"seconds", i + 1}});
  const int id = store("Long", {{"actions", waits}});
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("#event-save"));
  ASSERT_TRUE(user.has("#player-bar"));
  for (const char* place : {"0", "200", "document.body.scrollHeight"}) {
    user.browser.run(std::string("scrollTo(0, ") + place + ")");
    EXPECT_TRUE(user.browser.eventually(
        "const at = document.querySelector('#event-save').getBoundingClientRect();"
        "return Boolean(document.elementFromPoint(at.x + at.width / 2, at.y + at.height / 2)"
        "?.closest('#event-save'))"))
        << "at " << place;
  }
}

TEST_P(EventEditor, WhatRunsIsStopped) {
  const int id = store("Long", {{"actions", {{{"kind", "wait"}, {"seconds", 3000}}}}});
  user.open("/" + std::to_string(id));
  user.press("Run the actions");
  user.press("Stop");
  EXPECT_TRUE(
      user.browser.eventually("return document.querySelector('.last-run')?.innerText.includes('Stopped')"));
  EXPECT_EQ(listed("Long")["running"], 0);
}

TEST_P(EventEditor, ADraftOutlivesThePageAndIsNamed) {
  const int id = store("Kept");
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("#event-name"));
  user.enter("#event-name", "Kept and changed");
  EXPECT_TRUE(user.shows("Not saved yet"));
  user.open();
  ASSERT_TRUE(user.has(".drafts"));
  EXPECT_THAT(user.text(".drafts"), HasSubstr("Kept and changed"));
  user.press("Kept and changed", ".drafts");
  ASSERT_TRUE(
      user.browser.eventually("return document.querySelector('#event-name')?.value === 'Kept and changed'"));
  EXPECT_FALSE(listed("Kept").is_null());
  user.press("Discard changes");
  ASSERT_TRUE(user.browser.eventually("return document.querySelector('#event-name')?.value === 'Kept'"));
  user.open();
  ASSERT_TRUE(user.has(".event"));
  EXPECT_EQ(user.text(".drafts"), "");
}

TEST_P(EventEditor, TwoVersionsStandSideBySideAndPartsOfBothCanBeTaken) {
  const int id = store("Shared");
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("#event-name"));
  user.enter("#event-name", "Mine");
  Json theirs = rule("Shared");
  theirs.erase("words");
  theirs["group"] = "Theirs";
  theirs["name"] = "Yours";
  ASSERT_EQ(house.post("/api/event/save", theirs), 200);
  user.press("Save");
  ASSERT_TRUE(user.has(".clash"));
  const std::string clash = user.text(".clash");
  for (const char* words : {"Mine", "Yours", "Theirs"}) EXPECT_THAT(clash, HasSubstr(words));
  EXPECT_TRUE(user.fits());
  user.browser.run("document.querySelectorAll('[name=clash-group]')[1].click()");
  user.press("Save it like this");
  ASSERT_TRUE(user.toasts("“Mine” is saved"));
  EXPECT_EQ(rule("Mine")["group"], "Theirs");
  EXPECT_TRUE(listed("Yours").is_null());
}

TEST_P(EventEditor, ADeletedEventComesBackByTheMessageThatTellsIt) {
  const int id = store("Precious", {{"group", "Dear"}});
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("#event-save"));
  user.press("Delete");
  ASSERT_TRUE(user.toasts("Deleted “Precious”"));
  ASSERT_TRUE(support::Eventually([&] { return listed("Precious").is_null(); }));
  user.browser.click("//button[text()='Undo' and contains(@class,'toast-button')]");
  ASSERT_TRUE(support::Eventually([&] { return !listed("Precious").is_null(); }));
  EXPECT_EQ(rule("Precious")["group"], "Dear");
}

TEST_P(EventEditor, AnEventDeletedElsewhereWhileItIsChangedIsNotLost) {
  const int id = store("Going");
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("#event-name"));
  user.enter("#event-name", "Still here");
  ASSERT_EQ(house.post("/api/event/delete", {{"id", id}, {"version", rule("Going")["version"]}}), 200);
  ASSERT_TRUE(user.shows("has been deleted meanwhile"));
  user.press("Save");
  ASSERT_TRUE(user.toasts("“Still here” is saved"));
  EXPECT_FALSE(listed("Still here").is_null());
}

TEST_P(EventEditor, AnActionIsCarriedToAnotherPlaceByItsHandle) {
  const int id = store("Order", {{"actions",
                                  {{{"kind", "speak"}, {"text", "one"}},
                                   {{"kind", "speak"}, {"text", "two"}},
                                   {{"kind", "speak"}, {"text", "three"}}}}});
  user.open("/" + std::to_string(id));
  ASSERT_TRUE(user.has("[data-list=actions] .handle"));
  const auto middle = [&](int row) {
    return user.browser.run(
        "const all = document.querySelectorAll('[data-list=actions] .handle');"
        "all[1].scrollIntoView({block: 'center'});"
        "const box = all[arguments[0]].getBoundingClientRect();"
        "return [Math.round(box.left + box.width / 2), Math.round(box.top + box.height / 2)]",
        {row});
  };
  const Json from = middle(0);
  const Json to = middle(2);
  const auto move = [](const Json& point) {
    return Json{{"type", "pointerMove"}, {"duration", 80}, {"x", point[0]}, {"y", point[1]}};
  };
  user.browser.perform({{{"type", "pointer"},
                         {"id", "hand"},
                         {"parameters", {{"pointerType", GetParam() < 500 ? "touch" : "mouse"}}},
                         {"actions",
                          {move(from),
                           {{"type", "pointerDown"}, {"button", 0}},
                           move(to),
                           move({to[0], to[1].get<int>() + 8}),
                           {{"type", "pointerUp"}, {"button", 0}}}}}});
  EXPECT_TRUE(
      user.browser.eventually("return [...document.querySelectorAll('[data-list=actions] "
                              ".part-words')].map(each => each.innerText.trim())"
                              ".join() === 'Say “two”,Say “three”,Say “one”'"))
      << user.text("[data-list=actions]");
}

}  // namespace
