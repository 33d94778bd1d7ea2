// What the pages ask of the player's library.
#include <algorithm>
#include <utility>

#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

constexpr std::size_t kLargestPage = 500;

WebAnswer playAnswer(std::int32_t result, const std::string& name, const std::string& failure) {
  if (!failure.empty()) return Refusal(502, failure);
  if (result == 0) return {};
  if (result == -1) return Refusal(404, "The player can't find “" + name + "”");
  return Refusal(502, "The player could not play “" + name + "” (error " + std::to_string(result) + ")");
}

void list(PlayerLibrary& library, const WebCall& call, const Reply& reply) {
  const std::optional<std::string> category = PlayerLibrary::categoryOf(call.parameter("category"));
  if (!category) return reply(Refusal(400, "There is no such category"));
  const std::string group = call.parameter("group");
  const auto offset = call.number<std::size_t>("offset");
  const auto limit = std::min(call.number<std::size_t>("limit"), kLargestPage);
  library.list(*category, group.empty() ? std::nullopt : std::optional(group), call.parameter("fresh") == "1",
               [sought = call.parameter("q"), offset, limit, reply](
                   const std::shared_ptr<const NameList>& names, const std::string& failure) {
                 if (!failure.empty() || !names) return reply(Refusal(502, failure));
                 NameList::Page page = names->page(sought, offset, limit);
                 reply(Told({{"names", std::move(page.names)},
                             {"places", std::move(page.places)},
                             {"offset", offset},
                             {"total", page.total},
                             {"all", names->size()}}));
               });
}

void media(PlayerLibrary& library, const WebCall& call, const Reply& reply) {
  const std::optional<std::string> category = PlayerLibrary::categoryOf(call.parameter("category"));
  if (!category) return reply(Refusal(400, "There is no such category"));
  library.facts(
      *category, call.parameter("name"), call.parameter("title"),
      [reply](const MediaFacts& facts, const std::string& failure) {
        if (!failure.empty()) return reply(Refusal(502, failure));
        nlohmann::json json{{"artist", facts.artist}, {"album", facts.album}, {"genre", facts.genre}};
        if (facts.seconds >= 0) json["seconds"] = facts.seconds;
        reply(Told(json));
      });
}

void volume(PlayerLibrary& library, const WebCall&, const Reply& reply) {
  library.volume([reply](std::int32_t volume, const std::string& failure) {
    reply(failure.empty() ? Told({{"volume", volume}}) : Refusal(502, failure));
  });
}

void play(PlayerLibrary& library, const WebCall& call, const Reply& reply) {
  const std::optional<std::string> category =
      PlayerLibrary::categoryOf(call.json.at("category").get<std::string>());
  const auto name = call.json.at("name").get<std::string>();
  const auto title = call.json.value("title", std::string());
  if (!category) return reply(Refusal(400, "There is no such category"));
  if (name.empty()) return reply(Refusal(400, "Nothing was chosen"));
  library.play(*category, name, title,
               [reply, said = title.empty() ? name : title](std::int32_t result, const std::string& failure) {
                 reply(playAnswer(result, said, failure));
               });
}

}  // namespace

Routes LibraryRoutes(PlayerLibrary& library) {
  const auto with = [&library](auto handle) {
    return Later{
        [&library, handle](const WebCall& call, const Reply& reply) { handle(library, call, reply); }};
  };
  return {{Method::kGet, "/api/library", Role::kGuest, with(list)},
          {Method::kGet, "/api/media", Role::kGuest, with(media)},
          {Method::kGet, "/api/volume", Role::kGuest, with(volume)},
          {Method::kPost, "/api/play", Role::kGuest, with(play)}};
}

}  // namespace standin
