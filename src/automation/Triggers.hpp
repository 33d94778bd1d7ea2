#pragma once
#include <string>

#include "player/TriggerSink.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"

namespace automation {

/// Tells the host that something has happened in the player. The host may run events, and their actions,
/// before the call returns.
class Triggers : public player::TriggerSink {
 public:
  Triggers(plugin::HostServices& host, plugin::Loggers& loggers) : host_(host), loggers_(loggers) {}
  void ActionTrigger(std::int32_t code) override;

  /// The dialog in which a user chooses one of the triggers.
  static std::string TriggerUI();
  /// A stored trigger in one line; empty for a text without a trigger word. Never throws.
  static std::string TriggerUIFormat(const std::string& TrigString);

 private:
  plugin::HostServices& host_;
  plugin::Loggers& loggers_;
};

}  // namespace automation
