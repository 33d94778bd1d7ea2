#include "automation/ActionRun.hpp"

#include "base/Attempt.hpp"

namespace automation {

namespace {

struct ControlAction {
  const char* word;
  void (*run)(player::WMPCalls& calls);
};
constexpr ControlAction kControlActions[] = {
    {"Stop", [](player::WMPCalls& calls) { calls.StopPlayback(); }},
    {"Pause", [](player::WMPCalls& calls) { calls.PauseResume(); }},
    {"Resume", [](player::WMPCalls& calls) { calls.ResumePlayback(); }},
    {"Next", [](player::WMPCalls& calls) { calls.NextTrack(); }},
    {"Previous", [](player::WMPCalls& calls) { calls.PreviousTrack(); }},
    {"Restart", [](player::WMPCalls& calls) { calls.RestartPlayback(); }},
    {"Mute", [](player::WMPCalls& calls) { calls.SetMute(true); }},
    {"UnMute", [](player::WMPCalls& calls) { calls.SetMute(false); }},
};

struct ModeChange {
  const char* word;
  bool shuffle;
  bool loop;
};
constexpr ModeChange kModeChanges[] = {{"Loop Only", false, true},
                                       {"Shuffle Only", true, false},
                                       {"Shuffle and Loop", true, true},
                                       {"No Shuffle and No Loop", false, false}};

}  // namespace

void ActionRun::TriggerAction(const std::string& ActionStr) {
  constexpr base::Milliseconds kGuard{5000};
  base::Attempt step;
  state_.ProgressWindowAllowed = true;
  const base::Milliseconds now = loop_.now();
  if (LastActionTime_ && ActionStr == LastAction_ && now <= *LastActionTime_ + kGuard) {
    step([&] {
      host_.WriteLog("Warning", "Media Player: Possible self-trigger, check event's trigger conditions");
    });
    return;
  }
  LastActionTime_ = now;
  LastAction_ = ActionStr;
  const ActionString a(ActionStr);
  std::string word;
  step([&] { word = a[ActionString::kWord]; });
  // Without an action the mode is left alone too; "Change Mode only" is there for that.
  if (word == kNoAction) return;
  step([&] { applyMode(a[ActionString::kMode]); });
  step([&] { act(a, word); });
}

void ActionRun::applyMode(const std::string& mode) {
  for (const ModeChange& change : kModeChanges) {
    if (mode != change.word) continue;
    calls_.SetShuffleMode(change.shuffle);
    calls_.SetLoopMode(change.loop);
  }
}

void ActionRun::act(const ActionString& a, const std::string& word) {
  if (const GroupAction* const action = FindGroupAction(word); action != nullptr) {
    // The list of titles wins over the typed text; both empty mean the whole group.
    std::string title;
    base::Attempt step;
    step([&] {
      title = !a[ActionString::kTitle].empty() ? a[ActionString::kTitle] : a[ActionString::kTypedText];
    });
    library_.WMPPlay(action->category, a[action->field], title);
    return;
  }
  if (word == "Play: Media Library")
    library_.WMPPlay("Media Library", "Media Library", a[ActionString::kTypedText]);
  if (word == "Play: URL") library_.WMPPlay("URL", "URL", a[ActionString::kTypedText]);
  for (const ControlAction& action : kControlActions)
    if (word == action.word) action.run(calls_);
}

}  // namespace automation
