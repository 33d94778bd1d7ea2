#include "standin/http/WebApi.hpp"

#include <charconv>
#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

constexpr std::size_t kLogPage = 300;

template <class Number>
Number numberOf(const std::string& text) {
  Number value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

}  // namespace

WebAnswer Refusal(int status, const std::string& text) {
  return {status, "application/json", Dump({{"error", text}})};
}

WebApi::WebApi(House& house, HouseObjects& objects, PluginKeeper& plugin, HouseMusic music,
               HouseScripts scripts, LoopGate& gate, bool local)
    : house_(house),
      objects_(objects),
      plugin_(plugin),
      library_(music.library),
      playlists_(music.playlists),
      scripts_(scripts),
      gate_(gate),
      local_(local),
      htmlFolder_(house.htmlFolder()) {}

std::optional<User> WebApi::visitorHere(const std::string& token) {
  if (std::optional<User> user = house_.users.ofSession(token)) return user;
  std::optional<User> owner = house_.users.find(kFirstUser);
  if (local_ && owner && !owner->hasPassword) return owner;
  return std::nullopt;
}

std::optional<User> WebApi::visitor(const std::string& token) {
  const auto user = std::make_shared<std::optional<User>>();
  const LoopGate::Outcome outcome = gate_.runNow([this, token, user] { *user = visitorHere(token); });
  return outcome == LoopGate::Outcome::kDone ? *user : std::nullopt;
}

WebAnswer WebApi::ask(const std::string& token, Work work) {
  const auto answer = std::make_shared<WebAnswer>();
  LoopGate::Outcome outcome{};
  try {
    outcome = gate_.run([this, token, answer, work = std::move(work)](std::function<void()> done) {
      const Reply reply = [answer, done = std::move(done)](WebAnswer given) {
        *answer = std::move(given);
        done();
      };
      const std::optional<User> user = visitorHere(token);
      if (user) {
        work(*user, reply);
      } else {
        reply(Refusal(401, "Please sign in"));
      }
    });
  } catch (...) {
    const base::Failure failure = base::CurrentFailure();
    const bool full = failure.number() == base::number::kDiskFull;
    return Refusal(full ? 507 : 500, failure.description());
  }
  if (outcome == LoopGate::Outcome::kDone) return std::move(*answer);
  if (outcome == LoopGate::Outcome::kClosed) return Refusal(503, "The server is stopping");
  return Refusal(504, "No answer in time; what was asked for may still be done");
}

WebAnswer WebApi::askNow(const std::string& token, std::function<WebAnswer(const User&)> work) {
  return ask(token, [work = std::move(work)](const User& user, const Reply& reply) { reply(work(user)); });
}

WebAnswer WebApi::get(const std::string& path, const std::string& token,
                      const std::function<std::string(const char*)>& parameter) {
  if (path == "/api/state") return state(token);
  if (path == "/api/values") return values(token, numberOf<std::int32_t>(parameter("ref")), parameter("q"));
  if (path == "/api/log") {
    return logLines(token, parameter("type"), numberOf<std::int64_t>(parameter("before")));
  }
  if (path == "/api/library" || path == "/api/playlist") {
    const LibraryQuery query{.category = parameter("category"),
                             .group = parameter("group"),
                             .sought = parameter("q"),
                             .offset = numberOf<std::size_t>(parameter("offset")),
                             .limit = numberOf<std::size_t>(parameter("limit")),
                             .fresh = parameter("fresh") == "1"};
    return path == "/api/library" ? library(token, query) : playlist(token, query);
  }
  if (path == "/api/playlists") return playlists(token);
  if (path == "/api/scripts") return scripts(token);
  if (path == "/api/script") return script(token, parameter("name"));
  if (path == "/api/script/run") return scriptRun(token, numberOf<std::size_t>(parameter("from")));
  if (path == "/api/media") {
    return media(token, parameter("category"), parameter("name"), parameter("title"));
  }
  if (path.starts_with("/api/")) return Refusal(404, "There is no such page");
  return linkPage(path, token);
}

