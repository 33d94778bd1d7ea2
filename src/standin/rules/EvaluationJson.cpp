#include "standin/rules/EvaluationJson.hpp"

#include <array>

#include "base/Failure.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLongestWords = 300;
constexpr std::size_t kLongestText = 1000;
constexpr std::array kOutcomes{Outcome::kRunning, Outcome::kDone,   Outcome::kFailed,
                               Outcome::kRefused, Outcome::kLeft,   Outcome::kStopped,
                               Outcome::kCut,     Outcome::kCircle, Outcome::kMissed};

/// At most so many bytes, without half a character at the end.
std::string cut(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "…";
}

Outcome outcomeOf(const std::string& name) {
  for (const Outcome outcome : kOutcomes)
    if (NameOf(outcome) == name) return outcome;
  throw base::Failure(base::number::kDeviceIo);
}

}  // namespace

bool IsDull(Outcome outcome) {
  return outcome == Outcome::kRefused || outcome == Outcome::kLeft || outcome == Outcome::kMissed;
}

Json JsonOf(const Evaluation& evaluation) {
  Json conditions = Json::array();
  for (const SeenCondition& each : evaluation.conditions) {
    conditions.push_back({{"words", cut(each.words, kLongestWords)},
                          {"saw", cut(each.saw, kLongestWords)},
                          {"holds", each.holds}});
  }
  Json actions = Json::array();
  for (const DoneAction& each : evaluation.actions) {
    actions.push_back({{"words", cut(each.words, kLongestWords)},
                       {"begun", each.begun},
                       {"time", each.time},
                       {"spent", each.spent},
                       {"failure", cut(each.failure, kLongestText)}});
  }
  return {{"id", evaluation.id},
          {"event", evaluation.event},
          {"time", evaluation.time},
          {"trigger", cut(evaluation.trigger, kLongestText)},
          {"outcome", NameOf(evaluation.outcome)},
          {"why", cut(evaluation.why, kLongestText)},
          {"conditions", std::move(conditions)},
          {"actions", std::move(actions)}};
}

Evaluation EvaluationOfText(const std::string& text) {
  try {
    const Json json = Json::parse(text);
    Evaluation evaluation;
    evaluation.id = json.at("id").get<std::int64_t>();
    evaluation.event = json.at("event").get<std::int32_t>();
    evaluation.time = json.at("time").get<std::int64_t>();
    evaluation.trigger = json.at("trigger").get<std::string>();
    evaluation.outcome = outcomeOf(json.at("outcome").get<std::string>());
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
