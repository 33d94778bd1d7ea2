#include "standin/room/SourceCheck.hpp"

#include <algorithm>

namespace standin {
namespace {

constexpr std::uint64_t kRate = 16000;
constexpr std::uint64_t kJudged = 10 * kRate;  // samples by which a source is judged too fast
constexpr base::Milliseconds kSlowAfter = std::chrono::seconds(30);
constexpr base::Milliseconds kNothing = std::chrono::seconds(10);
constexpr std::uint64_t kSilence = 60 * kRate;
constexpr std::uint64_t kProved = 60 * kRate;
constexpr int kHush = 1;  // a converter's rounding

std::string Rate(std::uint64_t samples, base::Milliseconds time) {
  const auto rate = samples * 1000 / static_cast<std::uint64_t>(std::max<std::int64_t>(time.count(), 1));
  return "The microphone gives " + std::to_string(rate) +
         " samples a second where 16000 were asked for. Choose another default source of the system’s, or "
         "one of a kind that converts";
}

}  // namespace

void SourceCheck::take(std::span<const std::int16_t> sound, base::Milliseconds now) {
  if (sound.empty()) return;
  last_ = now;
  samples_ += sound.size();
  const auto heard = std::find_if(sound.rbegin(), sound.rend(),
                                  [](std::int16_t each) { return each > kHush || each < -kHush; });
  const auto behind = static_cast<std::uint64_t>(heard - sound.rbegin());
  silent_ = heard == sound.rend() ? silent_ + behind : behind;
}

std::string SourceCheck::trouble(base::Milliseconds now) const {
  if (now - last_ >= kNothing)
    return "Nothing comes from the microphone. See whether it is plugged in and is the system’s default "
           "source";
  // What has waited comes at once, but in all it can't be more than time has passed.
  const base::Milliseconds time = now - began_;
  const std::uint64_t usual = static_cast<std::uint64_t>(time.count()) * kRate / 1000;
  const bool fast = samples_ >= kJudged && samples_ > usual + usual / 4;
  const bool slow = time >= kSlowAfter && samples_ < usual - usual / 4;
  return fast || slow ? Rate(samples_, time) : std::string();
}

bool SourceCheck::onlySilence() const { return silent_ >= kSilence; }

bool SourceCheck::proved() const { return samples_ >= kProved; }

}  // namespace standin
