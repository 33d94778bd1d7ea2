#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "player/WMPCalls.hpp"

// The half of WMPCalls that sets modes and flags; the commands are in WMPCallsTransport.cpp.
namespace player {

using base::Attempt;
using base::Value;

namespace {

constexpr std::int16_t kStatusOn = 2;
constexpr std::int16_t kStatusOff = 3;

/// The value that a setter is to bring about: the opposite of `current()` for the word "toggle".
template <class Current>
bool Wanted(const Value& value, Current&& current) {
  const auto* word = std::get_if<std::string>(&value.held());
  if (word != nullptr && base::LowerCase(*word) == "toggle") return !current();
  return base::ToBoolean(value);
}

}  // namespace

void WMPCalls::SetMute(const Value& value) {
  Attempt step;
  step([&] {
    PlayerSettings& settings = form_.settings();
    settings.mute(Wanted(value, [&] { return settings.mute(); }));
  });
  step([&] { loop_.pump(); });
  // Published is what the player says now, not what was asked of it. It is asked again for each: while the
  // host answers, an event may have changed it and told so, which must not be told over.
  const auto muted = [&] {
    bool now = false;
    step([&] { now = form_.settings().mute(); });
    return now;
  };
  const std::string device = plugin::DeviceName("Mute");
  step([&] {
    const std::string code = host_.GetDeviceCode(device);
    host_.SetDeviceStatus(code, muted() ? kStatusOn : kStatusOff);
  });
  step([&] {
    host_.SetDeviceStringByName(device, state_.AlbumIconTag + (muted() ? "Muted" : "Not Muted"), true);
  });
  // The volume too: whoever changes it comes through here.
  step([&] { popup_.transportChanged(); });
}

void WMPCalls::setMode(const char* mode, const Value& value) {
  Attempt step;
  // The player answers with its mode event, and that tells the device and the settings.
  step([&] {
    PlayerSettings& settings = form_.settings();
    settings.setMode(mode, Wanted(value, [&] { return settings.getMode(mode); }));
  });
}

void WMPCalls::SetShuffleMode(const Value& value) { setMode("Shuffle", value); }

void WMPCalls::SetLoopMode(const Value& value) { setMode("Loop", value); }

void WMPCalls::SetDisplayControls(const Value& value) {
  Attempt step;
  step([&] { state_.DisplayControlsShown = Wanted(value, [&] { return state_.DisplayControlsShown; }); });
  step([&] { popup_.armVisibility(); });
}

void WMPCalls::setWindowFlag(bool& flag, const char* key, const char* menuItem, const Value& value) {
  Attempt step;
  step([&] { flag = Wanted(value, [&] { return flag; }); });
  step([&] { settings_.save(key, flag); });
  step([&] { popup_.check(menuItem, flag); });
}

void WMPCalls::SetFullScreenVideo(const Value& value) {
  setWindowFlag(state_.FullScreenVideo, "FullScreenVideo", "ShowFullScreenVideo", value);
  Attempt step;
  step([&] { popup_.LayoutControls(); });
}

void WMPCalls::SetShowVisualizations(const Value& value) {
  setWindowFlag(state_.ShowVisualizations, "ShowVisualizations", "ShowVisualizations", value);
  Attempt step;
  step([&] { popup_.LayoutControls(); });
}

void WMPCalls::SetShowCoverArt(const Value& value) {
  setWindowFlag(state_.ShowCoverArt, "ShowCoverArt", "ShowCoverArt", value);
  Attempt step;
  step([&] { popup_.LayoutControls(); });
}

void WMPCalls::SetAlwaysOnTop(const Value& value) {
  setWindowFlag(state_.AlwaysOnTop, "AlwaysOnTop", "AlwaysOnTop", value);
  Attempt step;
  step([&] {
    if (popup_.visible()) popup_.setWindowPos(state_.AlwaysOnTop ? kTopmost : kNotTopmost, kStackAndShow);
  });
}

}  // namespace player
