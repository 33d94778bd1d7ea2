// The player on every page, in a browser, with the player's own engine behind it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "support/Axe.hpp"
#include "support/Browser.hpp"
#include "support/Keys.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using nlohmann::json;
using support::Browser;
using support::Eventually;
using testing::IsEmpty;
using Names = std::vector<std::string>;

constexpr const char* kAlt = "\uE00A";
constexpr const char* kControl = "\uE009";
constexpr const char* kRight = "\uE014";
constexpr const char* kDelete = "\uE017";
constexpr double kApart = 0.2;  // seconds that two pages may differ by

/// Somebody with a browser of some width.
class Listener {
 public:
  Listener(const support::RealHouse& house, int width) : browser(width, 800), house_(house) {
    browser.open(house.address());
    shows("#player-bar:not([hidden])");
  }
  void open(const std::string& place) {
    browser.open("about:blank");
    browser.open(house_.url() + "/" + place);
    shows("#player-bar:not([hidden])");
  }
  bool shows(const std::string& selector) {
    return browser.eventually("return Boolean(document.querySelector(arguments[0]))", {selector});
  }
  bool plays(const std::string& title) {
    return browser.eventually(
        "return document.querySelector('.player-title')?.textContent === arguments[0] && "
        "document.querySelector('#player-bar .main')?.ariaLabel === 'Pause'",
        {title});
  }
  bool queue(const Names& wanted) {
    return Eventually([&] {
      return browser.run(
                 "return [...document.querySelectorAll('.queue-list .long-row')].sort((a, b) => "
                 "a.dataset.index - b.dataset.index).map(row => row.querySelector('.row-name')?.textContent "
                 "?? '')") == json(wanted);
    });
  }
  /// The row that is marked as the one that plays.
  json marked() {
    return browser.run(
        "return document.querySelector('.long-row:has(.beat) .row-name')?.textContent ?? null");
  }
  /// Where the page says that the item is, as seconds of this machine's clock at which it was at its
  /// beginning: looked at whenever the page's own clock turns. A page that has no time turns late and never
  /// early, so the earliest of some turns counts.
  double beganAt() {
    const json turned = browser.runAsync(
        "const done = arguments[0]; const clock = document.querySelector('#player-bar .passed');"
        "const all = [];"
        "const look = new MutationObserver(() => {"
        "  const [minutes, seconds] = clock.textContent.split(':').map(Number);"
        "  if (all.push(Date.now() / 1000 - minutes * 60 - seconds) < 6) return;"
        "  look.disconnect(); done(Math.min(...all)); });"
        "look.observe(clock, {childList: true, characterData: true, subtree: true})");
    return turned.get<double>();
  }
  /// Presses the tabulator until the element has the focus; false when it never gets there.
  bool walkTo(const std::string& selector) {
    for (int i = 0; i < 80; ++i) {
      if (browser.run("return document.activeElement.matches(arguments[0])", {selector}) == true) return true;
      browser.press({support::kTab});
    }
    return false;
  }
  void chord(const std::string& held, const std::string& key) {
    browser.perform({{{"type", "key"},
                      {"id", "keyboard"},
                      {"actions",
                       {{{"type", "keyDown"}, {"value", held}},
                        {{"type", "keyDown"}, {"value", key}},
                        {{"type", "keyUp"}, {"value", key}},
                        {{"type", "keyUp"}, {"value", held}}}}}});
  }
  /// Draws a finger or the mouse along a slider, from one share of its length to another.
  void drag(const std::string& selector, double from, double to, const std::string& kind) {
    const json box = browser.run(
        "const box = document.querySelector(arguments[0]).getBoundingClientRect();"
        "return [box.x, box.width, Math.round(box.y + box.height / 2)]",
        {selector});
    const auto at = [&](double share) {
      return static_cast<int>(std::lround(box[0].get<double>() + box[1].get<double>() * share));
    };
    const auto move = [&](double share, int time) {
      return json{{"type", "pointerMove"}, {"duration", time}, {"x", at(share)}, {"y", box[2]}};
    };
    browser.perform({{{"type", "pointer"},
                      {"id", kind},
                      {"parameters", {{"pointerType", kind}}},
                      {"actions",
                       {move(from, 0),
                        {{"type", "pointerDown"}, {"button", 0}},
                        move((from + to) / 2, 80),
                        move(to, 80),
                        {{"type", "pointerUp"}, {"button", 0}}}}}});
  }

  Browser browser;

 private:
  const support::RealHouse& house_;
};

class PlayerBar : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  json player() { return support::JsonOf(house.get("/api/player")); }
  bool playerHas(const std::string& field, const json& value) {
    return Eventually([&] { return player().at(field) == value; });
  }
  /// The album from the row of that title on.
  void playFrom(Listener& listener, const std::string& title) {
    listener.open("#library/Album/Counting");
    ASSERT_TRUE(listener.shows(".long-row .row-name"));
    listener.browser.click("//button[@aria-label='Play " + title + "']");
    ASSERT_TRUE(listener.plays(title));
  }

  support::SmallMusic music{60};
  support::RealHouse house{{.music = music.path()}};
};

class PlayerBarOfSomeWidth : public PlayerBar, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Desk, PlayerBarOfSomeWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, PlayerBarOfSomeWidth, testing::Values(360));

}  // namespace

