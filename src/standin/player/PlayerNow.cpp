#include "standin/player/PlayerNow.hpp"

#include <algorithm>
#include <cmath>

#include "standin/player/PlayerLists.hpp"

namespace standin {
namespace {

constexpr std::int32_t kStopped = 1;
constexpr std::int32_t kPaused = 2;
constexpr std::int32_t kPlaying = 3;
constexpr std::int32_t kScanForward = 4;
constexpr std::int32_t kScanReverse = 5;
constexpr std::int32_t kBuffering = 6;
constexpr std::int32_t kTransitioning = 9;
constexpr double kScanSpeed = 5;
/// Two pages may be apart by no more than a fifth of a second, and this is only a part of it.
constexpr double kNoticed = 0.1;

/// What the pages tell apart.
const char* WordOf(const PlayerNow& now) {
  if (!now.known) return "unknown";
  switch (now.state) {
    case kPlaying:
    case kScanForward:
    case kScanReverse: return "playing";
    case kPaused: return "paused";
    case kBuffering: return "loading";
    case kTransitioning: return now.heldAtStart() ? "paused" : "loading";
    default: return "stopped";
  }
}

}  // namespace

double PlayerNow::rate() const {
  if (state == kPlaying) return 1;
  if (state == kScanForward) return kScanSpeed;
  return state == kScanReverse ? -kScanSpeed : 0;
}

bool PlayerNow::heldAtStart() const { return state == kTransitioning && canPlay && !canPause; }

double PlayerNow::positionAt(std::int64_t later) const {
  const double reached = position + rate() * static_cast<double>(later - at) / 1000;
  return std::max(0.0, duration > 0 ? std::min(reached, duration) : reached);
}

bool PlayerNow::foretells(const PlayerNow& later) const {
  if (std::abs(positionAt(later.at) - later.position) > kNoticed) return false;
  return known == later.known && state == later.state && duration == later.duration &&
         volume == later.volume && mute == later.mute && loop == later.loop && shuffle == later.shuffle &&
         canPlay == later.canPlay && canPause == later.canPause && canNext == later.canNext &&
         canPrevious == later.canPrevious && canSeek == later.canSeek && title == later.title &&
         artist == later.artist && album == later.album && albumArtist == later.albumArtist &&
         item == later.item && queue == later.queue && from == later.from && place == later.place &&
         count == later.count && revision == later.revision && cover == later.cover;
}

PlayerNow PlayerNowOf(const base::Value& record, std::int64_t at) {
  PlayerNow now;
  now.at = at;
  now.known = true;
  std::string source;
  std::string onAir;
  const auto number = &base::ToDouble;
  const auto whole = &base::ToInt32;
  const auto flag = &base::ToBoolean;
  const auto text = [](const base::Value& value) { return base::ToText(value); };
  for (const auto& [key, value] : record.record()) {
    if (key == "playState") now.state = whole(value);
    if (key == "position") now.position = number(value);
    if (key == "duration") now.duration = number(value);
    if (key == "volume") now.volume = whole(value);
    if (key == "mute") now.mute = flag(value);
    if (key == "loop") now.loop = flag(value);
    if (key == "shuffle") now.shuffle = flag(value);
    if (key == "play") now.canPlay = flag(value);
    if (key == "pause") now.canPause = flag(value);
    if (key == "next") now.canNext = flag(value);
    if (key == "previous") now.canPrevious = flag(value);
    if (key == "currentPosition") now.canSeek = flag(value);
    if (key == "name") now.title = text(value);
    if (key == "artist") now.artist = text(value);
    if (key == "album") now.album = text(value);
    if (key == "albumArtist") now.albumArtist = text(value);
    if (key == "source") source = text(value);
    if (key == "streamTitle") onAir = text(value);
    if (key == "queueName") now.from = text(value);
    if (key == "queueMark") now.queue = QueueName(static_cast<std::int64_t>(number(value)));
    if (key == "place") now.place = whole(value);
    if (key == "count") now.count = whole(value);
    if (key == "revision") now.revision = number(value);
  }
  if (now.place < 0 && now.count == 0 && (now.state == 0 || now.state == kStopped)) {
    // What the player holds only because nobody has chosen anything.
    now.title.clear();
    now.artist.clear();
    now.album.clear();
    now.albumArtist.clear();
    now.duration = 0;
  } else if (!source.empty()) {
    now.item = MarkOf(now.title, source);
  }
  if (!onAir.empty()) {  // what the station plays, and below it the station
    now.artist = now.title;
    now.title = onAir;
  }
  return now;
}

nlohmann::json JsonOf(const PlayerNow& now, std::int64_t clock) {
  return {{"known", now.known},
          {"play", WordOf(now)},
          {"state", now.state},
          {"rate", now.rate()},
          {"position", now.position},
          {"duration", now.duration},
          {"at", now.at},
          {"clock", clock},
          {"volume", now.volume},
          {"mute", now.mute},
          {"loop", now.loop},
          {"shuffle", now.shuffle},
          {"can",
           {{"play", now.canPlay},
            {"pause", now.canPause},
            {"next", now.canNext},
            {"previous", now.canPrevious},
            {"seek", now.canSeek}}},
          {"title", now.title},
          {"artist", now.artist},
          {"album", now.album},
          {"albumArtist", now.albumArtist},
          {"item", now.item},
          {"cover", now.cover ? nlohmann::json(*now.cover) : nlohmann::json()},
          {"queue", now.queue},
          {"from", now.from},
          {"place", now.place},
          {"count", now.count},
          {"revision", now.revision}};
}

}  // namespace standin
