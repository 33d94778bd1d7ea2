#pragma once
#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

#include "standin/player/PlayerLibrary.hpp"
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

}  // namespace standin
