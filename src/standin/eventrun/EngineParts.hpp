#pragma once
#include "base/Loop.hpp"
#include "standin/calendar/WallClock.hpp"
#include "standin/eventrun/EventWorld.hpp"
#include "standin/events/AlarmMemory.hpp"
#include "standin/events/Evaluation.hpp"
#include "standin/events/EventWords.hpp"
#include "standin/events/RuleSource.hpp"

namespace standin {

/// What events run in.
struct EngineParts {
  base::Loop& loop;
  RuleSource& rules;
  EventWorld& world;
  const EventWords& words;
  EvaluationSink& sink;
  const WallClock& clock;
  AlarmMemory* alarms = nullptr;  ///< null: nothing is known of an earlier run of the house
};

}  // namespace standin
