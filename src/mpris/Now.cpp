#include "mpris/Now.hpp"

#include <map>
#include <variant>

namespace mpris {

namespace {

// States of the player.
constexpr std::int32_t kUndefined = 0;
constexpr std::int32_t kStopped = 1;
constexpr std::int32_t kPaused = 2;
constexpr std::int32_t kScanForward = 4;
constexpr std::int32_t kScanReverse = 5;
constexpr std::int32_t kBuffering = 6;
constexpr std::int32_t kTransitioning = 9;
constexpr std::int32_t kReady = 10;

/// Where each entry of the record goes.
using Place = std::variant<bool Now::*, std::int32_t Now::*, double Now::*, std::string Now::*>;

const std::map<std::string, Place, std::less<>>& Places() {
  static const std::map<std::string, Place, std::less<>> places{
      {"playState", &Now::playState},
      {"position", &Now::position},
      {"duration", &Now::duration},
      {"volume", &Now::volume},
      {"loop", &Now::loop},
      {"shuffle", &Now::shuffle},
      {"play", &Now::play},
      {"pause", &Now::pause},
      {"next", &Now::next},
      {"previous", &Now::previous},
      {"name", &Now::name},
      {"source", &Now::source},
      {"artist", &Now::artist},
      {"album", &Now::album},
      {"albumArtist", &Now::albumArtist},
      {"streamTitle", &Now::streamTitle},
      {"queueMark", &Now::queueMark},
      {"place", &Now::place},
      {"count", &Now::count},
      {"revision", &Now::revision},
  };
  return places;
}

void Take(bool& into, const base::Value& value) { into = base::ToBoolean(value); }
void Take(std::int32_t& into, const base::Value& value) { into = base::ToInt32(value); }
void Take(double& into, const base::Value& value) { into = base::ToDouble(value); }
void Take(std::string& into, const base::Value& value) { into = base::ToText(value); }

}  // namespace

std::string NameOf(Status status) {
  switch (status) {
    case Status::kPlaying: return "Playing";
    case Status::kPaused: return "Paused";
    default: return "Stopped";
  }
}

Status Now::status() const {
  switch (playState) {
    case kUndefined:
    case kStopped:
    case kReady: return Status::kStopped;
    case kPaused: return Status::kPaused;
    default: return heldAtStart() ? Status::kPaused : Status::kPlaying;
  }
}

bool Now::scansForward() const { return playState == kScanForward; }
bool Now::scansBackward() const { return playState == kScanReverse; }
bool Now::opens() const { return playState == kTransitioning; }
bool Now::heldAtStart() const { return opens() && play && !pause; }
bool Now::stalls() const { return playState == kBuffering; }

double Now::rate() const {
  if (scansForward()) return kScanSpeed;
  return scansBackward() ? -kScanSpeed : 1;
}

bool Now::hasItem() const {
  if (source.empty()) return false;
  // What the player holds only because nobody has chosen anything is none.
  return place >= 0 || count > 0 || (playState != kUndefined && playState != kStopped);
}

Now NowOf(const base::Value& record) {
  Now now;
  for (const auto& [key, value] : record.record()) {
    const auto known = Places().find(key);
    if (known == Places().end() || value.empty()) continue;
    std::visit([&now, held = value](auto member) { Take(now.*member, held); }, known->second);
  }
  return now;
}

}  // namespace mpris
