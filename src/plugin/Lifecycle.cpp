#include "plugin/Lifecycle.hpp"

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "plugin/commands/Dispatch.hpp"

// The foreground half of start-up, the timer between the halves, and the stop. The background half is in
// InitHW.cpp.
namespace plugin {

using base::Attempt;
using base::Failure;

namespace {

constexpr std::int16_t kMessageSeconds = 15;
constexpr std::int16_t kAudioEvents = 8;
constexpr const char* kPlayerRequired =
    "Media Player plug-in requires Windows Media Player version 9.0 or higher";

}  // namespace

bool HostIsNewEnough(const std::string& version) {
  const auto parts = base::Split(version, '.');
  const auto part = [&](std::size_t i) { return i < parts.size() ? base::NumericPrefix(parts[i]) : 0; };
  return (version.substr(0, 4) == "1.6." && part(2) >= 51) || (part(0) == 1 && part(1) > 6) || part(0) > 1;
}

Lifecycle::Lifecycle(const LifecycleParts& parts)
    : in_(parts),
      StartInitialization_(
          parts.loop.makeTimer(base::Milliseconds(1), [this] { StartInitialization_Timer(); })) {}

void Lifecycle::RegisterCallback(const base::ObjectRef& frm) {
  Attempt step;
  in_.host.HostCallback = frm;
  step([&] { in_.host.Host = in_.host.GetVXIface(); });
  if (in_.host.HostCallback && in_.host.Host)
    step([&] { in_.host.WriteLog("Info", "Media Player plug-in version: " + ProgramVersion()); });
  else
    step([&] { in_.platform.messageBox(base::BoxKind::kPlain, kName, "Unable to access VX interface"); });
  step([&] { fields_.Scripting = in_.neighbours.objects.create("vxif_WMP9.scriptclass"); });
}

void Lifecycle::announce() {
  const std::string lastVersion = in_.settings.text("Version", "");
  in_.state.PluginVersion = ProgramVersion();
  in_.host.writesplash("Media Player version: " + in_.state.PluginVersion + "\r\n" + kLegalNotice);
  if (in_.state.PluginVersion != lastVersion) {
    in_.settings.save("Version", in_.state.PluginVersion);
    // The window shows itself after every upgrade.
    in_.calls.SetDisplayControls(true);
  }
  // That release made devices which today's can't use: they are deleted and made again.
  if (lastVersion == "1.0.0") in_.settings.save("HouseCodeSet", "-1");
}

std::optional<std::string> Lifecycle::connectPlayer() {
  Attempt step;
  step([&] { in_.form.settings().autoStart(false); });
  if (!step.failed()) return std::nullopt;
  step([&] {
    in_.host.WriteLog("Error", "Unable to connect to Windows Media Player, reinstallation may be necessary");
  });
  step([&] {
    in_.neighbours.desktop.ShowTimedMessage(
        "Error!", std::string(kPlayerRequired) + ".  Unable to connect to Windows Media Player",
        kMessageSeconds);
  });
  return std::string("Error: ") + kPlayerRequired;
}

std::optional<std::string> Lifecycle::checkPlayerVersion() {
  const std::string version = in_.form.wmp9().versionInfo();
  in_.host.WriteLog("Info", "Windows Media Player version: " + version);
  // One character is looked at, so that version 10 reads as 1 and is turned away. It is kept so: which
  // players are taken is part of what a release promises.
  if (base::NumericPrefix(version.substr(0, 1)) >= 9) return std::nullopt;
  in_.neighbours.desktop.ShowTimedMessage(
      "Error!", std::string(kPlayerRequired) + ".  You have version: " + version, kMessageSeconds);
  return std::string("Error: ") + kPlayerRequired;
}

std::optional<std::string> Lifecycle::checkMediaRights() {
  player::PlayerSettings& settings = in_.form.settings();
  if (settings.mediaAccessRights() == "full" || settings.requestMediaAccessRights("full"))
    return std::nullopt;
  return "Windows Media Player - Media Library, permission denied";
}

std::optional<std::string> Lifecycle::checkHostVersion() {
  if (HostIsNewEnough(in_.host.Version())) return std::nullopt;
  in_.platform.messageBox(
      base::BoxKind::kCritical, kName,
      "Sorry, you need Vantorix version 1.6.51 or higher to run this plugin: Media Player");
  return "Vantorix version 1.6.51 or higher required to run Media Player";
}

void Lifecycle::registerWithHost(const base::ObjectRef& self) {
  in_.state.OsMajorVersion = in_.platform.osMajorVersion();
  in_.host.RegisterEventCB(kAudioEvents, self);
  fields_.Link = "WMP_PListEdit";
  fields_.LinkText = "PlayList Editor";
  fields_.Page_Title = "Vantorix Media Player";
  in_.host.RegisterLink(self);
  in_.web.loadSetupForm();
  in_.web.loadEditorForm();
  in_.host.WriteLog("Startup", "Media Player foreground initialization completed");
  StartInitialization_->enabled(true);
}

std::string Lifecycle::InitIO(const base::ObjectRef& self) {
  if (in_.state.Initialized) return {};
  std::string refusal = startInForeground(self);
  failed_ = !refusal.empty();
  return refusal;
}

std::string Lifecycle::startInForeground(const base::ObjectRef& self) {
  return base::Handled(
      [&]() -> std::string {
        announce();
        if (auto refusal = connectPlayer()) return *refusal;
        if (auto refusal = checkPlayerVersion()) return *refusal;
        if (auto refusal = checkMediaRights()) return *refusal;
        if (auto refusal = checkHostVersion()) return *refusal;
        registerWithHost(self);
        return {};
      },
      [&](const Failure& failure) {
        in_.loggers.LogPluginError(failure.number(), failure.description(), "InitIO");
        return failure.description();
      });
}

void Lifecycle::StartInitialization_Timer() {
  Attempt step;
  StartInitialization_->enabled(false);
  const std::string result = InitHW();
  if (!result.empty()) {
    failed_ = true;
    step([&] { in_.host.WriteLog("Error", "Media Player background initialization FAILED: " + result); });
    return;
  }
  step([&] { in_.host.WriteLog("Startup", "Media Player background initialization completed"); });
  in_.state.Initialized = true;
  in_.triggers.ActionTrigger(player::kInitializationCompleted);
  if (in_.state.RaisePriority)
    step([&] { in_.platform.setPriorityClass(RaisedPriorityClass(in_.state.OsMajorVersion)); });
}

void Lifecycle::ShutdownIO() {
  Attempt step;
  // First, so that timers and events that still arrive find the plug-in down.
  in_.state.Initialized = false;
  // A player that was never made has nothing to stop and no volume worth keeping.
  const bool played = in_.form.loaded();
  if (played) step([&] { in_.form.controls().stop(); });
  // A window at the screen's edge or beyond keeps the place saved before.
  if (in_.popup.top() > 0 && in_.popup.left() > 0) {
    step([&] { in_.settings.save("DisplayControlsTop", in_.popup.top()); });
    step([&] { in_.settings.save("DisplayControlsLeft", in_.popup.left()); });
  }
  if (played) step([&] { in_.settings.save("Volume", in_.form.settings().volume()); });
  step([&] { in_.neighbours.desktop.unloadTray(); });
  in_.host.Host.reset();
  in_.host.HostCallback.reset();
  in_.platform.end();
}

}  // namespace plugin
