#include "automation/Triggers.hpp"

#include "automation/ActionString.hpp"
#include "base/Attempt.hpp"
#include "plugin/host/PluginState.hpp"

namespace automation {

namespace {

struct Trigger {
  std::int32_t code;
  const char* word;
};
/// In the order in which the dialog offers them.
constexpr Trigger kTriggers[] = {{player::kPlaybackStarted, "Playback Started"},
                                 {player::kPlaybackEnded, "Playback Ended"},
                                 {player::kTransitioningTrigger, "Transitioning"},
                                 {player::kInitializationCompleted, "Initialization Completed"}};

const char* WordOf(std::int32_t code) {
  for (const Trigger& trigger : kTriggers)
    if (trigger.code == code) return trigger.word;
  return nullptr;
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

std::string Triggers::TriggerUI() {
  std::string text = "Media Player Triggers\t1\t0\tTrigger:";
  for (const Trigger& trigger : kTriggers) text.append("\t").append(trigger.word);
  return text;
}

std::string Triggers::TriggerUIFormat(const std::string& TrigString) {
  std::string text;
  base::Attempt step;
  step([&] {
    const ActionString a(TrigString);
    const std::string& word = a[ActionString::kWord];
    bool known = false;
    for (const Trigger& trigger : kTriggers) known = word == trigger.word || known;
    text = std::string(plugin::kName) + (known ? " " : " Unknown Trigger ") + word;
  });
  return text;
}

}  // namespace automation
