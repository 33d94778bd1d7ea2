#include "standin/rules/EvaluationJson.hpp"

#include <algorithm>
#include <array>

#include "base/Failure.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/rules/CutText.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLongestWords = 300;
constexpr std::size_t kLongestText = 1000;
constexpr std::array kOutcomes{Outcome::kRunning, Outcome::kDone,   Outcome::kFailed,
                               Outcome::kRefused, Outcome::kLeft,   Outcome::kStopped,
                               Outcome::kCut,     Outcome::kCircle, Outcome::kMissed};

Outcome OutcomeOfName(const std::string& name) {
  for (const Outcome outcome : kOutcomes)
    if (NameOf(outcome) == name) return outcome;
  throw base::Failure(base::number::kDeviceIo);
}

}  // namespace

bool IsDull(const Evaluation& evaluation) {
  if (evaluation.outcome == Outcome::kRunning) return false;
  // What the end of the house cut had been let run, if it has a number; how far it came is not known.
  if (evaluation.outcome == Outcome::kCut && evaluation.id != 0) return false;
  return std::none_of(evaluation.actions.begin(), evaluation.actions.end(),
                      [](const DoneAction& each) { return each.begun; });
}

Json JsonOf(const Evaluation& evaluation) {
  Json conditions = Json::array();
  for (const SeenCondition& each : evaluation.conditions) {
    conditions.push_back({{"words", CutText(each.words, kLongestWords)},
                          {"saw", CutText(each.saw, kLongestWords)},
                          {"holds", each.holds}});
  }
  Json actions = Json::array();
  for (const DoneAction& each : evaluation.actions) {
    actions.push_back({{"words", CutText(each.words, kLongestWords)},
                       {"begun", each.begun},
                       {"time", each.time},
                       {"spent", each.spent},
                       {"failure", CutText(each.failure, kLongestText)}});
  }
  return {{"id", evaluation.id},
          {"event", evaluation.event},
          {"time", evaluation.time},
          {"trigger", CutText(evaluation.trigger, kLongestText)},
          {"outcome", NameOf(evaluation.outcome)},
          {"why", CutText(evaluation.why, kLongestText)},
          {"conditions", std::move(conditions)},
          {"actions", std::move(actions)}};
}

Evaluation EvaluationOfText(const std::string& text) {
  try {
    const Json json = ReadJson(text);
    Evaluation evaluation;
    evaluation.id = json.at("id").get<std::int64_t>();
    evaluation.event = json.at("event").get<std::int32_t>();
    evaluation.time = json.at("time").get<std::int64_t>();
    evaluation.trigger = json.at("trigger").get<std::string>();
    evaluation.outcome = OutcomeOfName(json.at("outcome").get<std::string>());
    evaluation.why = json.at("why").get<std::string>();
    for (const Json& each : json.at("conditions")) {
      evaluation.conditions.push_back({each.at("words").get<std::string>(), each.at("saw").get<std::string>(),
                                       each.at("holds").get<bool>()});
    }
    for (const Json& each : json.at("actions")) {
      evaluation.actions.push_back({each.at("words").get<std::string>(), each.at("time").get<std::int64_t>(),
                                    each.at("spent").get<std::int64_t>(), each.at("begun").get<bool>(),
                                    each.at("failure").get<std::string>()});
    }
    return evaluation;
  } catch (const std::exception&) {
    throw base::Failure(base::number::kDeviceIo, "An evaluation can't be read");
  }
}

}  // namespace standin