WebAnswer WebApi::post(const std::string& path, const std::string& token, const std::string& body,
                       const std::string& peer) {
  if (!path.starts_with("/api/")) return linkPost(path, token, body);
  const Json json = Json::parse(body.empty() ? "{}" : body, nullptr, false);
  if (!json.is_object()) return Refusal(400, "The request is no JSON object");
  try {
    if (path == "/api/press") return press(token, json);
    if (path == "/api/command") return command(token, json);
    if (path == "/api/menu") return menu(token, json);
    if (path == "/api/voice") return voice(token, json);
    if (path == "/api/play") return play(token, json);
    if (path == "/api/playlist/watch") return watchPlaylist(token, json);
    if (path.starts_with("/api/playlist/")) return changePlaylist(path, token, json);
    if (path == "/api/script") return saveScript(token, json);
    if (path == "/api/script/delete") return deleteScript(token, json);
    if (path == "/api/script/run") return runScript(token, json);
    if (path == "/api/script/stop") return stopScript(token);
    if (path == "/api/plugin") return startPlugin(token);
    if (path == "/api/login") return login(json, peer);
    if (path == "/api/logout") return logout(token);
    if (path == "/api/password") return setPassword(token, json, peer);
    if (path == "/api/guests") return setGuests(token, json);
  } catch (const Json::exception&) {
    return Refusal(400, "The request lacks a field, or one has the wrong type");
  }
  return Refusal(404, "There is no such page");
}

WebAnswer WebApi::state(const std::string& token) {
  return askNow(token, [this](const User& user) {
    Json devices = Json::array();
    for (const auto& [ref, device] : house_.devices.all()) devices.push_back(DeviceJson(device));
    Json menu = Json::array();
    for (const MenuItem& item : house_.menu.items()) {
      menu.push_back({{"section", item.section}, {"item", item.item}});
    }
    Json links = Json::array();
    for (const PageLink& link : house_.links) {
      links.push_back({{"link", link.link}, {"text", link.text}, {"title", link.title}});
    }
    const std::optional<User> owner = house_.users.find(kFirstUser);
    return WebAnswer{.body = Dump({{"user",
                                    {{"name", user.name},
                                     {"guest", user.guest},
                                     {"ownerHasPassword", owner && owner->hasPassword},
                                     {"guests", guestRule()},
                                     {"local", local_}}},
                                   {"plugin",
                                    {{"state", NameOf(plugin_.state())},
                                     {"reason", plugin_.reason()},
                                     {"stuck", plugin_.stuck()},
                                     {"name", plugin_.name()},
                                     {"splash", house_.splash}}},
                                   {"menu", std::move(menu)},
                                   {"links", std::move(links)},
                                   {"devices", std::move(devices)}})};
  });
}

WebAnswer WebApi::values(const std::string& token, std::int32_t ref, const std::string& sought) {
  constexpr std::size_t kMost = 100;
  return askNow(token, [this, ref, sought](const User&) {
    const Device* device = house_.devices.byRef(ref);
    if (device == nullptr) return Refusal(404, "There is no such device");
    const std::string folded = base::LowerCase(sought);
    Json found = Json::array();
    std::size_t total = 0;
    for (const ValueEntry& entry : SplitValues(device->values)) {
      const bool fits = folded.empty() || base::LowerCase(entry.name).find(folded) != std::string::npos;
      if (fits && ++total <= kMost) found.push_back({{"name", entry.name}, {"value", entry.value}});
    }
    return WebAnswer{.body = Dump({{"values", std::move(found)}, {"total", total}})};
  });
}

WebAnswer WebApi::logLines(const std::string& token, const std::string& type, std::int64_t before) {
  return askNow(token, [this, type, before](const User&) {
    Json lines = Json::array();
    for (const LogLine& line : house_.log.newest(kLogPage, type, before)) lines.push_back(LogJson(line));
    return WebAnswer{.body = Dump({{"lines", std::move(lines)}, {"types", house_.log.types()}})};
  });
}

WebAnswer WebApi::startPlugin(const std::string& token) {
  return askNow(token, [this](const User& user) {
    if (user.guest) return Refusal(403, "Guests can't start the plug-in");
    plugin_.startAgain();
    return WebAnswer();
  });
}

}  // namespace standin
