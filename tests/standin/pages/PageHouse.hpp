#pragma once
#include <string>
#include <vector>

#include "standin/fakes/PlaylistHouse.hpp"
#include "support/Browser.hpp"

namespace support {

/// The house of playlists, with somebody who looks at its pages.
class PageHouse : public PlaylistHouse {
 protected:
  explicit PageHouse(int width = 1280, int height = 900, const std::vector<std::string>& more = {})
      : browser(width, height, more) {}

  [[nodiscard]] std::string url(const std::string& place) const {
    return "http://127.0.0.1:" + std::to_string(server->port()) + "/" + place;
  }
  /// Opens a page as its first one, and waits until it has looked at everything and listens.
  void open(const std::string& place) {
    browser.open(server->address());
    browser.open("about:blank");
    browser.open(url(place));
    ASSERT_TRUE(browser.eventually(
        "return performance.getEntriesByName(location.origin + '/api/state').length > 1 && "
        "document.querySelector('#plugin-state').textContent === 'Player ready'"));
  }
  bool shows(const std::string& text) {
    return browser.eventually("return document.querySelector('#page').textContent.includes(arguments[0])",
                              {text});
  }
  bool has(const std::string& selector) {
    return browser.eventually("return document.querySelector(arguments[0]) !== null", {selector});
  }
  void newDevice(const std::string& name) {
    plugin.withHost([&](base::Object&, base::Object& host) { host.invoke("NewDevice", name); });
  }
  Browser browser;
};

}  // namespace support
