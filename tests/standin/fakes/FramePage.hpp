// A page of a plug-in in the server's frame, with a browser before it.
#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/Browser.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// A page with every kind of field, as a plug-in writes it. `hostile` stands in each place that takes a name.
inline std::string PageText(const std::string& hostile, const std::string& message) {
  return "<form method=\"post\">\r\n<p><h3>Edit PlayList<hr noshade></h3></p>\r\n" + message +
         "<input type=\"hidden\" name=\"ref_page\" value=\"WMP_PListEdit\">\r\n"
         "<input type=\"hidden\" name=\"wmp_page\" value=\"" +
         hostile +
         "\">\r\nSelected PlayList<br><select class=\"formdropdown\" name=\"PlayList\" size=\"1\" "
         "onChange=\"form.submit();\" style=\"width: 200\">\r\n<option selected "
         "value=\"First\">First</option>"
         "<option value=\"Second\">Second</option><option value=\"Third\">Third</option><option value=\"" +
         hostile + "\">" + hostile +
         "</option></select>\r\n<br>\r\n<select class=\"formdropdown\" name=\"PlayListItems\" size=\"5\" "
         "style=\"width: 200\">\r\n<option value=\"Blue\">Blue</option></select>\r\n"
         "<input type=\"submit\" class=\"formbutton\" name=\"button\" value=\"Refresh\" >\r\n"
         "<p><input type=\"submit\" class=\"formbutton\" name=\"button\" value=\"New List\" >\r\n&nbsp"
         "<input type=\"text\" name=\"New_PlayList\" value=\"" +
         hostile +
         "\" size=\"20\" class=\"formtext\" >\r\n</p>\r\nTitle<br><select class=\"formdropdown\" "
         "name=\"Title\" "
         "size=\"1\" Disabled><option value=\"\"></option><option value=\"x\">x</option></select>"
         "<p>While Speaking:<INPUT TYPE=Radio NAME=\"WhileSpeaking\" VALUE=\"Pause\"CHECKED>Pause"
         "<INPUT TYPE=Radio NAME=\"WhileSpeaking\" VALUE=\"Mute\">Mute<br>\r\n"
         "<input type=\"CheckBox\" name=\"TrayIcon\" value=\"TRUE\"  CHECKED>Show Tray Icon<br>\r\n"
         "<BR clear=all><hr noshade></form>\r\n";
}

class FramePage : public testing::Test {
 protected:
  static constexpr const char* kAddress = "/WMP_PListEdit";

  explicit FramePage(int width = 1280, int height = 900) : browser(width, height) {}
  void SetUp() override {
    ASSERT_TRUE(support::Eventually([&] {
      auto state = web.json("/api/state");
      return state.is_object() && state["plugin"]["state"] == "ready";
    })) << server.errors();
    browser.open(server.address());
    browser.open(url(kAddress));
    ASSERT_TRUE(prepared());
  }
  [[nodiscard]] std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(server.port()) + path;
  }
  /// The page stands, listens, and has asked for everything.
  bool prepared() {
    return browser.eventually(
        "return document.querySelectorAll('#nav a').length > 4 && ['/api/state', '/api/player'].every("
        "each => performance.getEntriesByName(location.origin + each).length > 1)");
  }
  std::vector<std::string> posts() {
    const std::lock_guard lock(mutex);
    return posted;
  }
  bool postsBecome(std::size_t count) {
    return support::Eventually([&] { return posts().size() == count; });
  }
  void focus(const std::string& name) {
    browser.run("document.querySelector(`.plugin-page [name=${arguments[0]}]`).focus()", {name});
  }
  FakePlugin::Manner manner() {
    FakePlugin::Manner made;
    made.init = [](base::Object&, base::Object& host, const base::ObjectRef& self) {
      host.invoke("RegisterLink", self);
      host.invoke("WriteLog", "Startup", "Media Player foreground initialization completed");
    };
    made.genPage = [this](const std::string&) {
      ++generated;
      return text("<b>fresh</b>");
    };
    made.pagePut = [this](const std::string& data) {
      const std::lock_guard lock(mutex);
      posted.push_back(data);
      return text("<SPAN style=\"color: red; font-weight: bold\">Error: post " +
                  std::to_string(posted.size()) + "</SPAN><br><br>");
    };
    return made;
  }
  virtual std::string text(const std::string& message) { return PageText("Name", message); }

  std::mutex mutex;
  std::vector<std::string> posted;
  std::atomic<int> generated = 0;
  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), manner()};
  support::ServerProcess server{bus.address(), folder.path() / "data"};
  support::WebClient web{server};
  Browser browser;
};

}  // namespace support
