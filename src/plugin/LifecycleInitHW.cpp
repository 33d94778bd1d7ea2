#include "base/Attempt.hpp"
#include "plugin/Lifecycle.hpp"
#include "plugin/commands/Dispatch.hpp"

// The background half of start-up: settings, devices, modes, window, menu, voice events.
namespace plugin {

using base::Failure;

void Lifecycle::composeTags() {
  in_.state.AlbumIconTag =
      R"(<img align=absmiddle src="images\Media Player\WMP_Icon.gif"  width="16" height="16" border="0" >)";
  in_.state.CoverSmallTag =
      R"(<img align=absmiddle src="images\Media Player\WMPCoverSmall.jpg"  width="75" height="75" border="0" >)";
  const std::string folder = in_.host.GetAppPath();
  in_.state.CoverSmallFile = folder + R"(\html\images\Media Player\WMPCoverSmall.jpg)";
  in_.state.CoverLargeFile = folder + R"(\html\images\Media Player\WMPCoverLarge.jpg)";
}

void Lifecycle::showModes() {
  for (const char* mode : {"Loop", "Shuffle"}) {
    const std::string key = std::string(mode) + "Mode";
    const bool stored = in_.settings.flag(key, false);
    if (mode == std::string("Loop"))
      in_.calls.SetLoopMode(stored);
    else
      in_.calls.SetShuffleMode(stored);
    // Read anew, so that the device shows what the file holds.
    in_.playerEvents.WMP9_ModeChange(mode, in_.settings.flag(key, false));
  }
}

void Lifecycle::placeWindow() {
  player::PopupView& window = in_.popup;
  window.top(static_cast<float>(in_.settings.number("DisplayControlsTop", 0)));
  window.left(static_cast<float>(in_.settings.number("DisplayControlsLeft", 0)));
  if (window.top() < 0 || window.top() > window.screenHeight()) window.top(0);
  if (window.left() < 0 || window.left() > window.screenWidth()) window.left(0);
}

void Lifecycle::readFlags() {
  in_.calls.SetAlwaysOnTop(in_.settings.flag("AlwaysOnTop", true));
  in_.calls.SetShowCoverArt(in_.settings.flag("ShowCoverArt", true));
  in_.calls.SetShowVisualizations(in_.settings.flag("ShowVisualizations", false));
  in_.calls.SetFullScreenVideo(in_.settings.flag("FullScreenVideo", false));
  in_.state.TrayIcon = in_.settings.flag("TrayIcon", true);
  in_.state.RefreshActions = in_.settings.flag("RefreshActions", true);
  const std::int32_t volume = in_.settings.wholeNumber("Volume", 50);
  ForSetting("Volume", [&] { in_.form.settings().volume(volume); });
  in_.state.RaisePriority = in_.settings.flag("RaisePriority", true);
  in_.state.VRCategoryRequired = in_.settings.flag("VRCategoryRequired", false);
  in_.state.DebugMessages = in_.settings.flag("DebugMessages", false);
}

void Lifecycle::registerMenu() {
  for (const std::string& item :
       {std::string("Show/Hide Popup Controls"), std::string("PlayList Editor"), std::string("Pause/Resume"),
        std::string("Stop"), std::string("Mute toggle"), std::string("Next"), std::string("Previous"),
        std::string("Restart"), std::string("Setup"), VersionMenuItem()})
    in_.host.registermenu(kName, item);
}

void Lifecycle::updateVoiceEvents() {
  if (!in_.settings.flag("UpdateMediaEvents", true)) return;
  in_.mediaEvents.UpdateControlEvent();
  for (const char* category : {"Genre", "Artist", "PlayList", "Album"}) {
    in_.loggers.Debug(std::string("Media Player: Updating ") + category + " VR Events & Devices");
    in_.mediaEvents.UpdateMediaEvents(category);
  }
  in_.loggers.Debug("Media Player: Finished Updating VR Events & Devices");
}

std::string Lifecycle::InitHW() {
  if (in_.state.Initialized) return {};
  return base::Handled(
      [&]() -> std::string {
        in_.host.WriteLog("Startup", "Media Player background initialization started...");
        in_.stale.markCategories();
        composeTags();
        if (std::string reason = in_.devices.CreateDevices(); !reason.empty()) return reason;
        in_.queue.handleNow(player::kStopped);
        in_.calls.SetMute(false);
        showModes();
        placeWindow();
        in_.calls.SetDisplayControls(in_.settings.flag("DisplayControls", true));
        in_.state.WhileSpeaking = in_.settings.text("WhileSpeaking", "Pause");
        readFlags();
        in_.library.LoadNameTable();
        registerMenu();
        if (in_.state.TrayIcon) in_.neighbours.desktop.ShowTrayIcon(true);
        updateVoiceEvents();
        in_.state.ProgressWindowAllowed = true;
        return {};
      },
      [&](const Failure& failure) {
        in_.loggers.LogModuleError(failure.number(), failure.description(), "CommonModule", "InitHW");
        return failure.description();
      });
}

}  // namespace plugin
