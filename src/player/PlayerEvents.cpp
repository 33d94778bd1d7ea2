#include "player/PlayerEvents.hpp"

#include "base/Attempt.hpp"

namespace player {

using base::Attempt;

void PlayerEvents::PlayStateChange(std::int32_t newState) { queue_.wmp9_PlayStateChange(newState); }

void PlayerEvents::ModeChange(const std::string& modeName, bool newValue) {
  WMP9_ModeChange(modeName, newValue);
}

void PlayerEvents::WMP9_ModeChange(const std::string& modeName, bool newValue) {
  Attempt step;
  step([&] { settings_.save(modeName + "Mode", newValue ? "True" : "False"); });
  const std::string device = plugin::DeviceName(modeName + " Mode");
  step([&] { host_.SetDeviceStatus(host_.GetDeviceCode(device), newValue ? 2 : 3); });
  step([&] {
    host_.SetDeviceStringByName(device, state_.AlbumIconTag + (newValue ? "" : "No ") + modeName, true);
  });
  if (modeName == "Loop" || modeName == "Shuffle") step([&] { popup_.check(modeName + "Mode", newValue); });
}

void PlayerEvents::Error() {
  Attempt step;
  // The one log call with three arguments, deliberately so: a host that takes only two fails the call, and
  // the failure is skipped. The queue of errors is left as it is.
  step([&] {
    const ErrorItem first = form_.wmp9().Error().item(0);
    host_.WriteLog("Error", "Media Player",
                   " Internal Error# " + std::to_string(first.errorCode) + ": " + first.errorDescription);
  });
}

void PlayerEvents::Warning(std::int32_t warningType, std::int32_t param, const std::string& description) {
  Attempt step;
  step([&] {
    host_.WriteLog("Warning", "Media Player Warning: " + std::to_string(warningType) + ":" + description +
                                  " / clip # " + std::to_string(param));
  });
}

void PlayerEvents::MediaCollectionChange() {
  stale_.markCategories();
  Attempt step;
  step([&] { loggers_.Debug("Media Player: Media collection has been modified"); });
}

void PlayerEvents::PlaylistCollectionChange() {
  stale_.PlayListsStale = true;
  if (playlistsChanged) playlistsChanged();
  Attempt step;
  step([&] { loggers_.Debug("Media Player: PlayList collection has been modified"); });
}

void PlayerEvents::DoubleClick() { calls_.SetShowVisualizations("toggle"); }

}  // namespace player
