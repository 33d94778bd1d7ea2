#pragma once
#include <httplib.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/JsonText.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// A headless Chromium, driven over the WebDriver protocol.
class Browser {
 public:
  using Json = nlohmann::json;

  /// `more`: further arguments of the program's, like those of a microphone that isn't there.
  explicit Browser(int width = 1280, int height = 900, const std::vector<std::string>& more = {}) {
    const std::string& said = driver_->outputWith(kStarted);
    const std::string before = "on port ";
    // Newer drivers name the port in their last line, all name it in the first.
    port_ = std::stoi(said.substr(said.rfind(before) + before.size()));
    Json options = {
        {"args",
         {"--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
          "--disable-dev-shm-usage", "--disable-background-networking", "--disable-component-update",
          "--disable-sync", "--user-data-dir=" + profile_.path().string(),
          "--window-size=" + std::to_string(width) + "," + std::to_string(height)}}};
    for (const std::string& each : more) options["args"].push_back(each);
    // A window can't be made as narrow as a phone; an emulated device can.
    if (width < 500)
      options["mobileEmulation"] = {
          {"deviceMetrics", {{"width", width}, {"height", height}, {"pixelRatio", 2}}}};
    const Json session =
        ask("POST", "/session",
            {{"capabilities",
              {{"alwaysMatch", {{"goog:chromeOptions", options}, {"timeouts", {{"script", 80000}}}}}}}});
    session_ = "/session/" + session["sessionId"].get<std::string>();
    tabs_.push_back(ask("GET", session_ + "/window", Json::object()).get<std::string>());
  }
  ~Browser() {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(60);  // a slow end that is not waited for leaves a browser behind
    client.Delete(session_);
  }
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;
  Browser(Browser&&) = delete;
  Browser& operator=(Browser&&) = delete;

  void open(const std::string& url) { ask("POST", session_ + "/url", {{"url", url}}); }
  /// Runs a script that returns a value; its arguments are `arguments`.
  Json run(const std::string& script, const Json& arguments = Json::array()) {
    return ask("POST", session_ + "/execute/sync", {{"script", script}, {"args", arguments}});
  }
  /// Runs a script that hands its value to the function behind its arguments.
  Json runAsync(const std::string& script, const Json& arguments = Json::array()) {
    return ask("POST", session_ + "/execute/async", {{"script", script}, {"args", arguments}});
  }
  /// Waits until the script returns something true.
  bool eventually(const std::string& script, const Json& arguments = Json::array()) {
    return Eventually([&] {
      const Json value = run(script, arguments);
      return value.is_boolean() ? value.get<bool>() : !value.is_null();
    });
  }
  /// Clicks the element as a user does: it must be visible and not covered. What lies behind a bar at the
  /// window's edge is scrolled out from there first, and what covers it, as a dialog that closes, is given
  /// its time to go.
  void click(const std::string& xpath) {
    atElement([&] {
      const std::string found = element(xpath);
      std::string why;
      const auto clicks = [&] {
        try {
          ask("POST", found + "/click", Json::object());
          return true;
        } catch (const std::runtime_error& failure) {
          why = failure.what();
          if (why.find("click intercepted") == std::string::npos) throw;
        }
        run("arguments[0].scrollIntoView({block: 'center', behavior: 'instant'})",
            Json::array({Json::object({{kElementKey, found.substr(found.rfind('/') + 1)}})}));
        return false;
      };
      if (!Eventually(clicks)) throw std::runtime_error(why);
    });
  }
  void type(const std::string& xpath, const std::string& text) {
    atElement([&] { ask("POST", element(xpath) + "/value", {{"text", text}}); });
  }
  /// Presses keys one after the other wherever the focus is; each is one character, the special ones by their
  /// numbers in the protocol.
  void press(const std::vector<std::string>& keys) {
    Json actions = Json::array();
    for (const std::string& key : keys) {
      actions.push_back({{"type", "keyDown"}, {"value", key}});
      actions.push_back({{"type", "keyUp"}, {"value", key}});
    }
    ask("POST", session_ + "/actions",
        {{"actions", {{{"type", "key"}, {"id", "keyboard"}, {"actions", actions}}}}});
  }
  /// Moves pointers and presses keys as the protocol's own list of sources says.
  void perform(const Json& sources) { ask("POST", session_ + "/actions", {{"actions", sources}}); }
  void reload() { ask("POST", session_ + "/refresh", Json::object()); }
  void back() { ask("POST", session_ + "/back", Json::object()); }
  std::string address() { return ask("GET", session_ + "/url", Json::object()).get<std::string>(); }
  /// Lets the page see a user who likes it dark, or light.
  void likes(const std::string& scheme) {
    ask("POST", session_ + "/goog/cdp/execute",
        {{"cmd", "Emulation.setEmulatedMedia"},
         {"params", {{"features", {{{"name", "prefers-color-scheme"}, {"value", scheme}}}}}}});
  }
  /// A finger comes down ("touchStart") or moves ("touchMove") to a place of the window, in CSS pixels.
  /// Unlike one of `perform` it stays down until `liftFinger`.
  void putFinger(const std::string& how, double x, double y) {
    touch(how, Json::array({{{"x", x}, {"y", y}}}));
  }
  void liftFinger() { touch("touchEnd", Json::array()); }
  /// Opens a further tab and goes on there; the first has the number 0.
  void openTab() {
    tabs_.push_back(ask("POST", session_ + "/window/new", {{"type", "tab"}})["handle"].get<std::string>());
    toTab(tabs_.size() - 1);
  }
  void toTab(std::size_t number) { ask("POST", session_ + "/window", {{"handle", tabs_.at(number)}}); }
  /// Closes the tab; those behind it keep their numbers.
  void closeTab(std::size_t number) {
    toTab(number);
    httplib::Client client("127.0.0.1", port_);
    client.Delete(session_ + "/window");
  }
  /// Runs a script in each page of this tab before any of its own.
  void beforeEachPage(const std::string& script) {
    ask("POST", session_ + "/goog/cdp/execute",
        {{"cmd", "Page.addScriptToEvaluateOnNewDocument"}, {"params", {{"source", script}}}});
  }
  /// In each page that is opened from now on messages stay for as long as the test takes.
  void keepMessages() {
    beforeEachPage(
        "{ const plain = window.setTimeout; window.setTimeout = (work, time, ...rest) => "
        "plain(work, time >= 4000 ? 1e8 : time, ...rest); }");
  }
  /// A picture of what is seen now, as a PNG in base64.
  std::string picture() { return ask("GET", session_ + "/screenshot", Json::object()).get<std::string>(); }

