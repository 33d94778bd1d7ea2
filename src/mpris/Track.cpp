#include "mpris/Track.hpp"

#include <cmath>
#include <string_view>

#include "mpris/session/BusText.hpp"

namespace mpris {

namespace {

constexpr const char* kTracks = "/org/vantorix/track/";

/// The player writes a picture's path behind "file://" as it is.
std::string PictureAddress(const std::string& url) {
  constexpr std::string_view kFile = "file://";
  return url.starts_with(kFile) ? AddressOf(url.substr(kFile.size())) : AddressOf(url);
}

}  // namespace

std::int64_t Microseconds(double seconds) {
  constexpr double kLongest = 1e12;
  if (!std::isfinite(seconds) || std::abs(seconds) > kLongest) return 0;
  return std::llround(seconds * 1e6);
}

// An item that is only moved within the queue stays the same, and the queue counts its changes.
bool Track::isStill(const Now& now) const {
  return id_ && now.hasItem() && now.queueMark == at_.queueMark && now.source == at_.source &&
         (now.place == at_.place || now.revision != at_.revision);
}

bool Track::follow(const Now& now, PlayerObject& player) {
  const bool still = isStill(now);
  const bool was = id_.has_value();
  at_ = now;
  if (!now.hasItem()) {
    id_.reset();
    shown_ = {};
    metadata_.clear();
    return was;
  }
  if (!still) id_ = Path{kTracks + std::to_string(++last_)};
  const Shown shown{now.name, now.artist, now.album, now.albumArtist, now.streamTitle, now.duration};
  if (still && shown == shown_) return false;
  shown_ = shown;
  describe(now, player);
  return !still;
}

void Track::describe(const Now& now, PlayerObject& player) {
  metadata_ = {{"mpris:trackid", *id_}};
  const auto text = [&](const char* key, const std::string& value) {
    if (!value.empty()) metadata_.emplace_back(key, value);
  };
  const auto list = [&](const char* key, const std::string& value) {
    if (!value.empty()) metadata_.emplace_back(key, Texts{BusText(value)});
  };
  if (const std::int64_t length = Microseconds(now.duration); length > 0)
    metadata_.emplace_back("mpris:length", length);
  text("mpris:artUrl", PictureAddress(player.picture()));
  // What a station plays, and below it the station.
  const bool station = !now.streamTitle.empty();
  text("xesam:title", BusText(station ? now.streamTitle : now.name));
  list("xesam:artist", station ? now.name : now.artist);
  text("xesam:album", BusText(now.album));
  list("xesam:albumArtist", now.albumArtist);
  list("xesam:genre", player.info("Genre"));
  const double number = base::NumericPrefix(player.info("WM/TrackNumber"));
  if (number >= 1 && number < 1e6)
    metadata_.emplace_back("xesam:trackNumber", static_cast<std::int32_t>(number));
  text("xesam:url", AddressOf(now.source));
}

}  // namespace mpris
