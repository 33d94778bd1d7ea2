#include "standin/eventworld/RawPlayer.hpp"

#include <algorithm>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::int32_t kPlayStateUndefined = 0;
constexpr std::int32_t kPlayStateStopped = 1;
constexpr std::int32_t kPlayStatePlaying = 3;
constexpr std::int32_t kPlayStateEnded = 8;
constexpr std::int32_t kPlayStateReady = 10;
constexpr std::int32_t kFarthest = 2000;  // of an item that is looked for in its list

}  // namespace

RawPlayer::RawPlayer(base::Object& vxif)
    : script_(base::ToObject(vxif.get("Scripting"))), player_(base::ToObject(script().get("WMPObject"))) {
  if (!player_) throw base::Failure(base::number::kObjectMissing, "The player isn't ready yet");
}

base::ObjectRef RawPlayer::part(const char* name) const {
  base::ObjectRef found = base::ToObject(player_->get(name));
  base::Deref(found);
  return found;
}

std::int32_t RawPlayer::state() const { return base::ToInt32(player_->get("playState")); }

bool RawPlayer::isActive() const {
  const std::int32_t now = state();
  return now != kPlayStateUndefined && now != kPlayStateStopped && now != kPlayStateEnded &&
         now != kPlayStateReady;
}

double RawPlayer::position() const { return base::ToDouble(part("controls")->get("currentPosition")); }
std::int32_t RawPlayer::volume() const { return base::ToInt32(part("settings")->get("volume")); }
void RawPlayer::volume(std::int32_t percent) { part("settings")->put("volume", base::Value(percent)); }
bool RawPlayer::muted() const { return base::ToBoolean(part("settings")->get("mute")); }
// By the plug-in, which shows it.
void RawPlayer::mute(bool wanted) { script().put("Mute", base::Value(wanted)); }
void RawPlayer::stop() { script().call("StopPlayer"); }

void RawPlayer::pause() {
  if (state() == kPlayStatePlaying) script().call("PausePlayer");
}

base::ObjectRef RawPlayer::playlist() const { return base::ToObject(player_->get("currentPlaylist")); }

std::string RawPlayer::mark() const {
  const base::ObjectRef held = playlist();
  if (!held) return {};
  const std::int32_t count = base::ToInt32(held->get("count"));
  std::string mark = base::ToText(held->get("name")) + "\n" + std::to_string(count);
  if (count > 0)
    mark += "\n" + base::ToText(base::Deref(base::ToObject(held->invoke("item", 0))).get("sourceURL"));
  return mark;
}

PlayerPlace RawPlayer::place() const {
  PlayerPlace place;
  place.volume = volume();
  place.muted = muted();
  place.playlist = playlist();
  if (!place.playlist) return place;
  place.item = placeOfCurrent(place.playlist);
  place.position = isActive() ? position() : 0;
  return place;
}

std::int32_t RawPlayer::placeOfCurrent(const base::ObjectRef& playlist) const {
  constexpr std::int32_t kAtOnce = 2000;
  const base::ObjectRef media = base::ToObject(player_->get("currentMedia"));
  if (!media) return 0;
  const std::string source = base::ToText(media->get("sourceURL"));
  const std::int32_t count = std::min(base::ToInt32(playlist->get("count")), kFarthest);
  for (std::int32_t from = 0; from < count;) {
    const base::Value answer =
        playlist->invoke("readItems", base::Array{"sourceURL"}, from, std::min(count - from, kAtOnce));
    const base::Array& sources = answer.array();
    if (sources.empty()) break;
    for (const base::Value& each : sources) {
      if (base::ToText(each) == source) return from;
      ++from;
    }
  }
  return 0;
}

void RawPlayer::putBack(const PlayerPlace& place) {
  const base::ObjectRef settings = part("settings");
  if (place.playlist) {
    const bool startsItself = base::ToBoolean(settings->get("autoStart"));
    const bool shuffled = base::ToBoolean(settings->invoke("getMode", "shuffle"));
    const auto restore = [&] {
      if (shuffled) settings->invoke("setMode", "shuffle", true);
      settings->put("autoStart", base::Value(startsItself));
    };
    try {
      settings->put("autoStart", base::Value(false));
      // In shuffled order the way to the item would be another each time.
      if (shuffled) settings->invoke("setMode", "shuffle", false);
      player_->put("currentPlaylist", base::Value(place.playlist));
      walkTo(place.item);
      part("controls")->put("currentPosition", base::Value(place.position));
    } catch (...) {
      restore();
      throw;
    }
    restore();
  }
  volume(place.volume);
  if (muted() != place.muted) mute(place.muted);
}

// The player has no way to an item but from its neighbour.
void RawPlayer::walkTo(std::int32_t item) {
  const base::ObjectRef controls = part("controls");
  for (std::int32_t i = 0; i < item; ++i) controls->call("next");
}

}  // namespace standin
