#include "standin/room/EnergyGate.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace standin {
namespace {

// In blocks of 20 milliseconds.
constexpr std::size_t kEcho = 15;    // what still hangs in the room when a rest begins
constexpr std::size_t kLearns = 30;  // by which the room is known
constexpr std::size_t kBefore = 25;  // that are heard before the beginning: it may be a soft one
constexpr std::size_t kLook = 8;     // of which so many are loud when somebody begins; a knock is shorter
constexpr std::size_t kLoud = 6;
constexpr std::size_t kPause = 30;  // between two words nobody waits as long
constexpr std::size_t kLeast = 10;  // loud ones in the shortest word

// In decibels.
constexpr double kFaintest = 30;  // 60 below the loudest: nobody's speech, however still the room is
constexpr double kOpens = 10;     // above the room
constexpr double kHolds = 6;
// A block, by which the room is followed: up soon, as music has its loud moments, down in some seconds.
constexpr double kUp = 0.2;
constexpr double kDown = 0.05;
constexpr double kDownShare = 0.01;
constexpr double kUpSpeaking = 0.01;  // a fan that begins is not heard as speech for ever

}  // namespace

EnergyGate::EnergyGate(Told told) : told_(std::move(told)) { rest(); }

void EnergyGate::rest() {
  const bool spoke = std::exchange(speaking_, false);
  resting_ = kEcho + kLearns;
  learnt_.clear();
  kept_.clear();
  loud_.clear();
  partial_.clear();
  if (spoke) told_.nothing();
}

void EnergyGate::take(std::span<const std::int16_t> sound) {
  while (!sound.empty()) {
    const std::size_t some = std::min(sound.size(), kBlock - partial_.size());
    partial_.insert(partial_.end(), sound.begin(), sound.begin() + static_cast<std::ptrdiff_t>(some));
    sound = sound.subspan(some);
    if (partial_.size() == kBlock) judge(std::exchange(partial_, {}));
  }
}

/// Without what is no sound, like a microphone's own offset, and little of a lamp's hum.
double EnergyGate::levelOf(const Block& block) {
  constexpr double kSlow = 0.95;
  double power = 0;
  for (const std::int16_t sample : block) {
    filtered_ = sample - before_ + kSlow * filtered_;
    before_ = sample;
    power += filtered_ * filtered_;
  }
  return 10 * std::log10(1 + power / static_cast<double>(block.size()));
}

void EnergyGate::judge(Block block) {
  const double level = levelOf(block);
  if (resting_ > 0) return learn(level);
  if (!speaking_) {
    kept_.push_back(std::move(block));
    if (kept_.size() > kBefore) kept_.pop_front();
    return wait(level);
  }
  samples_ += block.size();
  told_.more(block);
  follow(level);
}

void EnergyGate::learn(double level) {
  if (resting_ <= kLearns) learnt_.push_back(level);
  if (--resting_ > 0) return;
  // Not the loudest: the echo may hang on, somebody may speak already.
  const auto usual = learnt_.begin() + static_cast<std::ptrdiff_t>(learnt_.size() * 3 / 5);
  std::nth_element(learnt_.begin(), usual, learnt_.end());
  floor_ = *usual;
}

void EnergyGate::wait(double level) {
  loud_.push_back(level > std::max(kFaintest, floor_ + kOpens));
  if (loud_.size() > kLook) loud_.pop_front();
  floor_ += level > floor_ ? std::min(kUp, level - floor_)
                           : -std::min(floor_ - level, std::max(kDown, kDownShare * (floor_ - level)));
  loudBlocks_ = static_cast<std::size_t>(std::count(loud_.begin(), loud_.end(), true));
  if (loudBlocks_ < kLoud) return;
  speaking_ = true;
  stillBlocks_ = 0;
  Block before;
  for (const Block& each : std::exchange(kept_, {})) before.insert(before.end(), each.begin(), each.end());
  samples_ = before.size();
  loud_.clear();
  told_.begins();
  told_.more(before);
}

void EnergyGate::follow(double level) {
  const bool loud = level > std::max(kFaintest, floor_ + kHolds);
  loudBlocks_ += loud ? 1 : 0;
  stillBlocks_ = loud ? 0 : stillBlocks_ + 1;
  floor_ += kUpSpeaking;
  if (stillBlocks_ >= kPause || samples_ + kBlock > kLongest) end();
}

void EnergyGate::end() {
  speaking_ = false;
  const bool spoken = loudBlocks_ >= kLeast;
  rest();
  if (spoken) {
    told_.ends();
  } else {
    told_.nothing();
  }
}

}  // namespace standin
