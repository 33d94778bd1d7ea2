#pragma once
#include <memory>
#include <optional>
#include <string>

#include "automation/Devices.hpp"
#include "base/Loop.hpp"
#include "base/Platform.hpp"
#include "player/PlayerEvents.hpp"
#include "player/StaleMarks.hpp"
#include "player/StateQueue.hpp"
#include "player/TriggerSink.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"
#include "plugin/host/Neighbours.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"

namespace plugin {

/// What the plug-in's public object shows the host of itself.
struct PublicFields {
  std::string Link;
  std::string LinkText;
  std::string Page_Title;
  base::ObjectRef Scripting;
};

/// The modules that start-up brings to life.
struct LifecycleParts {
  HostServices& host;
  Settings& settings;
  Loggers& loggers;
  PluginState& state;
  base::Platform& platform;
  base::Loop& loop;
  player::WMPPlayer& form;
  player::WMPCalls& calls;
  player::PopupView& popup;
  player::StateQueue& queue;
  player::PlayerEvents& playerEvents;
  player::StaleMarks& stale;
  player::TriggerSink& triggers;
  automation::Devices& devices;
  LibraryCalls& library;
  WebForms& web;
  MediaEvents& mediaEvents;
  Neighbours neighbours;
};

/// The road from the host's first call to the ready state, and back to the process's end.
class Lifecycle {
 public:
  explicit Lifecycle(const LifecycleParts& parts);

  /// Stores the host's objects and makes the script object. Failures are skipped.
  void RegisterCallback(const base::ObjectRef& frm);
  /// The foreground half: what the host must wait for. `self` is the public object. Answers the empty text,
  /// or the reason of a refusal. Never throws.
  std::string InitIO(const base::ObjectRef& self);
  /// The background half. Answers the empty text, or the reason of its failure. Never throws.
  std::string InitHW();
  /// Stops the player, saves what only a stop saves and ends the process. Failures are skipped.
  void ShutdownIO();

  [[nodiscard]] PublicFields& fields() { return fields_; }
  /// Whether one of the halves has failed, so that nothing is to come of this start.
  [[nodiscard]] bool failed() const { return failed_; }
  [[nodiscard]] base::Timer& StartInitialization() { return *StartInitialization_; }

 private:
  void StartInitialization_Timer();
  std::string startInForeground(const base::ObjectRef& self);
  // The foreground half, step by step; a text is a refusal.
  void announce();
  std::optional<std::string> connectPlayer();
  std::optional<std::string> checkPlayerVersion();
  std::optional<std::string> checkMediaRights();
  std::optional<std::string> checkHostVersion();
  void registerWithHost(const base::ObjectRef& self);
  // The background half.
  void composeTags();
  void showModes();
  void placeWindow();
  void readFlags();
  void registerMenu();
  void updateVoiceEvents();

  LifecycleParts in_;
  PublicFields fields_;
  bool failed_ = false;
  std::unique_ptr<base::Timer> StartInitialization_;
};

/// True for host versions from 1.6.51 on. The parts between dots compare by numeric value.
bool HostIsNewEnough(const std::string& version);

}  // namespace plugin