TEST_P(PlayerBarOfSomeWidth, ARowOfAnAlbumPlaysOnFromThereAndTheQueueShowsIt) {
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

TEST_P(PlayerBarOfSomeWidth, IsOnEveryPageAndInNobodysWay) {
  Listener listener(house, GetParam());
  playFrom(listener, "One");
  for (const char* place : {"#devices", "#playing", "#library/Album", "#events", "#scripts", "#menu", "#log",
                            "#account", "WMP_Setup", "nothing/here"}) {
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
  EXPECT_TRUE(Eventually([&] { return std::abs(player().at("position").get<double>() - 30) < 8; }))
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

TEST_F(PlayerBar, TheQueueIsChangedByTheKeyboardAndUndone) {
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

TEST_F(PlayerBar, TheQueueIsClearedSavedAndTakenBack) {
  Listener listener(house, 1280);
  playFrom(listener, "Two");
  listener.open("#playing");
  ASSERT_TRUE(listener.queue({"One", "Two", "Three"}));
  listener.browser.click("//button[text()='Save as playlist']");
  listener.browser.run("document.querySelector('dialog input').value = ''");
  listener.browser.type("//dialog//input", "Kept");
  listener.browser.click("//dialog//button[text()='Save']");
  EXPECT_TRUE(Eventually([&] {
    return support::JsonOf(house.get("/api/playlist?offset=0&limit=9&group=Kept")).value("names", json()) ==
           json({"One", "Two", "Three"});
  }));
  listener.browser.click("//button[text()='Clear']");
  EXPECT_TRUE(listener.queue({}));
  EXPECT_TRUE(listener.plays("Two")) << "to its end";
  listener.browser.click("//button[@aria-label='Undo clearing the list of 3 titles']");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three"}));
  EXPECT_TRUE(playerHas("place", 1));
  EXPECT_TRUE(Eventually([&] { return listener.marked() == "Two"; }));
}

TEST_P(PlayerBarOfSomeWidth, WhatIsFoundIsPlayedNextOrBehindAllOthers) {
  Listener listener(house, GetParam());
  playFrom(listener, "Two");
  listener.open("#library/find/three/Media%20Library");
  ASSERT_TRUE(listener.shows(".long-row .row-name"));
  const auto choose = [&](const std::string& words) {
    if (GetParam() > 500) return listener.browser.click("//button[@aria-label='" + words + ": Three']");
    listener.browser.click("//button[@aria-label='More for Three']");
    listener.browser.click("//dialog//button[text()='" + words + "']");
  };
  choose("Play next");
  EXPECT_TRUE(playerHas("count", 4));
  choose("Add to queue");
  EXPECT_TRUE(playerHas("count", 5));
  listener.open("#playing");
  EXPECT_TRUE(listener.queue({"One", "Two", "Three", "Three", "Three"}));
}

TEST_F(PlayerBar, TwoBrowsersAgree) {
  Listener desk(house, 1280);
  Listener phone(house, 1000);
  playFrom(desk, "One");
  ASSERT_TRUE(phone.plays("One"));
  EXPECT_LT(std::abs(desk.beganAt() - phone.beganAt()), kApart);
  ASSERT_EQ(house.post("/api/player/seek", {{"to", 30}}), 200);
  const auto sought = [](Listener& listener) {
    return listener.browser.eventually("return document.querySelector('.passed').textContent >= '0:30'");
  };
  ASSERT_TRUE(sought(desk) && sought(phone));
  EXPECT_LT(std::abs(desk.beganAt() - phone.beganAt()), kApart);
  desk.browser.click("//aside//button[@aria-label='Shuffle']");
  EXPECT_TRUE(phone.shows("#player-bar .mode[aria-label=Shuffle][aria-pressed=true]"));
  ASSERT_EQ(house.post("/api/player/volume", {{"to", 17}}), 200);
  for (Listener* each : {&desk, &phone})
    EXPECT_TRUE(
        each->browser.eventually("return document.querySelector('#player-bar .volume').value === '17'"));
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

TEST_F(PlayerBar, AGuestSeesItAndChangesNothing) {
  ASSERT_EQ(house.post("/api/guests", {{"guests", "open"}}), 200);
  Listener owner(house, 1280);
  playFrom(owner, "One");
  Browser guest(1280, 800);
  guest.open(house.url() + "/");
  guest.runAsync(
      "const done = arguments[0]; fetch('/api/login', {method: 'POST', headers: {'Content-Type': "
      "'application/json'}, body: '{\"name\":\"guest\"}'}).then(() => done())");
  guest.open("about:blank");
  guest.open(house.url() + "/#playing");
  EXPECT_TRUE(guest.eventually("return document.querySelector('.player-title')?.textContent === 'One'"));
  EXPECT_TRUE(guest.eventually("return document.querySelectorAll('.queue-list .row-name').length === 3"));
  EXPECT_EQ(
      guest.run(
          "return document.querySelectorAll('#player-bar button, .playing button:not(.row-main)').length"),
      0);
  EXPECT_EQ(guest.run("return [...document.querySelectorAll('.slider')].every(each => each.disabled)"), true);
  EXPECT_EQ(
      guest.runAsync("const done = arguments[0]; fetch('/api/player/next', {method: 'POST', headers: "
                     "{'Content-Type': 'application/json'}, body: '{}'}).then((told) => done(told.status))"),
      403);
  EXPECT_THAT(support::Barriers(guest), IsEmpty());
}

TEST_F(PlayerBar, MediaKeysAndTheLockScreenAreThePlayersWhileItPlays) {
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

TEST_F(PlayerBar, ThePageCanBeInstalledAndSaysWhenTheHouseIsSilent) {
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
