#pragma once
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "standin/player/PlayerLibrary.hpp"
#include "standin/playlists/Playlists.hpp"
#include "standin/routes/Route.hpp"

namespace standin {

// What answers about the player's music have in common.

/// The status for a failure of base/Failure.hpp.
int StatusOfFailure(std::int32_t number);
/// Success for an empty text, a refusal otherwise.
WebAnswer OutcomeOf(const PlayerLibrary::Failed& failed);
/// What a row tells of its title, with the mark that it acts by; the source itself stays here.
nlohmann::json TitleJson(const Title& title);
nlohmann::json TitlesJson(const std::vector<Title>& titles);
/// The state of a list, without its titles.
nlohmann::json ListJson(const Playlists::Outcome& outcome, const User& user);
/// What has become of a request about a list.
WebAnswer ListAnswer(const Playlists::Outcome& outcome, const User& user);
/// Bytes of a list's name: 300 characters of any kind.
inline constexpr std::size_t kLongestListName = 1200;
/// A name for a list as it was posted: one line, without blanks around it.
std::string ListNameIn(const nlohmann::json& json, const char* field);
/// A refusal of a name for a list; nothing when it is good.
std::optional<WebAnswer> WrongListName(const std::string& name);

}  // namespace standin
