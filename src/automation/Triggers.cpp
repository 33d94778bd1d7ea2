#include "automation/Triggers.hpp"

#include <string>

#include "base/Attempt.hpp"
#include "plugin/host/PluginState.hpp"

namespace automation {

namespace {

const char* WordOf(std::int32_t code) {
  switch (code) {
    case player::kPlaybackEnded: return "Playback Ended";
    case player::kPlaybackStarted: return "Playback Started";
    case player::kTransitioningTrigger: return "Transitioning";
    case player::kInitializationCompleted: return "Initialization Completed";
    default: return nullptr;
  }
}

}  // namespace

void Triggers::ActionTrigger(std::int32_t code) {
  const char* word = WordOf(code);
  if (word == nullptr) return;
  base::Handled(
      // Fields are separated by the character of code 2; the asterisk stands where a stored trigger has the
      // host's own field.
      [&] { host_.checktrigger(std::string(plugin::kName) + "\x02*\x02" + word); },
      [&](const base::Failure& failure) {
        loggers_.LogModuleError(failure.number(), failure.description(), "CommonModule", "ActionTrigger");
      });
}

}  // namespace automation