 private:
  static constexpr const char* kStarted = "was started successfully";

  /// The driver takes a port that is free for one kind of address and may find it taken for the other.
  static std::unique_ptr<Process> started() {
    for (int left = 5;; --left) {
      auto driver = std::make_unique<Process>(std::vector<std::string>{"chromedriver", "--port=0"});
      try {
        driver->outputWith(kStarted);
        return driver;
      } catch (const std::runtime_error&) {
        if (left == 0) throw;
      }
    }
  }

  /// By which the protocol names an element among other values.
  static constexpr const char* kElementKey = "element-6066-11e4-a52e-4f735466cecf";

  void touch(const std::string& how, const Json& points) {
    ask("POST", session_ + "/goog/cdp/execute",
        {{"cmd", "Input.dispatchTouchEvent"}, {"params", {{"type", how}, {"touchPoints", points}}}});
  }
  /// Does it again when the page has put a new element in the place of the one just found.
  template <class Act>
  static void atElement(Act&& act) {
    for (int tries = 1;; ++tries) {
      try {
        act();
        return;
      } catch (const std::runtime_error& failure) {
        if (tries == 5 || std::string(failure.what()).find("stale element") == std::string::npos) throw;
      }
    }
  }
  std::string element(const std::string& xpath) {
    Json found;
    Eventually([&] {
      found = ask("POST", session_ + "/elements", {{"using", "xpath"}, {"value", xpath}});
      return !found.empty();
    });
    if (found.empty()) throw std::runtime_error("no element " + xpath);
    return session_ + "/element/" + found[0].begin().value().get<std::string>();
  }
  Json ask(const std::string& method, const std::string& path, const Json& body) {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(90);
    const auto answer =
        method == "POST" ? client.Post(path, TextOf(body), "application/json") : client.Get(path);
    if (!answer) throw std::runtime_error("the browser does not answer");
    const Json json = JsonOf(answer->body);
    if (answer->status != 200) throw std::runtime_error(json["value"].value("message", answer->body));
    return json["value"];
  }

  TempFolder profile_;
  std::unique_ptr<Process> driver_ = started();
  int port_ = 0;
  std::string session_;
  std::vector<std::string> tabs_;
};

}  // namespace support
