#include "standin/routes/PlayerAnswers.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {

int StatusOfFailure(std::int32_t number) {
  switch (number) {
    case base::number::kElementNotFound: return 404;
    case base::number::kInvalidArgument: return 400;
    case base::number::kChangedMeanwhile:
    case base::number::kNameInUse: return 409;
    case base::number::kDiskFull: return 507;
    default: return 502;
  }
}

WebAnswer OutcomeOf(const PlayerLibrary::Failed& failed) {
  return failed.text.empty() ? WebAnswer() : Refusal(StatusOfFailure(failed.number), failed.text);
}

nlohmann::json TitleJson(const Title& title) {
  nlohmann::json json{{"mark", MarkOf(title.name, title.source)},
                      {"artist", title.artist},
                      {"albumArtist", title.albumArtist},
                      {"album", title.album},
                      {"genre", title.genre}};
  if (title.track > 0) json["track"] = title.track;
  if (title.seconds > 0) json["seconds"] = title.seconds;
  return json;
}

nlohmann::json TitlesJson(const std::vector<Title>& titles) {
  nlohmann::json all = nlohmann::json::array();
  for (const Title& each : titles) all.push_back(TitleJson(each));
  return all;
}

nlohmann::json ListJson(const Playlists::Outcome& outcome, const User& user) {
  const auto textOrNull = [](const std::string& text) {
    return text.empty() ? nlohmann::json() : nlohmann::json(text);
  };
  nlohmann::json json{{"name", outcome.name},
                      {"version", outcome.version},
                      {"undo", textOrNull(outcome.undo)},
                      {"redo", textOrNull(outcome.redo)},
                      {"said", outcome.said},
                      {"edit", !user.guest}};
  if (outcome.names) json["total"] = outcome.names->size();
  if (outcome.restoring > 0) json["restoring"] = {outcome.restored, outcome.restoring};
  return json;
}

WebAnswer ListAnswer(const Playlists::Outcome& outcome, const User& user) {
  nlohmann::json json = ListJson(outcome, user);
  if (outcome.failure == 0 && outcome.error.empty()) return Told(json);
  json["error"] = outcome.error;
  json["stuck"] = outcome.stuck;
  WebAnswer answer = Told(json);
  answer.status = StatusOfFailure(outcome.failure);
  return answer;
}

std::string ListNameIn(const nlohmann::json& json, const char* field) {
  auto name = json.at(field).get<std::string>();
  std::replace_if(
      name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
  return base::TrimBlanks(name);
}

std::optional<WebAnswer> WrongListName(const std::string& name) {
  if (name.empty()) return Refusal(400, "A playlist needs a name");
  if (name.size() > kLongestListName) return Refusal(400, "The name is too long");
  return std::nullopt;
}

}  // namespace standin
