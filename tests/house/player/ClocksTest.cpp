// Where pages say that a title has come to, which they reckon themselves.
#include <gtest/gtest.h>

#include "house/player/Listener.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::Listener;
using support::PlayerBar;
using Names = std::vector<std::string>;

constexpr double kApart = 0.2;  // seconds that two pages may differ by

class PlayerClocks : public PlayerBar {
 protected:
  /// As soon as each page has had an answer that was not held up.
  static bool agree(Listener& one, Listener& other) {
    return Eventually([&] { return std::abs(one.beganAt() - other.beganAt()) < kApart; });
  }
};

TEST_F(PlayerClocks, TwoBrowsersAgree) {
  Listener desk(house, 1280);
  Listener phone(house, 1000);
  playFrom(desk, "One");
  ASSERT_TRUE(phone.plays("One"));
  EXPECT_TRUE(agree(desk, phone));
  ASSERT_EQ(house.post("/api/player/seek", {{"to", 30}}), 200);
  const auto sought = [](Listener& listener) {
    return listener.browser.eventually("return document.querySelector('.passed').textContent >= '0:30'");
  };
  ASSERT_TRUE(sought(desk) && sought(phone));
  EXPECT_TRUE(agree(desk, phone));
  desk.browser.click("//aside//button[@aria-label='Shuffle']");
  EXPECT_TRUE(phone.shows("#player-bar .mode[aria-label=Shuffle][aria-pressed=true]"));
  ASSERT_EQ(house.post("/api/player/volume", {{"to", 17}}), 200);
  for (Listener* each : {&desk, &phone})
    EXPECT_TRUE(
        each->browser.eventually("return document.querySelector('#player-bar .volume').value === '17'"));
}

/// What the page asks the house is answered when the test says so.
constexpr const char* kHoldsAnswers = R"(
  const plain = window.fetch; window.held = []; window.asked = []; window.holds = '';
  window.fetch = async (path, options) => {
    window.asked.push(path);
    const answer = await plain(path, options);
    if (path !== holds || asked.filter((each) => each === holds).length < 2) return answer;
    await new Promise((go) => held.push(go));
    const json = answer.json.bind(answer);
    answer.json = () => json().finally(() => setTimeout(() => { window.read = true; }));
    return answer;
  };)";

TEST_F(PlayerClocks, AnAnswerThatComesLateSaysLessThanWhatWasToldMeanwhile) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  listener.browser.beforeEachPage(std::string(kHoldsAnswers) + "window.holds = '/api/player';");
  listener.browser.open("about:blank");
  listener.browser.open(house.url() + "/#devices");
  ASSERT_TRUE(listener.browser.eventually("return window.held?.length > 0")) << "answered, and on its way";
  ASSERT_EQ(house.post("/api/player/pause", json::object()), 200);
  ASSERT_TRUE(
      listener.browser.eventually("return document.querySelector('.player-title')?.textContent === 'One' && "
                                  "Boolean(document.querySelector('#player-bar .main[aria-label=Play]'))"));
  listener.browser.run("holds = ''; held.forEach((go) => go())");
  ASSERT_TRUE(listener.browser.eventually("return window.read === true"));
  EXPECT_EQ(listener.browser.run("return document.querySelector('#player-bar .main').ariaLabel"), "Play");
}

TEST_F(PlayerClocks, AllWhoShowThePositionTurnAtOnce) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  listener.open("#playing");
  ASSERT_TRUE(listener.shows(".playing-now .position:not(:disabled)"));
  EXPECT_EQ(listener.browser.run("return document.querySelectorAll('.position').length"), 1)
      << "the bar leaves it to this page";
  // What changes in one turn is told in one piece; the browser draws it once. A word of the house may write
  // the page's position in between.
  EXPECT_EQ(listener.browser.runAsync(R"(
      const done = arguments[0];
      const shown = {page: document.querySelector('.playing-now .passed'), bar: document.querySelector('.player-reached')};
      let alone = 0;
      const look = new MutationObserver((changes) => {
        const turned = Object.keys(shown).filter((each) => changes.some(({target}) => shown[each].contains(target)));
        if (!turned.includes('page') || turned.length === 1 && ++alone < 3) return;
        look.disconnect();
        done(turned);
      });
      for (const node of Object.values(shown))
        look.observe(node, {childList: true, characterData: true, attributes: true, subtree: true});)"),
            json({"page", "bar"}));
}

