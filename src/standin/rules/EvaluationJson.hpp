#pragma once
#include <nlohmann/json.hpp>
#include <string>

#include "standin/events/Evaluation.hpp"

namespace standin {

/// An evaluation as the pages know it, and the database too. Texts are cut to what a list can show; what is
/// no plain UTF-8 in them is replaced when the JSON is written.
nlohmann::json JsonOf(const Evaluation& evaluation);
/// The other way. Throws number 57 for a text that is none of these.
Evaluation EvaluationOfText(const std::string& text);
/// No action of it was begun, whatever became of it, so that it may go sooner than those that ran or failed.
bool IsDull(const Evaluation& evaluation);

}  // namespace standin
