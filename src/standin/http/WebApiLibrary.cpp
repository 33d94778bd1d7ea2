// What the pages ask of the player's library.
#include <algorithm>
#include <utility>

#include "standin/house/HouseJson.hpp"
#include "standin/http/WebApi.hpp"

namespace standin {
namespace {

constexpr std::size_t kLargestPage = 500;

WebAnswer playAnswer(std::int32_t result, const std::string& name, const std::string& failure) {
  if (!failure.empty()) return Refusal(502, failure);
  if (result == 0) return {};
  if (result == -1) return Refusal(404, "The player can't find “" + name + "”");
  return Refusal(502, "The player could not play “" + name + "” (error " + std::to_string(result) + ")");
}

}  // namespace

WebAnswer WebApi::library(const std::string& token, const LibraryQuery& query) {
  return ask(token, [this, query](const User&, const Reply& reply) {
    const std::optional<std::string> category = PlayerLibrary::categoryOf(query.category);
    if (!category) {
      reply(Refusal(400, "There is no such category"));
      return;
    }
    const std::optional<std::string> group = query.group.empty() ? std::nullopt : std::optional(query.group);
    library_.list(*category, group, query.fresh,
                  [query, reply](const std::shared_ptr<const NameList>& list, const std::string& failure) {
                    if (!failure.empty() || !list) {
                      reply(Refusal(502, failure));
                      return;
                    }
                    NameList::Page page =
                        list->page(query.sought, query.offset, std::min(query.limit, kLargestPage));
                    reply({.body = Dump({{"names", std::move(page.names)},
                                         {"places", std::move(page.places)},
                                         {"offset", query.offset},
                                         {"total", page.total},
                                         {"all", list->size()}})});
                  });
  });
}

WebAnswer WebApi::media(const std::string& token, const std::string& category, const std::string& name,
                        const std::string& title) {
  return ask(token, [this, category, name, title](const User&, const Reply& reply) {
    const std::optional<std::string> known = PlayerLibrary::categoryOf(category);
    if (!known) {
      reply(Refusal(400, "There is no such category"));
      return;
    }
    library_.facts(*known, name, title, [reply](const MediaFacts& facts, const std::string& failure) {
      if (!failure.empty()) {
        reply(Refusal(502, failure));
        return;
      }
      Json json{{"artist", facts.artist}, {"album", facts.album}, {"genre", facts.genre}};
      if (facts.seconds >= 0) json["seconds"] = facts.seconds;
      reply({.body = Dump(json)});
    });
  });
}

WebAnswer WebApi::play(const std::string& token, const Json& json) {
  const auto category = json.at("category").get<std::string>();
  const auto name = json.at("name").get<std::string>();
  const auto title = json.value("title", std::string());
  return ask(token, [this, category, name, title](const User&, const Reply& reply) {
    const std::optional<std::string> known = PlayerLibrary::categoryOf(category);
    if (!known || name.empty()) {
      reply(Refusal(400, known ? "Nothing was chosen" : "There is no such category"));
      return;
    }
    library_.play(
        *known, name, title,
        [reply, said = title.empty() ? name : title](std::int32_t result, const std::string& failure) {
          reply(playAnswer(result, said, failure));
        });
  });
}

}  // namespace standin
