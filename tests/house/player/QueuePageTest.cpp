// The page "Now playing": the queue as the player holds it.
#include <gtest/gtest.h>

#include "house/player/Listener.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::Listener;
using support::PlayerBar;

constexpr const char* kAlt = "\uE00A";
constexpr const char* kControl = "\uE009";
constexpr const char* kDelete = "\uE017";

class QueuePage : public PlayerBar {};
class QueuePageOfSomeWidth : public QueuePage, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Desk, QueuePageOfSomeWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, QueuePageOfSomeWidth, testing::Values(360));

TEST_P(QueuePageOfSomeWidth, ARowOfAnAlbumPlaysOnFromThereAndTheQueueShowsIt) {
  Listener listener(house, GetParam());
  playFrom(listener, "Two");
  EXPECT_EQ(player().at("place"), 1);
  listener.browser.click("//aside//a[contains(@class,'player-what')]");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three"}));
  EXPECT_EQ(listener.marked(), "Two");
  listener.browser.click("//aside//button[@aria-label='Next']");
  EXPECT_TRUE(listener.plays("Three"));
  EXPECT_TRUE(Eventually([&] { return listener.marked() == "Three"; }));
  listener.browser.run("document.querySelector('[data-index=\"0\"]').scrollIntoView({block: 'center'})");
  listener.browser.click("//li[@data-index='0']//button[@aria-label='Play One']");
  EXPECT_TRUE(listener.plays("One"));
  EXPECT_TRUE(house.textBecomes("Title", "One")) << "the devices follow";
}

TEST_F(QueuePage, TheQueueIsChangedByTheKeyboardAndUndone) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  listener.open("#playing");
  ASSERT_TRUE(listener.queue({"One", "Two", "Three"}));
  ASSERT_TRUE(listener.walkTo(".queue-list .handle"));
  listener.chord(kAlt, support::kDown);
  EXPECT_TRUE(listener.queue({"Two", "One", "Three"}));
  EXPECT_TRUE(playerHas("place", 1)) << "what plays goes on, one place further down";
  EXPECT_TRUE(Eventually([&] { return listener.marked() == "One"; }));
  ASSERT_TRUE(listener.walkTo(".queue-list .handle"));
  listener.browser.press({support::kDown, kDelete});
  EXPECT_TRUE(listener.queue({"Two", "One"}));
  listener.chord(kControl, "z");
  EXPECT_TRUE(listener.queue({"Two", "One", "Three"}));
  listener.chord(kControl, "z");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three"}));
  listener.chord(kControl, "y");
  EXPECT_TRUE(listener.queue({"Two", "One", "Three"}));
}

TEST_F(QueuePage, TheQueueIsClearedSavedAndTakenBack) {
  Listener listener(house, 1280);
  playFrom(listener, "Two");
  listener.open("#playing");
  ASSERT_TRUE(listener.queue({"One", "Two", "Three"}));
  listener.browser.click("//button[text()='Save as playlist']");
  listener.browser.run("document.querySelector('dialog input').value = ''");
  listener.browser.type("//dialog//input", "Kept");
  listener.browser.click("//dialog//button[text()='Save']");
  EXPECT_TRUE(Eventually([&] {
    const std::string kept = house.get("/api/playlist?offset=0&limit=9&group=Kept");
    return !kept.empty() && support::JsonOf(kept).value("names", json()) == json({"One", "Two", "Three"});
  }));
  ASSERT_TRUE(listener.browser.eventually("return !document.querySelector('dialog')"));
  listener.browser.click("//button[text()='Clear']");
  EXPECT_TRUE(listener.queue({}));
  EXPECT_TRUE(listener.plays("Two")) << "to its end";
  listener.browser.click("//button[@aria-label='Undo clearing the list of 3 titles']");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three"}));
  EXPECT_TRUE(playerHas("place", 1));
  EXPECT_TRUE(Eventually([&] { return listener.marked() == "Two"; }));
}

TEST_P(QueuePageOfSomeWidth, WhatIsFoundIsPlayedNextOrBehindAllOthers) {
  Listener listener(house, GetParam());
  playFrom(listener, "Two");
  listener.open("#library/find/three/Media%20Library");
  ASSERT_TRUE(listener.shows(".long-row .row-name"));
  const auto choose = [&](const std::string& words) {
    if (GetParam() > 500) return listener.browser.click("//button[@aria-label='" + words + ": Three']");
    listener.browser.click("//button[@aria-label='More for Three']");
    listener.browser.click("//dialog//button[text()='" + words + "']");
    EXPECT_TRUE(listener.browser.eventually("return !document.querySelector('dialog')"));
  };
  choose("Play next");
  EXPECT_TRUE(playerHas("count", 4));
  choose("Add to queue");
  EXPECT_TRUE(playerHas("count", 5));
  listener.open("#playing");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three", "Three", "Three"}));
}

TEST_F(QueuePage, AMessagesUndoTakesBackTheVeryStepThatItNames) {
  Listener listener(house, 1280);
  listener.browser.keepMessages();
  playFrom(listener, "One");
  listener.open("#playing");
  ASSERT_TRUE(listener.queue({"One", "Two", "Three"}));
  listener.browser.click("//button[@aria-label='Remove Two']");
  ASSERT_TRUE(listener.queue({"One", "Three"}));
  listener.browser.click("//button[@aria-label='Remove Three']");
  ASSERT_TRUE(listener.queue({"One"}));
  EXPECT_EQ(listener.browser.run(
                "return [...document.querySelectorAll('.toast:has(button)')].map(each => each.textContent)"),
            json({"Removed Three Undo"}));
  listener.browser.click("//button[contains(@class,'toast-button')]");
  EXPECT_TRUE(listener.queue({"One", "Three"}));
}

TEST_F(QueuePage, WhatWasAddedIsTakenBackUnlessTheQueueHasBeenChangedSince) {
  Listener listener(house, 1280);
  listener.browser.keepMessages();
  playFrom(listener, "One");
  listener.browser.click("//button[@aria-label='Add to queue: Two']");
  ASSERT_TRUE(playerHas("count", 4));
  listener.browser.click("//button[contains(@class,'toast-button')]");
  ASSERT_TRUE(playerHas("count", 3));
  listener.browser.click("//button[@aria-label='Add to queue: Three']");
  ASSERT_TRUE(playerHas("count", 4));
  ASSERT_TRUE(listener.shows(".toast-button"));
  ASSERT_EQ(house.post("/api/queue/clear", json::object()), 200);
  listener.browser.click("//button[contains(@class,'toast-button')]");
  EXPECT_TRUE(listener.browser.eventually(
      "return [...document.querySelectorAll('.toast')].some(each => each.textContent.includes("
      "'The queue has been changed since'))"));
  EXPECT_EQ(player().at("count"), 0) << "the newest step is another one";
}

}  // namespace
