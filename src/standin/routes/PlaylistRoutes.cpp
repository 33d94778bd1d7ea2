// What the pages ask of the player's playlists. Guests look and change nothing.
#include <algorithm>
#include <limits>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/routes/PlayerAnswers.hpp"
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLargestPage = 500;
constexpr std::size_t kLongestPageId = 40;

std::optional<std::string> Neighbour(const Json& json, const char* field) {
  return json.at(field).is_null() ? std::nullopt : std::optional(json.at(field).get<std::string>());
}

Playlists::Plan Moving(const Json& json) {
  MoveOrder order;
  order.from = json.at("from").get<std::int32_t>();
  order.to = json.at("to").get<std::int32_t>();
  order.title = json.at("title").get<std::string>();
  order.mark = json.at("mark").get<std::string>();
  order.before = Neighbour(json, "before");
  order.after = Neighbour(json, "after");
  return [order](PlayerLists&, const PlayerList& list) { return PlanMove(list, order); };
}

/// The very title of a row.
TitleAddress TitleIn(const Json& json) {
  return {.at = json.at("at").get<std::int32_t>(),
          .name = json.at("title").get<std::string>(),
          .mark = json.at("mark").get<std::string>()};
}

Playlists::Plan Removing(const Json& json) {
  return [title = TitleIn(json)](PlayerLists&, const PlayerList& list) { return PlanRemove(list, title); };
}

Playlists::Plan Adding(const Json& json) {
  constexpr std::int32_t kEnd = std::numeric_limits<std::int32_t>::max();
  const auto category = json.at("category").get<std::string>();
  const auto group = json.at("group").get<std::string>();
  TitleChoice choice{.all = !json.contains("titles"), .by = json.value("by", std::string())};
  if (!choice.all)
    for (const Json& each : json.at("titles")) choice.titles.push_back(TitleIn(each));
  const auto to = json.value("to", kEnd);
  return [category, group, choice, to](PlayerLists& lists, const PlayerList& list) {
    const std::optional<PlayerList> from = lists.group(category, group);
    if (!from) throw base::Failure(base::number::kElementNotFound, "The player can't find “" + group + "”");
    return PlanAdd(list, *from, choice, to);
  };
}

Playlists::Plan Deleting(const Json&) {
  return [](PlayerLists&, const PlayerList& list) { return PlanDelete(list); };
}

/// Tells the asker what has become of a change.
Playlists::Done Answering(const WebCall& call, const Reply& reply) {
  return [user = call.user, reply](const Playlists::Outcome& outcome) { reply(ListAnswer(outcome, user)); };
}

/// A page of a list's titles, with what the player tells of each.
void Show(Playlists& playlists, PlayerLibrary& library, const WebCall& call, const Reply& reply) {
  const auto offset = call.number<std::size_t>("offset");
  const auto limit = std::min(call.number<std::size_t>("limit"), kLargestPage);
  playlists.show(call.parameter("group"), call.parameter("fresh") == "1",
                 [&library, sought = call.parameter("q"), offset, limit, user = call.user,
                  reply](const Playlists::Outcome& outcome) {
                   if (outcome.failure != 0 || !outcome.names) return reply(ListAnswer(outcome, user));
                   NameList::Page page = outcome.names->page(sought, offset, limit);
                   Json json = ListJson(outcome, user);
                   json["names"] = std::move(page.names);
                   json["places"] = page.places;
                   json["offset"] = offset;
                   json["total"] = page.total;
                   json["all"] = outcome.names->size();
                   library.titlesAt(
                       "PlayList", outcome.name, std::move(page.places),
                       [json = std::move(json), reply](const std::vector<Title>& titles,
                                                       const PlayerLibrary::Failed& failed) mutable {
                         if (!failed.text.empty()) return reply(OutcomeOf(failed));
                         json["titles"] = TitlesJson(titles);
                         reply(Told(json));
                       });
                 });
}

WebAnswer Watch(Playlists& playlists, const WebCall& call) {
  const auto page = call.json.at("page").get<std::string>().substr(0, kLongestPageId);
  const auto name = call.json.at("name").get<std::string>();
  if (name.size() > kLongestListName) return Refusal(400, "The name is too long");
  playlists.watch(page, name);
  return {};
}

void Create(Playlists& playlists, const WebCall& call, const Reply& reply) {
  const std::string name = ListNameIn(call.json, "name");
  if (const auto wrong = WrongListName(name)) return reply(*wrong);
  playlists.create(name, Answering(call, reply));
}

void Rename(Playlists& playlists, const WebCall& call, const Reply& reply) {
  const std::string to = ListNameIn(call.json, "to");
  if (const auto wrong = WrongListName(to)) return reply(*wrong);
  playlists.change(
      call.json.value("name", std::string()),
      [to](PlayerLists& lists, const PlayerList& list) { return PlanRename(lists, list, to); },
      Answering(call, reply));
}

}  // namespace

Routes PlaylistRoutes(Playlists& playlists, PlayerLibrary& library) {
  const auto with = [&playlists](auto handle) {
    return Later{
        [&playlists, handle](const WebCall& call, const Reply& reply) { handle(playlists, call, reply); }};
  };
  const auto planned = [&playlists](Playlists::Plan (*plan)(const Json&)) {
    return Later{[&playlists, plan](const WebCall& call, const Reply& reply) {
      playlists.change(call.json.value("name", std::string()), plan(call.json), Answering(call, reply));
    }};
  };
  const auto turned = [&playlists](Playlists::Turn turn) {
    return Later{[&playlists, turn](const WebCall& call, const Reply& reply) {
      playlists.turn(call.json.value("name", std::string()), turn, Answering(call, reply));
    }};
  };
  const auto change = [](const std::string& action, const Later& handler) {
    return Route{Method::kPost, "/api/playlist/" + action,       Role::kOwner,
                 handler,       "Guests can't change playlists", Route::kLargestBody};
  };
  const auto collection = [](Playlists& all, const WebCall& call, const Reply& reply) {
    all.collection(Answering(call, reply));
  };
  return {{Method::kGet, "/api/playlist", Role::kGuest,
           Later{[&playlists, &library](const WebCall& call, const Reply& reply) {
             Show(playlists, library, call, reply);
           }}},
          {Method::kGet, "/api/playlists", Role::kGuest, with(collection)},
          {Method::kPost, "/api/playlist/watch", Role::kGuest,
           Now{[&playlists](const WebCall& call) { return Watch(playlists, call); }}},
          change("create", with(Create)),
          change("rename", with(Rename)),
          change("move", planned(Moving)),
          change("add", planned(Adding)),
          change("remove", planned(Removing)),
          change("delete", planned(Deleting)),
          change("undo", turned(Playlists::Turn::kUndo)),
          change("redo", turned(Playlists::Turn::kRedo)),
          change("skip-undo", turned(Playlists::Turn::kSkipUndo)),
          change("skip-redo", turned(Playlists::Turn::kSkipRedo))};
}

}  // namespace standin
