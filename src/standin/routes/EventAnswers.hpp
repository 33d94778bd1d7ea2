#pragma once
#include <nlohmann/json.hpp>
#include <string>

#include "standin/routes/Routes.hpp"

namespace standin {

// What the pages are told of the events.

/// All of them, by group and name, as the list shows them, with what can be undone: JSON, written at once, as
/// there may be thousands.
std::string EventListText(const EventParts& parts);
/// One with all that it does, and how that reads.
nlohmann::json EventJson(const EventParts& parts, const RuledEvent& event);
/// What there is to choose from in an event's parts.
nlohmann::json EventChoicesJson(const EventParts& parts);
nlohmann::json DryRunJson(const DryRun& run);
/// What came of a trigger, as those hear it who have asked for it.
nlohmann::json EvaluationJson(const Evaluation& evaluation);
/// The place of the house with today's sun; null without a place.
nlohmann::json PlaceJson(const EventParts& parts);

}  // namespace standin
