// The page as a part of the device it is shown on: its media keys, its lock screen, its home screen.
#include <gtest/gtest.h>

#include "house/player/Listener.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::Listener;
using support::PlayerBar;

class PlayerOfADevice : public PlayerBar {};

TEST_F(PlayerOfADevice, MediaKeysAndTheLockScreenAreThePlayersWhileItPlays) {
  Listener listener(house, 1280);
  listener.browser.beforeEachPage(
      "window.keys = {}; MediaSession.prototype.setActionHandler = function (word, act) { keys[word] = act; "
      "}");
  playFrom(listener, "One");
  const char* kShown =
      "const {playbackState, metadata} = navigator.mediaSession;"
      "return [playbackState, metadata?.title, metadata?.artist, metadata?.album]";
  EXPECT_TRUE(Eventually([&] {
    return listener.browser.run(kShown) == json({"playing", "One", "The Testers", "Counting"});
  }));
  const auto press = [&](const std::string& key, const json& with = json::object()) {
    listener.browser.run("keys[arguments[0]](arguments[1])", {key, with});
  };
  press("nexttrack");
  EXPECT_TRUE(listener.plays("Two"));
  press("previoustrack");
  EXPECT_TRUE(listener.plays("One"));
  press("seekto", {{"seekTime", 40}});
  EXPECT_TRUE(Eventually([&] { return player().at("position").get<double>() >= 40; }));
  press("pause");
  EXPECT_TRUE(playerHas("play", "paused"));
  EXPECT_TRUE(listener.browser.eventually("return navigator.mediaSession.playbackState === 'paused'"));
  press("play");
  EXPECT_TRUE(playerHas("play", "playing"));
  listener.open("#playing");
  listener.browser.run("document.querySelector('.keys').scrollIntoView({block: 'center'})");
  listener.browser.click("//label[contains(@class,'keys')]/input");
  EXPECT_TRUE(listener.browser.eventually("return navigator.mediaSession.playbackState === 'none'"))
      << "for who wants them for something else";
}

TEST_F(PlayerOfADevice, ThePageCanBeInstalledAndSaysWhenTheHouseIsSilent) {
  Listener listener(house, 360);
  const json manifest = support::JsonOf(house.get("/app.webmanifest"));
  EXPECT_EQ(manifest.at("display"), "standalone");
  for (const json& icon : manifest.at("icons"))
    EXPECT_FALSE(house.get("/" + icon.at("src").get<std::string>()).empty()) << icon;
  ASSERT_TRUE(listener.browser.eventually("return Boolean(navigator.serviceWorker.controller)"));
  EXPECT_EQ(listener.browser.runAsync(
                "const done = arguments[0]; caches.keys().then(names => Promise.all(names.map(name => "
                "caches.open(name).then(kept => kept.keys())))).then(all => done(all.flat().map(each => new "
                "URL(each.url).pathname)))"),
            json({"/unreachable.html"}))
      << "nothing of the house is kept";
  house.server().kill();
  listener.browser.open(house.url() + "/");
  EXPECT_TRUE(listener.browser.eventually(
      "return document.querySelector('h1')?.textContent === 'The house can’t be reached'"));
}

/// Writes down what sounds.
constexpr const char* kHears = R"(
  window.sounds = [];
  const playing = HTMLMediaElement.prototype.play;
  HTMLMediaElement.prototype.play = function () { sounds.push(this.src); return playing.call(this); };)";

TEST_F(PlayerOfADevice, SilenceSoundsFromTheFirstPressOnADesk) {
  Listener listener(house, 1280);
  listener.browser.beforeEachPage(kHears);
  playFrom(listener, "One");
  EXPECT_TRUE(listener.browser.eventually("return sounds.some((each) => each.endsWith('/silence.mp3'))"));
}

TEST_F(PlayerOfADevice, APhonesOwnMusicIsNotTakenFromItUnasked) {
  Listener listener(house, 360);
  listener.browser.beforeEachPage(kHears);
  playFrom(listener, "One");
  listener.open("#playing");
  ASSERT_TRUE(listener.shows(".keys input"));
  EXPECT_EQ(listener.browser.run("return document.querySelector('.keys input').checked"), false);
  EXPECT_EQ(listener.browser.run("return [sounds.length, navigator.mediaSession.playbackState]"),
            json({0, "none"}));
  listener.browser.run("document.querySelector('.keys').scrollIntoView({block: 'center'})");
  listener.browser.click("//label[contains(@class,'keys')]/input");
  EXPECT_TRUE(listener.browser.eventually("return navigator.mediaSession.playbackState === 'playing'"));
  EXPECT_TRUE(listener.browser.eventually("return sounds.length === 1"));
}

}  // namespace
