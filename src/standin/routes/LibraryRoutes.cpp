// What the pages ask of the player's library.
#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/routes/PlayerAnswers.hpp"
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLargestPage = 500;
constexpr const char* kAllTitles = "Media Library";

struct Music {
  PlayerLibrary& library;
  LibrarySearch& search;
};

/// The category's own word, also "Media Library"; throws number 5 for any other text.
std::string CategoryIn(const std::string& text) {
  if (base::SameText(text, kAllTitles)) return kAllTitles;
  const std::optional<std::string> known = PlayerLibrary::categoryOf(text);
  if (!known) throw base::Failure(base::number::kInvalidArgument, "There is no such category");
  return *known;
}

LibrarySearch::Query QueryOf(const WebCall& call) {
  return {.sought = call.parameter("q"),
          .offset = call.number<std::size_t>("offset"),
          .limit = std::min(call.number<std::size_t>("limit"), kLargestPage),
          .fresh = call.parameter("fresh") == "1"};
}

Json JsonOf(LibrarySearch::Group group) {
  Json json{{"category", group.category},
            {"names", std::move(group.names)},
            {"places", std::move(group.places)},
            {"total", group.total}};
  if (group.category == kAllTitles) json["titles"] = TitlesJson(group.titles);
  return json;
}

void Names(const Music& music, const std::string& category, const WebCall& call, const Reply& reply) {
  const LibrarySearch::Query query = QueryOf(call);
  music.library.list(category, query.fresh,
                     [music, query, reply, artists = category == "Album" && call.parameter("artists") == "1"](
                         const std::shared_ptr<const NameList>& list, const PlayerLibrary::Failed& failed) {
                       if (!list) return reply(OutcomeOf(failed));
                       NameList::Page page = list->page(query.sought, query.offset, query.limit);
                       Json json{{"names", page.names},
                                 {"places", std::move(page.places)},
                                 {"offset", query.offset},
                                 {"total", page.total},
                                 {"all", list->size()}};
                       if (!artists) return reply(Told(json));
                       music.library.artistsOf(std::move(page.names),
                                               [json, reply](const std::vector<std::string>& known) mutable {
                                                 json["artists"] = known;
                                                 reply(Told(json));
                                               });
                     });
}

/// A page of a group's rows. The name of a head is its artist's, and its place none.
Json RowsJson(const TitleList& list, const TitleList::Choice& choice, const LibrarySearch::Query& query) {
  const std::vector<TitleList::Row> rows = list.rows(choice);
  const auto heads = std::count_if(
      rows.begin(), rows.end(), [](const TitleList::Row& row) { return row.place == TitleList::Row::kHead; });
  Json names = Json::array();
  Json places = Json::array();
  Json titles = Json::array();
  for (std::size_t i = query.offset; i < rows.size() && names.size() < query.limit; ++i) {
    const bool head = rows[i].place == TitleList::Row::kHead;
    const Title* const title = head ? nullptr : &list.all().at(static_cast<std::size_t>(rows[i].place));
    names.push_back(head ? rows[i].artist : title->name);
    places.push_back(rows[i].place);
    titles.push_back(head ? Json() : TitleJson(*title));
  }
  return {{"names", std::move(names)}, {"places", std::move(places)}, {"titles", std::move(titles)},
          {"offset", query.offset},    {"total", rows.size()},        {"heads", heads},
          {"all", list.all().size()}};
}

void Titles(const Music& music, const std::string& category, const WebCall& call, const Reply& reply) {
  const LibrarySearch::Query query = QueryOf(call);
  const TitleList::Choice choice{query.sought, call.parameter("by"), category == "Album"};
  music.library.titles(category, call.parameter("group"), query.fresh,
                       [query, choice, reply](const std::shared_ptr<const TitleList>& list,
                                              const PlayerLibrary::Failed& failed) {
                         reply(list ? Told(RowsJson(*list, choice, query)) : OutcomeOf(failed));
                       });
}

void List(const Music& music, const WebCall& call, const Reply& reply) {
  const std::string category = CategoryIn(call.parameter("category"));
  if (!call.parameter("group").empty()) return Titles(music, category, call, reply);
  if (category != kAllTitles) return Names(music, category, call, reply);
  const LibrarySearch::Query query = QueryOf(call);
  music.search.titles(query, [query, reply](LibrarySearch::Group group, const PlayerLibrary::Failed& failed) {
    if (!failed.text.empty()) return reply(OutcomeOf(failed));
    Json json = JsonOf(std::move(group));
    json["offset"] = query.offset;
    reply(Told(json));
  });
}

void Albums(const Music& music, const WebCall& call, const Reply& reply) {
  const std::string category = CategoryIn(call.parameter("category"));
  music.library.albums(
      category, call.parameter("group"),
      [reply](const std::shared_ptr<const NameList>& list, const PlayerLibrary::Failed& failed) {
        reply(list ? Told({{"names", list->all()}}) : OutcomeOf(failed));
      });
}

void Search(const Music& music, const WebCall& call, const Reply& reply) {
  music.search.everywhere(
      QueryOf(call), [reply](std::vector<LibrarySearch::Group> groups, const PlayerLibrary::Failed& failed) {
        if (!failed.text.empty()) return reply(OutcomeOf(failed));
        Json found = Json::array();
        for (LibrarySearch::Group& group : groups) found.push_back(JsonOf(std::move(group)));
        reply(Told({{"groups", std::move(found)}}));
      });
}

/// {category, name} plays a group, with "by" what that artist has in it; {category, name, at, title, mark}
/// one of its titles, and with "on" those behind it too.
void Play(const Music& music, const WebCall& call, const Reply& reply) {
  const std::string category = CategoryIn(call.json.at("category").get<std::string>());
  const auto group = call.json.at("name").get<std::string>();
  const auto done = [reply](const PlayerLibrary::Failed& failed) { reply(OutcomeOf(failed)); };
  // A title that is not clear is no wish for all of them.
  if (call.json.contains("mark") || call.json.contains("title") || call.json.contains("at")) {
    const TitleAddress title{category, group, call.json.at("at").get<std::int32_t>(),
                             call.json.at("title").get<std::string>(),
                             call.json.at("mark").get<std::string>()};
    if (call.json.value("on", false))
      return music.library.playOn(title, call.json.value("by", std::string()), done);
    return music.library.play(title, done);
  }
  if (group.empty()) return reply(Refusal(400, "Nothing was chosen"));
  music.library.play(category, group, call.json.value("by", std::string()), done);
}

void Volume(const Music& music, const WebCall&, const Reply& reply) {
  music.library.volume([reply](std::int32_t volume, const PlayerLibrary::Failed& failed) {
    reply(failed.text.empty() ? Told({{"volume", volume}}) : OutcomeOf(failed));
  });
}

}  // namespace

Routes LibraryRoutes(PlayerLibrary& library, LibrarySearch& searching) {
  const auto with = [music = Music{library, searching}](auto handle) {
    return Later{[music, handle](const WebCall& call, const Reply& reply) {
      try {
        handle(music, call, reply);
      } catch (const base::Failure& failure) {
        reply(Refusal(StatusOfFailure(failure.number()), failure.description()));
      }
    }};
  };
  return {{Method::kGet, "/api/library", Role::kGuest, with(List)},
          {Method::kGet, "/api/albums", Role::kGuest, with(Albums)},
          {Method::kGet, "/api/search", Role::kGuest, with(Search)},
          {Method::kGet, "/api/volume", Role::kGuest, with(Volume)},
          {Method::kPost, "/api/play", Role::kGuest, with(Play)}};
}

}  // namespace standin
