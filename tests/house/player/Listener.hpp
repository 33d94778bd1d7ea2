#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support/Browser.hpp"
#include "support/Keys.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace support {

/// Somebody with a browser of some width.
class Listener {
 public:
  Listener(const RealHouse& house, int width) : browser(width, 800), house_(house) {
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
  bool queue(const std::vector<std::string>& wanted) {
    return Eventually([&] {
      return browser.run(
                 "return [...document.querySelectorAll('.queue-list .long-row')].sort((a, b) => "
                 "a.dataset.index - b.dataset.index).map(row => row.querySelector('.row-name')?.textContent "
                 "?? '')") == Browser::Json(wanted);
    });
  }
  /// The row that is marked as the one that plays.
  Browser::Json marked() {
    return browser.run(
        "return document.querySelector('.long-row:has(.beat) .row-name')?.textContent ?? null");
  }
  /// Where the page says that the item is, as seconds of this machine's clock at which it was at its
  /// beginning: looked at whenever the page's own clock turns. A page that has no time turns late and never
  /// early, so the earliest of some turns counts.
  double beganAt() {
    const Browser::Json turned = browser.runAsync(
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
      browser.press({kTab});
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
    const Browser::Json box = browser.run(
        "const box = document.querySelector(arguments[0]).getBoundingClientRect();"
        "return [box.x, box.width, Math.round(box.y + box.height / 2)]",
        {selector});
    const auto at = [&](double share) {
      return static_cast<int>(std::lround(box[0].get<double>() + box[1].get<double>() * share));
    };
    const auto move = [&](double share, int time) {
      return Browser::Json{{"type", "pointerMove"}, {"duration", time}, {"x", at(share)}, {"y", box[2]}};
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
  const RealHouse& house_;
};

/// A house with three short titles, and its player on every page.
class PlayerBar : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  Browser::Json player() { return JsonOf(house.get("/api/player")); }
  bool playerHas(const std::string& field, const Browser::Json& value) {
    return Eventually([&] { return player().at(field) == value; });
  }
  /// The album from the row of that title on.
  void playFrom(Listener& listener, const std::string& title) {
    listener.open("#library/Album/Counting");
    ASSERT_TRUE(listener.shows(".long-row .row-name"));
    listener.browser.click("//button[@aria-label='Play " + title + "']");
    ASSERT_TRUE(listener.plays(title));
  }

  SmallMusic music{300};
  RealHouse house{{.music = music.path(), .titles = 3}};
};

}  // namespace support
