#pragma once
#include <string>

#include "engine/common/Config.hpp"
#include "engine/common/Track.hpp"

namespace engine {

/// Makes titles as loud as each other, as their tags tell it.
class Leveller {
 public:
  explicit Leveller(const Config& config)
      : gain_(config.replayGain), preamp_(config.preamp), clipping_(config.clipping) {}

  [[nodiscard]] bool on() const { return gain_ != ReplayGain::kOff; }
  /// Decibels by which the title is to be louder; 0 where its tags say nothing. Where only the track's or
  /// only the album's loudness is known, that one counts.
  [[nodiscard]] double decibels(const Loudness& loudness) const;
  /// The decoder's options for such a title.
  [[nodiscard]] std::string optionsFor(const Loudness& loudness) const;

 private:
  ReplayGain gain_;
  double preamp_;
  bool clipping_;
};

}  // namespace engine
