#include "ear/GrowingSound.hpp"

#include <algorithm>
#include <utility>

namespace ear {
namespace {

constexpr std::size_t kLongest = std::size_t{30} * 16000;
constexpr std::size_t kBlock = 320;      // 20 milliseconds
constexpr std::size_t kPause = 18;       // blocks: between two words most are shorter
constexpr double kStill = 0.003;         // of the loudest: 25 decibels less
constexpr double kSpeech = 200.0 * 200;  // power of what somebody may have said

}  // namespace

void GrowingSound::begin() {
  sound_.clear();
  judged_ = 0;
  loudest_ = 0;
  still_ = 0;
  ahead_.reset();
}

void GrowingSound::more(const std::vector<std::int16_t>& piece) {
  const std::size_t some = std::min(piece.size(), kLongest - sound_.size());
  sound_.insert(sound_.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(some));
  for (; (judged_ + 1) * kBlock <= sound_.size(); ++judged_) judge(judged_);
}

void GrowingSound::judge(std::size_t block) {
  double power = 0;
  for (std::size_t i = block * kBlock; i < (block + 1) * kBlock; ++i)
    power += static_cast<double>(sound_[i]) * sound_[i] / static_cast<double>(kBlock);
  loudest_ = std::max(loudest_, power);
  if (power < kStill * loudest_) {
    ++still_;
  } else {
    still_ = 0;
    ahead_.reset();  // he goes on
  }
}

bool GrowingSound::pauses() const { return !ahead_ && still_ >= kPause && loudest_ >= kSpeech; }

Heard GrowingSound::end() {
  // What is less than a block tells nothing.
  Heard heard = ahead_ ? std::move(*ahead_) : hear_(sound_);
  begin();
  return heard;
}

}  // namespace ear
