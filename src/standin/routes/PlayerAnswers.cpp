#include "standin/routes/PlayerAnswers.hpp"

#include "base/Failure.hpp"

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

}  // namespace standin
