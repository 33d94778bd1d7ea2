#pragma once
#include <string>

#include "support/Browser.hpp"
#include "support/RealHouse.hpp"

namespace support {

/// Somebody who uses the plug-in's two pages in a browser.
class PageUser {
 public:
  PageUser(const RealHouse& house, int width) : house_(house), browser(width, 900) {}

  /// The first time by the address that makes its visitor the owner.
  void open(const std::string& path) {
    if (!known_) {
      browser.keepMessages();
      browser.open(house_.address());
    }
    known_ = true;
    browser.open(house_.url() + path);
    loaded();
  }
  /// Clicks what sends a form, and waits for the page that answers.
  void send(const std::string& xpath) {
    browser.run("window.before = true");
    browser.click(xpath);
    loaded();
  }
  void press(const std::string& caption) { send("//input[@type='submit' and @value='" + caption + "']"); }
  /// Chooses an entry of a list that sends its form.
  void turnTo(const std::string& list, const std::string& entry) { send(option(list, entry)); }
  void choose(const std::string& list, const std::string& entry) { browser.click(option(list, entry)); }
  void enter(const std::string& field, const std::string& text) {
    browser.type("//input[@name='" + field + "']", text);
  }
  /// Presses the tabulator until the field has the focus; false when it never gets there.
  bool walkTo(const std::string& name, const std::string& value = "") {
    for (int i = 0; i < 60; ++i) {
      if (browser.run("const at = document.activeElement; return at.name === arguments[0] && "
                      "(!arguments[1] || at.value === arguments[1])",
                      {name, value}) == true)
        return true;
      browser.press({"\uE004"});
    }
    return false;
  }
  /// Waits for a page that is not the one left, with its frame at work.
  void loaded() {
    if (!browser.eventually("return window.before === undefined && document.readyState === 'complete' && "
                            "document.querySelectorAll('#nav a').length > 3"))
      throw std::runtime_error("no page came: " + text());
  }
  std::string text() {
    return browser.run("return document.querySelector('.plugin-page')?.innerText ?? ''").get<std::string>();
  }
  std::string message() {
    return browser.run("return document.querySelector('.message')?.textContent ?? ''").get<std::string>();
  }
  /// "red" or "bold", as the message is seen.
  std::string messageStyle() {
    return browser
        .run(
            "const style = getComputedStyle(document.querySelector('.message'));"
            "return style.fontWeight < 700 ? 'thin' : style.color === 'rgb(255, 0, 0)' ? 'red' : 'bold'")
        .get<std::string>();
  }
  /// The entries of a list, in one line.
  std::string entries(const std::string& list) {
    return browser
        .run(
            "return [...document.querySelector(`select[name=${arguments[0]}]`).options].map(o => "
            "o.value).join('|')",
            {list})
        .get<std::string>();
  }
  std::string value(const std::string& name) {
    return browser.run("return document.querySelector(`.plugin-page [name=${arguments[0]}]`).value", {name})
        .get<std::string>();
  }
  bool ticked(const std::string& name) {
    return browser.run("return document.querySelector(`[name=${arguments[0]}]`).checked", {name}) == true;
  }

 private:
  static std::string option(const std::string& list, const std::string& entry) {
    return "//select[@name='" + list + "']/option[@value='" + entry + "']";
  }
  const RealHouse& house_;
  bool known_ = false;  ///< the browser as the owner's

 public:
  Browser browser;
};

}  // namespace support
