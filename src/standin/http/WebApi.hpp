#pragma once
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/LoopGate.hpp"
#include "standin/http/LoginLimit.hpp"
#include "standin/player/PlayerLibrary.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/playlists/Playlists.hpp"
#include "standin/scripts/ScriptRunner.hpp"
#include "standin/scripts/ScriptStore.hpp"

namespace standin {

/// What the web answers to a request.
struct WebAnswer {
  int status = 200;
  std::string type = "application/json";
  std::string body = "{}";
  std::string cookie{};  ///< content of a Set-Cookie header, if any
  std::string policy{};  ///< a Content-Security-Policy in place of the server's usual one, if any
};

/// The house's scripts, kept and run.
struct HouseScripts {
  ScriptStore& store;
  ScriptRunner& runner;
};

/// The player's music, as the pages show and change it.
struct HouseMusic {
  PlayerLibrary& library;
  Playlists& playlists;
};

/// A text for the user, in the form of an answer.
WebAnswer Refusal(int status, const std::string& text);

/// What the web's threads ask of the house. Every operation here is called on a web thread, goes through the
/// gate to the loop, and comes back with an answer in limited time. A token is the content of the session
/// cookie, empty without one.
class WebApi {
 public:
  /// `local`: the server listens on this machine alone, so that the owner may do without a password.
  WebApi(House& house, HouseObjects& objects, PluginKeeper& plugin, HouseMusic music, HouseScripts scripts,
         LoopGate& gate, bool local);

  WebAnswer get(const std::string& path, const std::string& token,
                const std::function<std::string(const char*)>& parameter);
  /// `peer` is the address that it comes from.
  WebAnswer post(const std::string& path, const std::string& token, const std::string& body,
                 const std::string& peer);
  /// The user of the token, or the owner where no password is needed; nothing when there is none.
  std::optional<User> visitor(const std::string& token);
  [[nodiscard]] const std::filesystem::path& htmlFolder() const { return htmlFolder_; }
  LiveFeed& live() { return house_.live; }

 private:
  using Reply = std::function<void(WebAnswer)>;
  using Work = std::function<void(const User& user, const Reply& reply)>;
  using Json = nlohmann::json;
  struct LibraryQuery {
    std::string category;
    std::string group;  ///< empty for the category's own list
    std::string sought;
    std::size_t offset = 0;
    std::size_t limit = 0;
    bool fresh = false;
  };

  WebAnswer ask(const std::string& token, Work work);
  WebAnswer askNow(const std::string& token, std::function<WebAnswer(const User&)> work);
  std::optional<User> visitorHere(const std::string& token);

  WebAnswer state(const std::string& token);
  WebAnswer values(const std::string& token, std::int32_t ref, const std::string& sought);
  WebAnswer logLines(const std::string& token, const std::string& type, std::int64_t before);
  WebAnswer linkPage(const std::string& path, const std::string& token);
  WebAnswer linkPost(const std::string& path, const std::string& token, const std::string& body);
  WebAnswer press(const std::string& token, const Json& json);
  WebAnswer command(const std::string& token, const Json& json);
  WebAnswer menu(const std::string& token, const Json& json);
  WebAnswer voice(const std::string& token, const Json& json);
  WebAnswer library(const std::string& token, const LibraryQuery& query);
  WebAnswer media(const std::string& token, const std::string& category, const std::string& name,
                  const std::string& title);
  WebAnswer play(const std::string& token, const Json& json);
  WebAnswer playlist(const std::string& token, const LibraryQuery& query);
  WebAnswer playlists(const std::string& token);
  WebAnswer watchPlaylist(const std::string& token, const Json& json);
  WebAnswer changePlaylist(const std::string& path, const std::string& token, const Json& json);
  WebAnswer askOwner(const std::string& token, std::function<WebAnswer()> work);
  WebAnswer scripts(const std::string& token);
  WebAnswer script(const std::string& token, const std::string& name);
  WebAnswer saveScript(const std::string& token, const Json& json);
  WebAnswer deleteScript(const std::string& token, const Json& json);
  WebAnswer runScript(const std::string& token, const Json& json);
  WebAnswer stopScript(const std::string& token);
  WebAnswer scriptRun(const std::string& token, std::size_t from);
  WebAnswer startPlugin(const std::string& token);
  WebAnswer login(const Json& json, const std::string& peer);
  WebAnswer logout(const std::string& token);
  WebAnswer setPassword(const std::string& token, const Json& json, const std::string& peer);
  WebAnswer setGuests(const std::string& token, const Json& json);
  /// "open", "password" or "off".
  std::string guestRule();
  void setIo(const Device& device, std::int16_t command, std::int16_t brightness, const Reply& reply);
  void askPage(const PageLink& link, const User& user, const char* operation, const std::string& argument,
               const Reply& reply);

  House& house_;
  HouseObjects& objects_;
  PluginKeeper& plugin_;
  PlayerLibrary& library_;
  Playlists& playlists_;
  HouseScripts scripts_;
  LoopGate& gate_;
  bool local_;
  std::filesystem::path htmlFolder_;
  LoginLimits limits_;
  std::mutex hashing_;  // one at a time: each takes 64 MiB
};

}  // namespace standin
