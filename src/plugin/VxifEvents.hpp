#pragma once
#include <vector>

#include "automation/ActionDialog.hpp"
#include "automation/ActionRun.hpp"
#include "automation/Conditions.hpp"
#include "automation/Triggers.hpp"
#include "base/Members.hpp"
#include "plugin/commands/SpeechInterlock.hpp"

namespace plugin {

/// What the host's events reach in the plug-in.
struct EventParts {
  automation::ActionDialog& actionDialog;
  automation::ActionDropLists& dropLists;
  const automation::OpenActionDialog& openDialog;
  automation::ActionRun& actionRun;
  automation::Conditions& conditions;
  SpeechInterlock& speech;
  const PluginState& state;
};

/// The operations of `vxif` that the host's events need, from `ActionUI` to `VXEvent` in their order.
std::vector<base::Member> EventMembers(const EventParts& parts);

}  // namespace plugin
