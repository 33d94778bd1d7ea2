#pragma once
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "Corpus.hpp"

namespace bench {

using Sound = std::vector<std::int16_t>;  ///< 16,000 samples a second of one channel

/// Synthesised voices of two makers: three for each corpus, none in both.
class Voices {
 public:
  explicit Voices(Which which);
  [[nodiscard]] std::size_t count() const { return names_.size(); }
  [[nodiscard]] const std::string& name(std::size_t voice) const { return names_[voice]; }
  /// With a little silence around it. Throws std::runtime_error where the voice has nothing to say.
  [[nodiscard]] Sound say(std::size_t voice, const std::string& text) const;

 private:
  std::vector<std::string> names_;
};

/// The sound with pink noise as many decibels below it, measured over where there is sound.
Sound WithNoise(const Sound& sound, double decibels, std::uint32_t seed);
/// Two seconds that nobody has spoken: noises, knocks, chords. The same for the same seed.
Sound NobodysSound(std::uint32_t seed);

}  // namespace bench
