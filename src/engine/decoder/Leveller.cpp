#include "engine/decoder/Leveller.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace engine {

double Leveller::decibels(const Loudness& loudness) const {
  const bool albumKnown = loudness.album != Loudness::kUnknown;
  const bool trackKnown = loudness.track != Loudness::kUnknown;
  if (!on() || (!albumKnown && !trackKnown)) return 0;
  const bool album = gain_ == ReplayGain::kAlbum ? albumKnown : !trackKnown;
  const double gain = (album ? loudness.album : loudness.track) / 100.0 + preamp_;
  const std::uint16_t peak = album ? loudness.albumPeak : loudness.trackPeak;
  if (clipping_ || peak == 0) return gain;
  return std::min(gain, -20 * std::log10(peak / 10000.0));
}

// A filter, and not the decoder's own volume: that would change for what is still in the sound device's
// buffer when the next title is begun. Each title has one, also where it changes nothing, since another form
// of samples would make a gap.
std::string Leveller::optionsFor(const Loudness& loudness) const {
  std::array<char, 64> filter{};
  const int size = std::snprintf(filter.data(), filter.size(), "lavfi=[volume=volume=%.2fdB:precision=float]",
                                 decibels(loudness));
  return "af=%" + std::to_string(size) + "%" + filter.data();
}

}  // namespace engine
