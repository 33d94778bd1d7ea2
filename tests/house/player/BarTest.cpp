// The player on every page, in a browser, with the player's own engine behind it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "house/player/Listener.hpp"
#include "support/Axe.hpp"

namespace {

using nlohmann::json;
using support::Browser;
using support::Eventually;
using support::Listener;
using support::PlayerBar;
using testing::IsEmpty;

constexpr const char* kRight = "\uE014";

class GuestAtTheBar : public PlayerBar {
 protected:
  void openAsGuest(Browser& guest, const std::string& place) {
    ASSERT_EQ(house.post("/api/guests", {{"guests", "open"}}), 200);
    guest.open(house.url() + "/");
    guest.runAsync(
        "const done = arguments[0]; fetch('/api/login', {method: 'POST', headers: {'Content-Type': "
        "'application/json'}, body: '{\"name\":\"guest\"}'}).then(() => done())");
    guest.open("about:blank");
    guest.open(house.url() + "/" + place);
  }
};

class PlayerBarOfSomeWidth : public PlayerBar, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Desk, PlayerBarOfSomeWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, PlayerBarOfSomeWidth, testing::Values(360));

TEST_P(PlayerBarOfSomeWidth, IsOnEveryPageAndInNobodysWay) {
  Listener listener(house, GetParam());
  playFrom(listener, "One");
  for (const char* place : {"#devices", "#playing", "#library/Album", "#events", "#voice", "#scripts",
                            "#menu", "#log", "#account", "WMP_Setup", "nothing/here"}) {
    listener.open(place);
    EXPECT_TRUE(listener.plays("One")) << place;
    EXPECT_EQ(listener.browser.run("return document.documentElement.scrollWidth <= innerWidth"), true)
        << place;
    EXPECT_EQ(listener.browser.run(
                  "scrollTo(0, document.body.scrollHeight); const foot = document.querySelector('footer');"
                  "return foot.getBoundingClientRect().bottom <= "
                  "document.querySelector('#player-bar').getBoundingClientRect().top + 1"),
              true)
        << place << " can be scrolled out from behind it";
  }
}

TEST_P(PlayerBarOfSomeWidth, HasNoSeriousBarriersLightOrDark) {
  Listener listener(house, GetParam());
  playFrom(listener, "Two");
  for (const char* scheme : {"light", "dark"}) {
    listener.browser.likes(scheme);
    listener.open("#playing");
    ASSERT_TRUE(listener.shows(".queue-list .beat"));
    EXPECT_THAT(support::Barriers(listener.browser), IsEmpty()) << scheme;
    listener.open("#library/Album");
    ASSERT_TRUE(listener.shows(".tile-main"));
    EXPECT_THAT(support::Barriers(listener.browser), IsEmpty()) << scheme;
  }
}

TEST_P(PlayerBarOfSomeWidth, PositionAndVolumeFollowAFinger) {
  Listener listener(house, GetParam());
  playFrom(listener, "One");
  listener.open("#playing");
  ASSERT_TRUE(listener.shows(".playing-now .position:not(:disabled)"));
  listener.drag(".playing-now .position", 0.05, 0.5, "touch");
  EXPECT_TRUE(Eventually([&] { return std::abs(player().at("position").get<double>() - 150) < 40; }))
      << player();
  listener.drag(".playing-now .volume", 0.5, 0.2, "touch");
  EXPECT_TRUE(Eventually([&] { return std::abs(player().at("volume").get<int>() - 20) <= 4; })) << player();
  EXPECT_TRUE(Eventually([&] {
    return std::abs(
               listener.browser.run("return Number(document.querySelector('.playing-now .volume').value)")
                   .get<int>() -
               player().at("volume").get<int>()) == 0;
  }));
}

