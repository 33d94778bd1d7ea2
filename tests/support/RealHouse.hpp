#pragma once
#include <httplib.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "bus/Connection.hpp"
#include "support/BusDaemon.hpp"
#include "support/JsonText.hpp"
#include "support/Process.hpp"

namespace support {

/// A whole house of real processes: a bus, the server, the plug-in that the bus starts for it, and an engine
/// that plays into silence.
class RealHouse {
 public:
  using Json = nlohmann::json;

  struct Setup {
    std::string music;           ///< the music folder
    std::string audio = "null";  ///< silence in real time
    std::string plugin = VXIF_PROGRAM;
    std::vector<std::string> serverWords{};  ///< further words for the server
    std::string display{};                   ///< the plug-in's screen; none by default
    std::vector<std::string> environment{};  ///< further variables of the server
    std::string sessionBus{};                ///< the user's own; by default the house's is taken for it
    std::size_t titles = 0;                  ///< so many at least are known when it is ready
  };

  explicit RealHouse(Setup setup) : setup_(std::move(setup)) {}
  RealHouse() : RealHouse(Setup()) {}

  /// Writes a file into the configuration folder of the plug-in's user.
  void configure(const std::string& file, const std::string& text) const {
    std::filesystem::create_directories(folder() / "config");
    std::ofstream(folder() / "config" / file) << text;
  }
  /// Writes the player's own configuration file.
  void configurePlayer(const std::string& text) const {
    std::filesystem::create_directories(folder() / "config" / "vantorix");
    std::ofstream(folder() / "config" / "vantorix" / "player.ini") << text;
  }

  /// Starts the server and waits for its address.
  void start() {
    std::vector<std::string> words{STANDIN_PROGRAM, "--port", "0",           "--data",
                                   data().string(), "--bus",  bus_.address()};
    words.insert(words.end(), setup_.serverWords.begin(), setup_.serverWords.end());
    // No house under test speaks aloud, wherever it runs.
    std::vector<std::string> environment{"PULSE_SERVER=unix:/dev/null", "ALSA_CONFIG_PATH=/dev/null"};
    environment.insert(environment.end(), setup_.environment.begin(), setup_.environment.end());
    server_ = std::make_unique<Process>(words, environment);
    const std::string greeting = "Vantorix is at http://127.0.0.1:";
    server_->outputWith(greeting);
    const std::string said = server_->outputWith("\n");
    address_ = said.substr(said.find(greeting) + greeting.find("http"));
    address_.resize(address_.find('\n'));
    port_ = std::stoi(said.substr(said.find(greeting) + greeting.size()));
    if (const auto answer = client().Get(address_.substr(url().size()))) keepCookie(*answer);
  }
  /// Starts it and waits until the plug-in is ready.
  bool startReady() {
    start();
    return becomes("ready") &&
           Eventually([&] { return setup_.titles == 0 || titlesKnown() >= setup_.titles; });
  }
  /// The player is ready before it has looked through its music.
  std::size_t titlesKnown() {
    const std::string all = get("/api/library?category=Media%20Library&limit=1&fresh=1");
    return all.empty() ? 0 : JsonOf(all).value("total", std::size_t{0});
  }
  bool becomes(const std::string& state) {
    return Eventually([&] { return pluginState() == state; });
  }

  [[nodiscard]] std::filesystem::path folder() const { return folder_.path(); }
  [[nodiscard]] std::filesystem::path data() const { return folder_.path() / "server"; }
  [[nodiscard]] const std::string& busAddress() const { return bus_.address(); }
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }
  /// The address that the server has printed: whoever opens it first is the owner from then on.
  [[nodiscard]] const std::string& address() const { return address_; }
  /// The owner's own client.
  [[nodiscard]] httplib::Client client() const {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(40);
    if (!cookie_.empty()) client.set_default_headers({{"Cookie", cookie_}});
    return client;
  }
  /// The cookie that makes it the owner's.
  [[nodiscard]] const std::string& cookie() const { return cookie_; }
  Process& server() { return *server_; }

  // What the page sees.
  Json state() {
    const auto answer = client().Get("/api/state");
    return answer && answer->status == 200 ? JsonOf(answer->body) : Json::object();
  }
  std::string pluginState() {
    const Json now = state();
    return now.contains("plugin") ? now["plugin"]["state"].get<std::string>() : "";
  }
  Json device(const std::string& name) {
    for (const Json& device : state().value("devices", Json::array()))
      if (device["name"] == name) return device;
    return {};
  }
  /// A device's text behind its icon.
  std::string text(const std::string& name) {
    const std::string whole = device(name).value("text", "");
    const auto end = whole.find('>');
    return end == std::string::npos ? whole : whole.substr(end + 1);
  }
  bool textBecomes(const std::string& name, const std::string& wanted) {
    return Eventually([&] { return text(name) == wanted; });
  }
  /// What an address answers; nothing unless all is well.
  std::string get(const std::string& path) {
    const auto answer = client().Get(path);
    return answer && answer->status == 200 ? answer->body : "";
  }
  /// The HTTP status of a post.
  int post(const std::string& path, const Json& body) {
    const auto answer = client().Post(path, {{"Origin", url()}}, TextOf(body), "application/json");
    if (answer) keepCookie(*answer);
    return answer ? answer->status : -1;
  }
  int press(const std::string& name, const std::string& caption) {
    return post("/api/press", {{"ref", device(name).value("ref", 0)}, {"caption", caption}});
  }
  int say(const std::string& phrase) { return post("/api/voice", {{"text", phrase}}); }
  int choose(const std::string& menuItem) { return post("/api/menu", {{"item", menuItem}}); }
  /// All the log's texts, one a line, with their types.
  std::string log() {
    const auto answer = client().Get("/api/log");
    std::string all;
    const Json json = answer && answer->status == 200 ? JsonOf(answer->body) : Json::object();
    if (json.contains("lines"))
      for (const Json& line : json["lines"])
        all += line["type"].get<std::string>() + ": " + line["text"].get<std::string>() + "\n";
    return all;
  }
  bool logHas(const std::string& line) {
    return Eventually([&] { return log().find(line) != std::string::npos; });
  }

 private:
  void keepCookie(const httplib::Response& answer) {
    const std::string given = answer.get_header_value("Set-Cookie");
    if (!given.empty()) cookie_ = given.substr(0, given.find(';'));
  }
  [[nodiscard]] std::string pluginCommand() const {
    const std::string home = folder_.path().string();
    const std::string display =
        "-u DISPLAY -u WAYLAND_DISPLAY" + (setup_.display.empty() ? "" : " DISPLAY=" + setup_.display);
    const std::string session =
        setup_.sessionBus.empty() ? "" : " 'VANTORIX_SESSION_BUS=" + setup_.sessionBus + "'";
    return "/usr/bin/env " + display + session + " VANTORIX_MUSIC='" + setup_.music +
           "' VANTORIX_AUDIO=" + setup_.audio + " XDG_DATA_HOME=" + home + "/data XDG_CONFIG_HOME=" + home +
           "/config XDG_MUSIC_DIR=" + home + " " + setup_.plugin;
  }

  TempFolder folder_;
  Setup setup_;
  BusDaemon bus_{{{"org.vantorix.vxif_WMP9", pluginCommand()}}};
  std::unique_ptr<Process> server_;
  int port_ = 0;
  std::string address_;
  std::string cookie_;
};

}  // namespace support
