#include "plugin/commands/Dispatch.hpp"

#include <map>
#include <string_view>

#include "base/Attempt.hpp"
#include "base/Interchange.hpp"
#include "base/Text.hpp"
#include "plugin/commands/VoiceTable.hpp"

namespace plugin {

using base::Attempt;

namespace {

// The host's command codes.
constexpr std::int16_t kOn = 2;
constexpr std::int16_t kOff = 3;
constexpr std::int16_t kVoice = 13;
constexpr std::int16_t kValueChosen = 19;

using Setter = void (player::WMPCalls::*)(const base::Value&);

/// What a device is for, in the order in which a command's address is compared with the devices'.
struct DeviceUse {
  const char* suffix;
  Setter setter;         // of an on/off device
  const char* category;  // of a quick-play device
  bool shuffle;          // albums and playlists play in order, artists and genres shuffled
};

const DeviceUse kDeviceUses[] = {
    {"Status", nullptr, nullptr, false},
    {"Display Controls", &player::WMPCalls::SetDisplayControls, nullptr, false},
    {"Shuffle Mode", &player::WMPCalls::SetShuffleMode, nullptr, false},
    {"Loop Mode", &player::WMPCalls::SetLoopMode, nullptr, false},
    {"Mute", &player::WMPCalls::SetMute, nullptr, false},
    {"Quick PlayList", nullptr, "PlayList", false},
    {"Quick Album", nullptr, "Album", false},
    {"Quick Artist", nullptr, "Artist", true},
    {"Quick Genre", nullptr, "Genre", true},
};

/// The calls that menu items and buttons have in common, by the caption that chooses them.
using Command = std::function<void(player::WMPCalls&)>;

const std::map<std::string, Command>& MenuCommands() {
  static const std::map<std::string, Command> table = {
      {"Show/Hide Popup Controls", [](auto& calls) { calls.SetDisplayControls("toggle"); }},
      {"Pause/Resume", [](auto& calls) { calls.PauseResume(); }},
      {"Stop", [](auto& calls) { calls.StopPlayback(); }},
      {"Next", [](auto& calls) { calls.NextTrack(); }},
      {"Previous", [](auto& calls) { calls.PreviousTrack(); }},
      {"Mute toggle", [](auto& calls) { calls.SetMute("toggle"); }},
      {"Restart", [](auto& calls) { calls.RestartPlayback(); }},
      // Handled though no such item is registered: a host that has one of its own finds it working.
      {"Eject", [](auto& calls) { calls.EjectDrive(0); }},
  };
  return table;
}

const std::map<std::string, Command>& ButtonCommands() {
  static const std::map<std::string, Command> table = {
      {"Pause/Resume", [](auto& calls) { calls.PauseResume(); }},
      {"Pause", [](auto& calls) { calls.PauseResume(); }},
      {"Stop", [](auto& calls) { calls.StopPlayback(); }},
      {"Next", [](auto& calls) { calls.NextTrack(); }},
      {"Previous", [](auto& calls) { calls.PreviousTrack(); }},
      {"Prev", [](auto& calls) { calls.PreviousTrack(); }},
      {"Mute toggle", [](auto& calls) { calls.SetMute("toggle"); }},
      {"Vol Down", [](auto& calls) { calls.VolumeDown(10); }},
      {"Vol Up", [](auto& calls) { calls.VolumeUp(10); }},
      {"Restart", [](auto& calls) { calls.RestartPlayback(); }},
      {"Eject", [](auto& calls) { calls.EjectDrive(0); }},
      {"Shuffle toggle", [](auto& calls) { calls.SetShuffleMode("toggle"); }},
      {"Loop toggle", [](auto& calls) { calls.SetLoopMode("toggle"); }},
  };
  return table;
}

/// Where the text goes on behind a word that it begins with, without regard to case; 0 when it doesn't. The
/// same word may take more bytes in another case, so characters are counted.
std::size_t BehindWord(std::string_view text, std::string_view word) {
  const std::size_t end = base::OffsetOfCharacter(text, base::CountCharacters(word));
  return base::SameText(text.substr(0, end), word) ? end : 0;
}

}  // namespace

std::string ProgramVersion() { return VANTORIX_VERSION; }

std::string VersionMenuItem() { return "Vantorix Media Player plug-in version: " + ProgramVersion(); }

void Dispatch::SetIO(const std::string& HouseCode, const std::string& DeviceCode, std::int16_t Command,
                     std::int16_t Brightness) {
  if (!state_.Initialized || HouseCode != state_.HouseCode) return;
  const std::string address = base::LowerCase(HouseCode + DeviceCode);
  for (const DeviceUse& use : kDeviceUses) {
    Attempt step;
    std::string code;
    const bool known = step([&] { code = base::LowerCase(host_.GetDeviceCode(DeviceName(use.suffix))); });
    if (!known || code != address) continue;
    if (use.setter != nullptr) {
      if (Command == kOn || Command == kOff) (calls_.*use.setter)(Command == kOn);
    } else if (use.category != nullptr) {
      PlayFromDevice(use.category, Command, Brightness, use.shuffle);
    } else if (Command == kVoice) {
      step([&] { ActOnVoiceCommand(host_.LastVoiceCommand(), calls_, library_, host_); });
    }
    return;
  }
}

std::string Dispatch::nameOfValue(const std::string& category, std::int16_t value) {
  const base::ObjectRef device = host_.GetDeviceEx(DeviceName("Quick " + category));
  const auto entries = base::Split(base::ToText(base::Deref(device).get("Values")), '\x01');
  if (static_cast<std::size_t>(value) >= entries.size()) throw base::Failure(base::number::kIndex);
  const std::string& entry = entries[static_cast<std::size_t>(value)];
  return entry.substr(0, entry.find('\x02'));
}

void Dispatch::playByName(const std::string& category, const std::string& name, bool shuffle) {
  if (base::TrimBlanks(name).empty()) return;
  Attempt step;
  calls_.SetShuffleMode(shuffle);
  step([&] { library_.WMPPlay(category, name, ""); });
}

void Dispatch::PlayFromDevice(const std::string& category, std::int16_t Command, std::int16_t Brightness,
                              bool shuffle) {
  Attempt step;
  // The first value of a quick-play device is its refresh entry.
  if (Command == kValueChosen && Brightness == 1) step([&] { mediaEvents_.UpdateMediaEvents(category); });
  if (Command == kValueChosen && Brightness >= 2) {
    std::string name;
    step([&] { name = nameOfValue(category, Brightness); });
    playByName(category, name, shuffle);
  }
  if (Command == kVoice) {
    constexpr std::string_view kPlay = "play ";
    std::string spoken;
    step([&] { spoken = host_.LastVoiceCommand(); });
    const std::size_t behind = BehindWord(spoken, kPlay);
    if (behind == 0) return;
    std::string name = spoken.substr(behind);
    // Behind a category word comes one blank, which is passed over with it whatever character it is.
    if (const std::size_t word = BehindWord(name, category); word > 0)
      name.erase(0, word + base::OffsetOfCharacter(std::string_view(name).substr(word), 1));
    playByName(category, name, shuffle);
  }
  // The device's list falls back to its blank first value.
  if (Brightness != 0) step([&] { host_.SetDeviceValueByName(DeviceName("Quick " + category), 0); });
}

void Dispatch::SelectMenu(const std::string& menu_name) {
  Attempt step;
  const auto found = MenuCommands().find(menu_name);
  if (found != MenuCommands().end())
    found->second(calls_);
  else if (menu_name == "PlayList Editor")
    step([&] { editor_(); });
  else if (menu_name == "Setup")
    step([&] { configure_(); });
  else if (menu_name != VersionMenuItem())
    step([&] {
      host_.WriteLog("Error", "Media Player: Invalid menu item: \"" + menu_name + "\" has been selected");
    });
}

void Dispatch::ButtonPress(const std::string& button_name) {
  Attempt step;
  const auto found = ButtonCommands().find(button_name);
  if (found != ButtonCommands().end()) {
    found->second(calls_);
  } else if (button_name == "Show/Hide Controls") {
    calls_.SetDisplayControls("toggle");
    // The window gets time to act before the host's page is drawn again.
    step([&] { host_.WaitSecs(2); });
  } else if (button_name == "Add to PlayList") {
    step([&] { AddToHousePlayList(library_); });
  } else {
    step([&] { host_.WriteLog("Error", "Media Player: Invalid button pushed: \"" + button_name + "\""); });
  }
}

}  // namespace plugin