TEST_F(PlayerBar, IsUsedByTheKeyboardAlone) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  ASSERT_TRUE(listener.walkTo("#player-bar .main"));
  listener.browser.press({support::kEnter});
  EXPECT_TRUE(playerHas("play", "paused"));
  EXPECT_TRUE(listener.shows("#player-bar .main[aria-label=Play]"));
  listener.browser.press({support::kSpace});
  EXPECT_TRUE(playerHas("play", "playing"));
  ASSERT_TRUE(listener.walkTo("#player-bar .mode[aria-label=Loop]"));
  listener.browser.press({support::kEnter});
  EXPECT_TRUE(playerHas("loop", true));
  EXPECT_TRUE(listener.shows("#player-bar .mode[aria-label=Loop][aria-pressed=true]"));
  ASSERT_TRUE(listener.walkTo("#player-bar .position"));
  for (int i = 0; i < 4; ++i) listener.browser.press({kRight});
  EXPECT_TRUE(Eventually([&] { return player().at("position").get<double>() >= 20; })) << player();
  ASSERT_TRUE(listener.walkTo("#player-bar .volume"));
  const int before = player().at("volume").get<int>();
  listener.browser.press({kRight});
  EXPECT_TRUE(playerHas("volume", before + 2));
  ASSERT_TRUE(listener.walkTo("#player-bar .to-queue"));
  listener.browser.press({support::kEnter});
  EXPECT_TRUE(listener.queue({"One", "Two", "Three"}));
}

TEST_F(PlayerBar, WhatOthersDoToThePlayerIsSeenToo) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const base::ObjectRef script = connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass");
  script->put("Volume", base::Value(std::int16_t{23}));
  EXPECT_TRUE(
      listener.browser.eventually("return document.querySelector('#player-bar .volume').value === '23'"));
  script->call("PausePlayer");
  EXPECT_TRUE(listener.shows("#player-bar .main[aria-label=Play]"));
  script->call("PlayNext");
  EXPECT_TRUE(
      listener.browser.eventually("return document.querySelector('.player-title').textContent === 'Two'"));
}

TEST_F(GuestAtTheBar, SeesItAndChangesNothing) {
  Listener owner(house, 1280);
  playFrom(owner, "One");
  Browser guest(1280, 800);
  openAsGuest(guest, "#playing");
  EXPECT_TRUE(guest.eventually("return document.querySelector('.player-title')?.textContent === 'One'"));
  EXPECT_TRUE(guest.eventually("return document.querySelectorAll('.queue-list .row-name').length === 3"));
  EXPECT_EQ(
      guest.run(
          "return document.querySelectorAll('#player-bar button, .playing button:not(.row-main)').length"),
      0);
  EXPECT_EQ(guest.run("return [...document.querySelectorAll('.slider')].map(each => each.disabled)"),
            json({true}))
      << "where the title has come to";
  EXPECT_EQ(
      guest.runAsync("const done = arguments[0]; fetch('/api/player/next', {method: 'POST', headers: "
                     "{'Content-Type': 'application/json'}, body: '{}'}).then((told) => done(told.status))"),
      403);
  EXPECT_THAT(support::Barriers(guest), IsEmpty());
}

TEST_F(GuestAtTheBar, HasTheDevicesButtonsButNotTheOneThatAddsToAPlaylist) {
  const char* kStop = "//*[@id='cards']//button[.='Stop']";
  const char* kAdd = "//*[@id='cards']//button[.='Add to PlayList']";
  const auto has = [](const char* path) {
    return "return document.evaluate(\"" + std::string(path) +
           "\", document, null, XPathResult.BOOLEAN_TYPE).booleanValue";
  };
  Listener owner(house, 1280);
  owner.open("#devices");
  EXPECT_TRUE(owner.browser.eventually(has(kAdd)));
  Browser guest(1280, 800);
  openAsGuest(guest, "#devices");
  EXPECT_TRUE(guest.eventually(has(kStop)));
  EXPECT_EQ(guest.run(has(kAdd)), false);
}

}  // namespace
