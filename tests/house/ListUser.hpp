#pragma once
#include <string>
#include <vector>

#include "support/Browser.hpp"
#include "support/RealHouse.hpp"

namespace support {

/// Somebody who looks at a playlist in a browser and changes it.
class ListUser {
 public:
  using Json = nlohmann::json;
  using Names = std::vector<std::string>;

  ListUser(const RealHouse& house, int width) : house_(house), browser(width, 800) {
    browser.open(house.address());
  }

  /// `place` as the address has it: "PlayList/Mine".
  void open(const std::string& place) {
    browser.open("about:blank");
    browser.open(house_.url() + "/#library/" + place);
  }
  void openList(const std::string& list) {
    open("PlayList/" + list);
    browser.eventually("return document.querySelectorAll('.long-row .row-name').length > 0");
    // The live stream's first look at everything is over.
    browser.eventually("return performance.getEntriesByName(location.origin + '/api/state').length > 1");
  }
  Names titles() {
    return browser
        .run(
            "return [...document.querySelectorAll('.long-row')].sort((a, b) => a.dataset.index - "
            "b.dataset.index)"
            ".map(row => row.querySelector('.row-name')?.textContent ?? '')")
        .get<Names>();
  }
  bool shows(const Names& wanted) {
    return Eventually([&] { return titles() == wanted; });
  }
  std::string said() {
    return browser.run("return document.querySelector('#playlist-said').textContent").get<std::string>();
  }
  bool says(const std::string& words) {
    return Eventually([&] { return said().find(words) != std::string::npos; });
  }
  /// Waits until the server has answered so many of those changes.
  bool answered(const std::string& action, int times) {
    return browser.eventually(
        "return performance.getEntriesByName(location.origin + '/api/playlist/' + arguments[0]).length >= "
        "arguments[1]",
        {action, times});
  }
  bool toasts(const std::string& words) {
    return browser.eventually(
        "return [...document.querySelectorAll('.toast')].some(t => t.textContent.includes(arguments[0]))",
        {words});
  }

  /// Takes the row by its part and lets it go over another row.
  void drag(int from, int to, const std::string& kind = "mouse", const std::string& part = ".handle") {
    perform(kind, pressAt(from, part), moveTo(to, part), {{{"type", "pointerUp"}, {"button", 0}}});
  }
  /// The same in two halves.
  void take(int from, int to) {
    perform("mouse", pressAt(from, ".handle"), moveTo(to, ".handle"), Json::array());
  }
  /// By a finger that lies on the row until that can be moved.
  void carry(int from, int to, const std::string& part) {
    const Json start = middle(from, part);
    const Json end = middle(to, part);
    browser.putFinger("touchStart", start[0], start[1]);
    browser.eventually("return document.querySelector('.dragging') !== null");
    browser.putFinger("touchMove", end[0], end[1].get<int>() - 20);
    browser.putFinger("touchMove", end[0], end[1]);
    browser.liftFinger();
  }
  void drop() { perform("mouse", Json::array(), Json::array(), {{{"type", "pointerUp"}, {"button", 0}}}); }
  void focus(int row, const std::string& part = ".handle") {
    browser.run("document.querySelector(`[data-index=\"${arguments[0]}\"] ${arguments[1]}`).focus()",
                {row, part});
  }
  /// Holds the first of the keys while the others are pressed.
  void chord(const std::vector<std::string>& keys) {
    Json actions = Json::array();
    for (const std::string& key : keys) actions.push_back({{"type", "keyDown"}, {"value", key}});
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
      actions.push_back({{"type", "keyUp"}, {"value", *key}});
    browser.perform({{{"type", "key"}, {"id", "keyboard"}, {"actions", actions}}});
  }

 private:
  Json middle(int row, const std::string& part) {
    return browser.run(
        "const part = document.querySelector(`[data-index=\"${arguments[0]}\"] ${arguments[1]}`);"
        // A row may lie behind the player's bar.
        "const held = document.querySelector('.dragging');"
        "if (!held) document.querySelector('.long').scrollIntoView({block: 'center'});"
        "const box = part.getBoundingClientRect();"
        "return [Math.round(box.x + box.width / 2), Math.round(box.y + box.height / 2)]",
        {row, part});
  }
  Json pressAt(int row, const std::string& part) {
    const Json at = middle(row, part);
    return {{{"type", "pointerMove"}, {"duration", 0}, {"x", at[0]}, {"y", at[1]}},
            {{"type", "pointerDown"}, {"button", 0}}};
  }
  Json moveTo(int row, const std::string& part) {
    const Json at = middle(row, part);
    const int y = at[1].get<int>();
    return {{{"type", "pointerMove"}, {"duration", 120}, {"x", at[0]}, {"y", y - 20}},
            {{"type", "pointerMove"}, {"duration", 80}, {"x", at[0]}, {"y", y}},
            {{"type", "pause"}, {"duration", 60}}};
  }
  void perform(const std::string& kind, const Json& first, const Json& then, const Json& last) {
    Json actions = Json::array();
    for (const Json* part : {&first, &then, &last})
      for (const Json& each : *part) actions.push_back(each);
    browser.perform(
        {{{"type", "pointer"}, {"id", kind}, {"parameters", {{"pointerType", kind}}}, {"actions", actions}}});
  }

  const RealHouse& house_;

 public:
  Browser browser;
};

}  // namespace support
