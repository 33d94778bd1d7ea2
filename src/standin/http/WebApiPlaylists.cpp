// What the pages ask of the player's playlists. Guests look and change nothing.
#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/http/WebApi.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLargestPage = 500;
constexpr std::size_t kLongestName = 1200;  // bytes: 300 characters of any kind
constexpr std::size_t kLongestPageId = 40;

int statusOf(std::int32_t failure) {
  switch (failure) {
    case base::number::kElementNotFound: return 404;
    case base::number::kInvalidArgument: return 400;
    case base::number::kChangedMeanwhile:
    case base::number::kNameInUse: return 409;
    case base::number::kDiskFull: return 507;
    default: return 502;
  }
}

Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

/// The state of a list, without its titles.
Json jsonOf(const Playlists::Outcome& outcome, const User& user) {
  Json json{{"name", outcome.name},
            {"version", outcome.version},
            {"undo", textOrNull(outcome.undo)},
            {"redo", textOrNull(outcome.redo)},
            {"said", outcome.said},
            {"edit", !user.guest}};
  if (outcome.names) json["total"] = outcome.names->size();
  if (outcome.restoring > 0) json["restoring"] = {outcome.restored, outcome.restoring};
  return json;
}

WebAnswer refusalOf(const Playlists::Outcome& outcome, const User& user) {
  Json json = jsonOf(outcome, user);
  json["error"] = outcome.error;
  json["stuck"] = outcome.stuck;
  return {statusOf(outcome.failure), "application/json", Dump(json)};
}

/// One line, without blanks around it.
std::string nameIn(const Json& json, const char* field) {
  auto name = json.at(field).get<std::string>();
  std::replace_if(
      name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
  return base::TrimBlanks(name);
}

std::optional<std::string> neighbour(const Json& json, const char* field) {
  return json.at(field).is_null() ? std::nullopt : std::optional(json.at(field).get<std::string>());
}

Playlists::Plan moving(const Json& json) {
  MoveOrder order;
  order.from = json.at("from").get<std::int32_t>();
  order.to = json.at("to").get<std::int32_t>();
  order.title = json.at("title").get<std::string>();
  order.before = neighbour(json, "before");
  order.after = neighbour(json, "after");
  return [order](PlayerLists& lists, const PlayerList& list) { return PlanMove(lists, list, order); };
}

Playlists::Plan removing(const Json& json) {
  const auto at = json.at("at").get<std::int32_t>();
  const auto title = json.at("title").get<std::string>();
  return
      [at, title](PlayerLists& lists, const PlayerList& list) { return PlanRemove(lists, list, at, title); };
}

Playlists::Plan adding(const Json& json) {
  constexpr std::int32_t kEnd = std::numeric_limits<std::int32_t>::max();
  const auto category = json.at("category").get<std::string>();
  const auto group = json.at("group").get<std::string>();
  TitleChoice choice;
  choice.all = !json.contains("titles");
  if (!choice.all) {
    for (const Json& each : json.at("titles"))
      choice.titles.push_back({each.at("at").get<std::int32_t>(), each.at("title").get<std::string>()});
  }
  const auto to = json.value("to", kEnd);
  return [category, group, choice, to](PlayerLists& lists, const PlayerList& list) {
    const std::optional<PlayerList> from = lists.group(category, group);
    if (!from) throw base::Failure(base::number::kElementNotFound, "The player can't find “" + group + "”");
    return PlanAdd(list, *from, choice, to);
  };
}

Playlists::Plan deleting() {
  return [](PlayerLists&, const PlayerList& list) { return PlanDelete(list); };
}

Playlists::Plan renaming(const std::string& name) {
  return [name](PlayerLists& lists, const PlayerList& list) { return PlanRename(lists, list, name); };
}

/// An empty plan for a path that is none of these.
Playlists::Plan planOf(const std::string& action, const Json& json) {
  if (action == "move") return moving(json);
  if (action == "remove") return removing(json);
  if (action == "add") return adding(json);
  if (action == "delete") return deleting();
  return {};
}

std::optional<Playlists::Turn> turnOf(const std::string& action) {
  if (action == "undo") return Playlists::Turn::kUndo;
  if (action == "redo") return Playlists::Turn::kRedo;
  if (action == "skip-undo") return Playlists::Turn::kSkipUndo;
  if (action == "skip-redo") return Playlists::Turn::kSkipRedo;
  return std::nullopt;
}

}  // namespace

WebAnswer WebApi::playlist(const std::string& token, const LibraryQuery& query) {
  return ask(token, [this, query](const User& user, const Reply& reply) {
    playlists_.show(query.group, query.fresh, [query, user, reply](const Playlists::Outcome& outcome) {
      if (outcome.failure != 0 || !outcome.names) return reply(refusalOf(outcome, user));
      NameList::Page page =
          outcome.names->page(query.sought, query.offset, std::min(query.limit, kLargestPage));
      Json json = jsonOf(outcome, user);
      json["names"] = std::move(page.names);
      json["places"] = std::move(page.places);
      json["offset"] = query.offset;
      json["total"] = page.total;
      json["all"] = outcome.names->size();
      reply({.body = Dump(json)});
    });
  });
}

WebAnswer WebApi::playlists(const std::string& token) {
  return ask(token, [this](const User& user, const Reply& reply) {
    playlists_.collection([user, reply](const Playlists::Outcome& outcome) {
      reply(outcome.failure != 0 ? refusalOf(outcome, user) : WebAnswer{.body = Dump(jsonOf(outcome, user))});
    });
  });
}

WebAnswer WebApi::watchPlaylist(const std::string& token, const Json& json) {
  const auto page = json.at("page").get<std::string>().substr(0, kLongestPageId);
  const auto name = json.at("name").get<std::string>();
  const auto from = json.at("from").get<std::int32_t>();
  const auto rows = json.at("rows").get<std::int32_t>();
  return askNow(token, [this, page, name, from, rows](const User&) {
    if (name.size() > kLongestName) return Refusal(400, "The name is too long");
    playlists_.watch(page, name, from, rows);
    return WebAnswer();
  });
}

WebAnswer WebApi::changePlaylist(const std::string& path, const std::string& token, const Json& json) {
  const std::string action = path.substr(path.rfind('/') + 1);
  const auto name = json.value("name", std::string());
  const bool naming = action == "create" || action == "rename";
  const std::string chosen = naming ? nameIn(json, action == "create" ? "name" : "to") : std::string();
  const Playlists::Plan plan = action == "rename" ? renaming(chosen) : planOf(action, json);
  const std::optional<Playlists::Turn> turn = turnOf(action);
  if (!plan && !turn && !naming) return Refusal(404, "There is no such page");
  return ask(token, [this, action, name, naming, chosen, plan, turn](const User& user, const Reply& reply) {
    if (user.guest) return reply(Refusal(403, "Guests can't change playlists"));
    if (naming && chosen.empty()) return reply(Refusal(400, "A playlist needs a name"));
    if (chosen.size() > kLongestName) return reply(Refusal(400, "The name is too long"));
    const Playlists::Done done = [user, reply](const Playlists::Outcome& outcome) {
      reply(outcome.failure != 0 ? refusalOf(outcome, user) : WebAnswer{.body = Dump(jsonOf(outcome, user))});
    };
    if (turn) return playlists_.turn(name, *turn, done);
    if (plan) return playlists_.change(name, plan, done);
    playlists_.create(chosen, done);
  });
}

}  // namespace standin
