#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"
#include "plugin/host/PluginState.hpp"

namespace plugin {

/// Where the host's commands come in: devices, voice, the menu and the buttons on a device's row. All run
/// with failures skipped and throw nothing; an unknown command does nothing or is logged.
class Dispatch {
 public:
  /// `configure` opens the setup page, `editor` shows the playlist editor without blocking.
  Dispatch(player::WMPCalls& calls, HostServices& host, const PluginState& state, LibraryCalls& library,
           MediaEvents& mediaEvents, std::function<void()> editor, std::function<void()> configure)
      : calls_(calls),
        host_(host),
        state_(state),
        library_(library),
        mediaEvents_(mediaEvents),
        editor_(std::move(editor)),
        configure_(std::move(configure)) {}

  /// A command to one of the plug-in's devices: 2 on, 3 off, 13 voice, 19 a value chosen, which is then in
  /// `Brightness`.
  void SetIO(const std::string& HouseCode, const std::string& DeviceCode, std::int16_t Command,
             std::int16_t Brightness);
  /// `menu_name` and `button_name` compare exactly.
  void SelectMenu(const std::string& menu_name);
  void ButtonPress(const std::string& button_name);

  /// A quick-play device or its voice phrase. `shuffle` is the mode that the playback begins with.
  void PlayFromDevice(const std::string& category, std::int16_t Command, std::int16_t Brightness,
                      bool shuffle);

 private:
  void playByName(const std::string& category, const std::string& name, bool shuffle);
  std::string nameOfValue(const std::string& category, std::int16_t value);

  player::WMPCalls& calls_;
  HostServices& host_;
  const PluginState& state_;
  LibraryCalls& library_;
  MediaEvents& mediaEvents_;
  std::function<void()> editor_;
  std::function<void()> configure_;
};

/// The version line of the host's menu, which does nothing when it is chosen.
std::string VersionMenuItem();
/// The program's version, three numbers joined with dots.
std::string ProgramVersion();

}  // namespace plugin
