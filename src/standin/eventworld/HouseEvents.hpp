#pragma once
#include <memory>

#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventworld/EventTeller.hpp"
#include "standin/eventworld/HouseWorld.hpp"

namespace standin {

/// The house's events at work: the engine in the real house, heard by the plug-in, devices and scripts for as
/// long as this lives.
class HouseEvents {
 public:
  struct Parts {
    base::Loop& loop;
    House& house;
    HouseObjects& objects;
    PluginKeeper& plugin;
    Speech& speech;
    const ScriptStore& scripts;
    ScriptRunner& runner;
    RuleSource& rules;
    const EventWords& words;
    EvaluationSink& history;
    const WallClock& clock;
    AlarmMemory& alarms;
  };
  explicit HouseEvents(const Parts& parts);
  ~HouseEvents();
  HouseEvents(const HouseEvents&) = delete;
  HouseEvents& operator=(const HouseEvents&) = delete;
  HouseEvents(HouseEvents&&) = delete;
  HouseEvents& operator=(HouseEvents&&) = delete;

  [[nodiscard]] EventControl& control() { return engine_; }

 private:
  void begin(PluginPhase phase);

  House& house_;
  EventTeller teller_;
  HouseWorld world_;
  EventEngine engine_;
  bool begun_ = false;  ///< the house's start has been told
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  DeviceHearing devices_;  ///< ends before what it tells
};

}  // namespace standin
