#include "plugin/commands/VoiceTable.hpp"

#include "base/Attempt.hpp"
#include "base/Text.hpp"

namespace plugin {

namespace {

struct VoiceContext {
  player::WMPCalls& calls;
  LibraryCalls& library;
  HostServices& host;
};

struct VoiceRow {
  const char* phrase;
  void (*act)(const VoiceContext&);
};

void AddToPlaylist(const VoiceContext& in) {
  const base::Value result = AddToHousePlayList(in.library);
  if (base::ToDouble(result) != 0)
    in.host.WriteLog(
        "Error", "Media Player: Unable to add current selection to playlist, error:" + base::ToText(result));
}

/// In the order of the search: each negated phrase stands before its plain form, "resume" before "pause".
const VoiceRow kVoiceTable[] = {
    {"stop", [](const VoiceContext& in) { in.calls.StopPlayback(); }},
    {"resume", [](const VoiceContext& in) { in.calls.ResumePlayback(); }},
    {"pause", [](const VoiceContext& in) { in.calls.PauseResume(); }},
    {"next", [](const VoiceContext& in) { in.calls.NextTrack(); }},
    {"previous", [](const VoiceContext& in) { in.calls.PreviousTrack(); }},
    {"restart", [](const VoiceContext& in) { in.calls.RestartPlayback(); }},
    {"eject", [](const VoiceContext& in) { in.calls.EjectDrive(0); }},
    {"no loop", [](const VoiceContext& in) { in.calls.SetLoopMode(false); }},
    {"loop", [](const VoiceContext& in) { in.calls.SetLoopMode(true); }},
    {"unmute", [](const VoiceContext& in) { in.calls.SetMute(false); }},
    {"no mute", [](const VoiceContext& in) { in.calls.SetMute(false); }},
    {"mute", [](const VoiceContext& in) { in.calls.SetMute(true); }},
    {"no shuffle", [](const VoiceContext& in) { in.calls.SetShuffleMode(false); }},
    {"shuffle", [](const VoiceContext& in) { in.calls.SetShuffleMode(true); }},
    {"volume up", [](const VoiceContext& in) { in.calls.VolumeUp(10); }},
    {"volume down", [](const VoiceContext& in) { in.calls.VolumeDown(10); }},
    {"no display controls", [](const VoiceContext& in) { in.calls.SetDisplayControls(false); }},
    {"display controls", [](const VoiceContext& in) { in.calls.SetDisplayControls(true); }},
    {"add to playlist", AddToPlaylist},
};

}  // namespace

std::vector<std::string> VoicePhrases() {
  std::vector<std::string> phrases;
  for (const VoiceRow& row : kVoiceTable) phrases.emplace_back(row.phrase);
  return phrases;
}

void ActOnVoiceCommand(const std::string& command, player::WMPCalls& calls, LibraryCalls& library,
                       HostServices& host) {
  const std::string spoken = base::LowerCase(command);
  for (const VoiceRow& row : kVoiceTable) {
    if (spoken.find(row.phrase) == std::string::npos) continue;
    base::Attempt step;
    step([&] { row.act({calls, library, host}); });
    return;
  }
}

base::Value AddToHousePlayList(LibraryCalls& library) { return library.AddMediaToPlayList("Vantorix"); }

}  // namespace plugin
