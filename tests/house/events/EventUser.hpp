#pragma once
#include <string>
#include <vector>

#include "support/Axe.hpp"
#include "support/Browser.hpp"
#include "support/Keys.hpp"
#include "support/RealHouse.hpp"

namespace support {

/// Somebody who makes events in a browser.
class EventUser {
 public:
  using Json = nlohmann::json;

  EventUser(const RealHouse& house, int width) : house_(house), browser(width, 900) {
    browser.keepMessages();
    browser.open(house.address());
  }

  /// `place` as the address has it behind "#events".
  void open(const std::string& place = "") {
    browser.open("about:blank");
    browser.open(house_.url() + "/#events" + place);
    heard();
  }
  /// Waits until the live stream's first look at everything is over.
  void heard() {
    browser.eventually(
        "return performance.getEntriesByName(location.origin + '/api/state').length > 1 && "
        "document.querySelector('#plugin-state').textContent === 'Player ready'");
  }
  bool has(const std::string& selector) {
    return browser.eventually("return document.querySelector(arguments[0]) !== null", {selector});
  }
  bool shows(const std::string& words) {
    return browser.eventually("return document.querySelector('#page').innerText.includes(arguments[0])",
                              {words});
  }
  std::string text(const std::string& selector) {
    return browser.run("return document.querySelector(arguments[0])?.innerText ?? ''", {selector})
        .get<std::string>();
  }
  /// Presses a button, a link or whatever else bears these words within what the selector finds.
  void press(const std::string& words, const std::string& within = "main") {
    if (!browser.eventually(
            "const all = [...document.querySelectorAll(`${arguments[1]} :is(button, a, summary)`)];"
            "const found = all.find(each => each.checkVisibility() && !each.disabled && "
            "[each.innerText.trim(), each.getAttribute('aria-label')].includes(arguments[0]));"
            "found?.scrollIntoView({block: 'center'}); found?.click(); return Boolean(found)",
            {words, within}))
      throw std::runtime_error("nothing to press: " + words + ", of: " + text("#page"));
  }
  /// Adds a part of a kind to a list: "triggers", "conditions" or "actions".
  void add(const std::string& list, const std::string& kind) {
    const std::string section = "[aria-labelledby=head-" + list + "]";
    press(list == "actions"    ? "+ Add an action"
          : list == "triggers" ? "+ Add a trigger"
                               : "+ Add a condition",
          section);
    press(kind, section + " .add-menu");
  }
  void enter(const std::string& selector, const std::string& words) {
    browser.run(
        "const field = document.querySelector(arguments[0]); field.scrollIntoView({block: 'center'});"
        "field.focus(); field.value = arguments[1];"
        "field.dispatchEvent(new Event('input', {bubbles: true}));"
        "field.dispatchEvent(new Event('change', {bubbles: true}))",
        {selector, words});
  }
  /// Chooses in a list of the browser's own.
  void choose(const std::string& selector, const std::string& entry) {
    if (!browser.eventually(
            "const list = document.querySelector(arguments[0]);"
            "const at = [...list?.options ?? []].findIndex(each => each.text === arguments[1]);"
            "if (at < 0 || list.disabled) return false;"
            "list.selectedIndex = at; list.dispatchEvent(new Event('change', {bubbles: true})); return true",
            {selector, entry}))
      throw std::runtime_error("no entry " + entry + " in " + selector);
  }
  /// Presses the tabulator until what has the focus bears these words; false when nothing does.
  bool walkTo(const std::string& words, int most = 80) {
    for (int i = 0; i < most; ++i) {
      if (browser.run(
              "const at = document.activeElement; return [at.innerText?.trim(), "
              "at.getAttribute('aria-label'), at.labels?.[0]?.innerText.trim()].includes(arguments[0])",
              {words}) == true)
        return true;
      browser.press({kTab});
    }
    return false;
  }
  void write(const std::string& words) {
    std::vector<std::string> keys;
    for (const char letter : words) keys.emplace_back(1, letter);
    browser.press(keys);
  }
  bool toasts(const std::string& words) {
    return browser.eventually(
        "return [...document.querySelectorAll('.toast')].some(t => t.textContent.includes(arguments[0]))",
        {words});
  }
  /// No part of the page is wider than the window.
  bool fits() { return browser.run("return document.documentElement.scrollWidth <= innerWidth") == true; }

 private:
  const RealHouse& house_;

 public:
  Browser browser;
};

}  // namespace support
