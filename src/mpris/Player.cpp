#include "mpris/Player.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/Text.hpp"

namespace mpris {

namespace {

constexpr double kFullVolume = 100;
/// Seconds by which a position may be off before it counts as a jump: clocks drift, and a decoder tells its
/// place in steps.
constexpr double kDrift = 0.75;

double Seconds(base::Milliseconds time) { return static_cast<double>(time.count()) / 1000; }

}  // namespace

const Texts& AddressKinds() {
  static const Texts kinds{"file", "http", "https", "mms", "mmsh", "mmst", "mmsu"};
  return kinds;
}

void Player::refresh() {
  now_ = player_.now();
  otherTrack_ |= track_.follow(now_, player_);
}

void Player::begin() {
  refresh();
  otherTrack_ = sought_ = false;
  believe(now_.position);
}

double Player::believedRate() const { return now_.status() == Status::kPlaying ? now_.rate() : 0; }

void Player::believe(double position) {
  believed_ = position;
  rate_ = believedRate();
  since_ = loop_.now();
}

std::optional<std::int64_t> Player::jumped() {
  const bool sought = std::exchange(sought_, false);
  if (std::exchange(otherTrack_, false) || now_.status() == Status::kStopped) {
    believed_ = 0;  // where every item begins
  } else {
    believed_ += rate_ * Seconds(loop_.now() - since_);
  }
  believe(believed_);
  if (now_.status() == Status::kStopped) return std::nullopt;
  if (!sought && std::abs(now_.position - believed_) <= kDrift) return std::nullopt;
  believe(now_.position);
  return Microseconds(now_.position);
}

bool Player::canPlay() const { return now_.play || now_.status() != Status::kStopped; }

// In what is still being opened too: it begins there then.
bool Player::canSeek() const { return now_.status() != Status::kStopped && now_.duration > 0; }

void Player::play() {
  if (now_.heldAtStart())
    player_.goOn();
  else if (now_.status() != Status::kPlaying)
    player_.act("ResumePlayer");
}

// The script object's one word for it turns round what it finds, and knows nothing of an item that is still
// under way.
void Player::pause() {
  if (now_.status() != Status::kPlaying || !now_.pause) return;
  if (now_.opens() || now_.stalls())
    player_.hold();
  else
    player_.act("PausePlayer");
}

void Player::playPause() {
  if (now_.status() == Status::kPlaying)
    pause();
  else
    play();
}

void Player::stop() {
  if (now_.status() != Status::kStopped) player_.act("StopPlayer");
}

void Player::next() {
  if (now_.next) player_.act("PlayNext");
}

void Player::previous() {
  if (now_.previous) player_.act("PlayPrev");
}

void Player::seekBy(std::int64_t microseconds) {
  if (!canSeek()) return;
  const double to = now_.position + static_cast<double>(microseconds) / 1e6;
  if (to > now_.duration)
    next();
  else
    seek(std::max(0.0, to));
}

void Player::seekTo(const Path& track, std::int64_t microseconds) {
  const double to = static_cast<double>(microseconds) / 1e6;
  // Who means another item, or a place that this one hasn't, comes too late.
  if (canSeek() && track == track_.id() && to >= 0 && to <= now_.duration) seek(to);
}

void Player::seek(double seconds) {
  player_.seek(seconds);
  sought();
}

void Player::open(const std::string& address) {
  const auto colon = address.find("://");
  const std::string kind = base::LowerCase(std::string_view(address).substr(0, colon));
  const auto& kinds = AddressKinds();
  if (colon == std::string::npos || std::find(kinds.begin(), kinds.end(), kind) == kinds.end())
    throw Refusal(kNotSupported, "This is no kind of address that is played");
  player_.open(address);
}

void Player::loop(const std::string& status) {
  if (status == "Track") throw Refusal(kNotSupported, "A single track isn't repeated");
  if (status != "None" && status != "Playlist") throw Refusal(kInvalidArgs, "There is no such loop status");
  player_.set("LoopMode", status == "Playlist");
}

// The player scans at one speed, forward and backward; which of its speeds is nearest is the one meant. The
// words that begin a scan also end it.
void Player::rate(double wanted) {
  if (!std::isfinite(wanted)) throw Refusal(kInvalidArgs, "This is no rate");
  if (wanted == 0) return pause();
  if (now_.status() != Status::kPlaying) return;
  const bool forward = wanted > (1 + kScanSpeed) / 2;
  const bool backward = wanted < (1 - kScanSpeed) / 2;
  const bool normal = !forward && !backward;
  if (forward != now_.scansForward() && (forward || normal)) player_.act("FastForward");
  if (backward != now_.scansBackward() && (backward || normal)) player_.act("FastReverse");
}

void Player::volume(double wanted) {
  if (std::isnan(wanted)) throw Refusal(kInvalidArgs, "This is no volume");
  const double percent = std::round(std::clamp(wanted, 0.0, 1.0) * kFullVolume);
  player_.set("Volume", static_cast<std::int16_t>(percent));
}

Interface Player::table() {
  const auto plain = [this](const char* name, void (Player::*act)()) {
    return Plain(name, [this, act] {
      (this->*act)();
      moved_();
    });
  };
  const auto taking = [this](const char* name, std::vector<Argument> in, auto act) {
    return Method{name, std::move(in), {}, [this, act](const Values& arguments) {
                    act(arguments);
                    moved_();
                    return Values();
                  }};
  };
  const auto writing = [this](auto act) {
    return [this, act](const Value& value) {
      act(value);
      moved_();
    };
  };
  const auto flag = [](const char* name, auto read) {
    return Property{name, "b", Told::kEverybody, [read] { return Value(read()); }};
  };
  return {kName,
          {plain("Next", &Player::next), plain("Previous", &Player::previous), plain("Pause", &Player::pause),
           plain("PlayPause", &Player::playPause), plain("Stop", &Player::stop), plain("Play", &Player::play),
           taking("Seek", {{"Offset", "x"}}, [this](const Values& in) { seekBy(At<std::int64_t>(in, 0)); }),
           taking("SetPosition", {{"TrackId", "o"}, {"Position", "x"}},
                  [this](const Values& in) { seekTo(At<Path>(in, 0), At<std::int64_t>(in, 1)); }),
           taking("OpenUri", {{"Uri", "s"}}, [this](const Values& in) { open(At<std::string>(in, 0)); })},
          {{"PlaybackStatus", "s", Told::kEverybody, [this] { return Value(NameOf(now_.status())); }},
           {"LoopStatus", "s", Told::kEverybody, [this] { return Value(now_.loop ? "Playlist" : "None"); },
            writing([this](const Value& value) { loop(std::get<std::string>(value.held)); })},
           {"Rate", "d", Told::kEverybody, [this] { return Value(now_.rate()); },
            writing([this](const Value& value) { rate(std::get<double>(value.held)); })},
           {"Shuffle", "b", Told::kEverybody, [this] { return Value(now_.shuffle); },
            writing([this](const Value& value) { player_.set("ShuffleMode", std::get<bool>(value.held)); })},
           {"Metadata", "a{sv}", Told::kEverybody, [this] { return Value(track_.metadata()); }},
           {"Volume", "d", Told::kEverybody, [this] { return Value(now_.volume / kFullVolume); },
            writing([this](const Value& value) { volume(std::get<double>(value.held)); })},
           {"Position", "x", Told::kNobody, [this] { return Value(Microseconds(now_.position)); }},
           Constant("MinimumRate", -kScanSpeed),
           Constant("MaximumRate", kScanSpeed),
           flag("CanGoNext", [this] { return now_.next; }),
           flag("CanGoPrevious", [this] { return now_.previous; }),
           flag("CanPlay", [this] { return canPlay(); }),
           flag("CanPause", [this] { return canPlay(); }),
           flag("CanSeek", [this] { return canSeek(); }),
           {"CanControl", "b", Told::kNobody, [] { return Value(true); }}},
          {{"Seeked", {{"Position", "x"}}}}};
}

}  // namespace mpris
