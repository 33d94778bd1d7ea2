#include "standin/room/EnergyGate.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace standin {
namespace {

// In blocks of 20 milliseconds.
constexpr std::size_t kEcho = 15;      // what still hangs in the room when a rest begins
constexpr std::size_t kLearns = 30;    // by which the room is known
constexpr std::size_t kBefore = 25;    // that are heard before the beginning: it may be a soft one
constexpr std::size_t kPause = 30;     // between two words nobody waits as long
constexpr std::size_t kSteady = 5;     // so long the level of a room holds, and hardly that of a word
constexpr std::size_t kReturns = 400;  // in which players are back, however long they take

/// How many blocks have to be loud, among how many, for somebody to speak.
struct Measure {
  std::size_t loud;
  std::size_t look;
};
constexpr Measure kSentence{14, 40};  // a bang and its echo are shorter
constexpr Measure kWord{7, 14};       // and so is a word

// In decibels.
constexpr double kFaintest = 30;  // 60 below the loudest: nobody's speech, however still the room is
constexpr double kOpens = 10;     // above the room
constexpr double kHolds = 6;
constexpr double kNearLoudest = 15;  // an echo is soon fainter than that, while another syllable is not
constexpr double kFell = 6;          // by so much a room is a stiller one
// A block, by which the room is followed: up soon, as music has its loud moments, down in some seconds.
constexpr double kUp = 0.2;
constexpr double kDown = 0.05;
constexpr double kDownShare = 0.01;
constexpr double kUpSpeaking = 0.01;  // a fan that begins is not heard as speech for ever

/// Not the loudest: an echo may hang on, somebody may speak already.
double Usual(std::vector<double> levels) {
  const auto usual = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() * 3 / 5);
  std::nth_element(levels.begin(), usual, levels.end());
  return *usual;
}

}  // namespace

EnergyGate::EnergyGate(Told told) : told_(std::move(told)) { rest(); }

void EnergyGate::close(std::size_t blocks) {
  resting_ = blocks;
  learnt_.clear();
  kept_.clear();
  partial_.clear();
  if (std::exchange(speaking_, false)) told_.nothing();
}

void EnergyGate::rest() {
  unknown_ = true;
  learning_ = true;
  close(kEcho + kLearns);
}

void EnergyGate::pause() {
  learning_ = unknown_;
  close(unknown_ ? kEcho + kLearns : kEcho);
}

void EnergyGate::playersLeave() {
  if (std::exchange(stiller_, true)) return;
  music_ = room();
}

void EnergyGate::playersReturn() {
  // Where it has not become a stiller room, there is nothing that could come back.
  if (!std::exchange(stiller_, false) || music_ < floor_ + kFell) return;
  returning_ = kReturns;
  rest();
}

/// The level of the room, or what it will be again in a moment.
double EnergyGate::room() const { return returning_ > 0 ? std::max(floor_, music_) : floor_; }

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
    if (returning_ > 0) --returning_;
    return wait({std::move(block), level});
  }
  samples_ += block.size();
  told_.more(block);
  follow(level);
}

void EnergyGate::learn(double level) {
  if (learning_ && resting_ <= kLearns) learnt_.push_back(level);
  if (--resting_ > 0) return;
  if (!std::exchange(learning_, false)) return;
  floor_ = Usual(std::exchange(learnt_, {}));
  unknown_ = false;
}

void EnergyGate::wait(Kept kept) {
  const double level = kept.level;
  kept.loud = level > std::max(kFaintest, room() + kOpens);
  kept_.push_back(std::move(kept));
  if (kept_.size() > kBefore + kSentence.look) kept_.pop_front();
  floor_ += level > floor_ ? std::min(kUp, level - floor_)
                           : -std::min(floor_ - level, std::max(kDown, kDownShare * (floor_ - level)));
  if (somebodySpeaks()) begin();
}

bool EnergyGate::somebodySpeaks() const {
  const Measure& measure = awaitsWord_ ? kWord : kSentence;
  const auto first = kept_.end() - static_cast<std::ptrdiff_t>(std::min(kept_.size(), measure.look));
  const auto loudest = std::max_element(
      first, kept_.end(), [](const Kept& left, const Kept& right) { return left.level < right.level; });
  const auto loud = std::count_if(first, kept_.end(), [&](const Kept& each) {
    return each.loud && each.level > loudest->level - kNearLoudest;
  });
  return static_cast<std::size_t>(loud) >= measure.loud;
}

void EnergyGate::begin() {
  speaking_ = true;
  latest_.clear();
  const std::size_t look = std::min(kept_.size(), awaitsWord_ ? kWord.look : kSentence.look);
  const auto first = std::find_if(kept_.end() - static_cast<std::ptrdiff_t>(look), kept_.end(),
                                  [](const Kept& each) { return each.loud; });
  Block before;
  for (auto each = first - std::min<std::ptrdiff_t>(first - kept_.begin(), kBefore); each != kept_.end();
       ++each)
    before.insert(before.end(), each->block.begin(), each->block.end());
  kept_.clear();
  samples_ = before.size();
  floor_ = room();
  told_.begins();
  told_.more(before);
}

/// The threshold goes down with the room: who speaks over music is not loud enough for it once he speaks
/// alone.
void EnergyGate::fall() {
  if (!stiller_ || latest_.size() < kSteady) return;
  const double steady = *std::max_element(latest_.end() - kSteady, latest_.end());
  if (steady < floor_ - kFell) floor_ = steady;
}

void EnergyGate::follow(double level) {
  latest_.push_back(level);
  if (latest_.size() > kPause) latest_.pop_front();
  floor_ += kUpSpeaking;
  fall();
  const double still = std::max(kFaintest, floor_ + kHolds);
  const bool over = latest_.size() == kPause &&
                    std::all_of(latest_.begin(), latest_.end(), [&](double each) { return each <= still; });
  if (!over && samples_ + kBlock <= kLongest) return;
  speaking_ = false;
  rest();
  unknown_ = !over;  // in a room that was still behind the last word it can be done without
  told_.ends();
}

}  // namespace standin