TEST_F(PlayerClocks, ALongWhileDoesNotDriveThemApart) {
  Listener listener(house, 1280);
  // An hour on two clocks of which one is a third of a second faster.
  const json apart = listener.browser.runAsync(R"(
    const done = arguments[0];
    const own = document.querySelector('script[type=module]');
    import(String(new URL('player/clocks.js', own.src))).then(({Clocks}) => {
      const kHour = 3600000, clocks = new Clocks(), all = [];
      const note = (truth) => all.push(Math.abs(clocks.apart - truth));
      clocks.heard(5000, 1010, 990);
      note(4000);
      clocks.heard(5000 + kHour, 1000 + kHour + 360 + 150, 1000 + kHour + 360 - 150);
      note(4000 - 360);
      clocks.heard(6000 + kHour, 2000 + kHour + 360);
      note(4000 - 360);
      clocks.heard(100, 3000 + kHour);
      clocks.heard(200, 3100 + kHour, 3100 + kHour);
      note(-2900 - kHour);
      done(all);
    }).catch((error) => done(String(error)));)");
  ASSERT_EQ(apart.size(), 4U) << apart;
  EXPECT_EQ(apart[0], 0);
  EXPECT_LE(apart[1], 160) << "the sure word of an hour ago has grown old";
  EXPECT_LE(apart[2], 160);
  EXPECT_EQ(apart[3], 0) << "a clock that has been set counts at once";
}

TEST_F(PlayerClocks, ADragThatOutlivesItsTitleMovesNoOther) {
  Listener listener(house, 1280);
  listener.browser.beforeEachPage(kHoldsAnswers);
  playFrom(listener, "One");
  // What a browser tells of a hand on the slider, one after the other.
  const auto hand = [&](const Names& does, int to) {
    listener.browser.run(
        "const slider = document.querySelector('#player-bar .position');"
        "slider.value = arguments[1];"
        "for (const each of arguments[0])"
        "  slider.dispatchEvent(new (each.startsWith('pointer') ? PointerEvent : Event)(each, {bubbles: "
        "true}))",
        {does, to});
  };
  const auto sought = [&] {
    return listener.browser.run("return asked.filter(path => path === '/api/player/seek').length");
  };
  hand({"pointerdown", "input"}, 50);
  ASSERT_EQ(listener.browser.run("return document.querySelector('#player-bar .passed').textContent"), "0:50");
  ASSERT_EQ(house.post("/api/player/next", json::object()), 200);
  ASSERT_TRUE(listener.plays("Two"));
  hand({"input"}, 55);
  hand({"pointerup", "change"}, 55);
  EXPECT_EQ(sought(), 0);
  hand({"pointerdown", "input", "pointerup", "change"}, 30);
  EXPECT_EQ(sought(), 1) << "the next touch is one of the next title";
}

TEST_F(PlayerClocks, ASeekStaysWithinTheItemThatItIsMeantFor) {
  Listener listener(house, 1280);
  playFrom(listener, "One");
  ASSERT_EQ(house.post("/api/player/pause", json::object()), 200);
  const json one = player();
  ASSERT_EQ(house.post("/api/player/seek", {{"to", 20}, {"item", one.at("item")}}), 200);
  ASSERT_TRUE(Eventually([&] { return std::abs(player().at("position").get<double>() - 20) < 1; }));
  EXPECT_EQ(house.post("/api/player/seek", {{"to", 40}, {"item", "another"}}), 200);
  EXPECT_NEAR(player().at("position").get<double>(), 20, 1);
  ASSERT_EQ(house.post("/api/player/seek", {{"to", 1e6}, {"item", one.at("item")}}), 200);
  EXPECT_LE(player().at("position").get<double>(), one.at("duration").get<double>());
  EXPECT_EQ(player().at("title"), "One");
}

}  // namespace
