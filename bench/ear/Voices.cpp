#include "ear/Voices.hpp"

#include <flite/flite.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <stdexcept>

extern "C" {
// The library has no header for them. NOLINTBEGIN(readability-identifier-naming)
cst_voice* register_cmu_us_awb(const char* folder);
cst_voice* register_cmu_us_rms(const char* folder);
cst_voice* register_cmu_us_slt(const char* folder);
// NOLINTEND(readability-identifier-naming)
}

namespace bench {
namespace {

constexpr double kRate = 16000;

cst_voice* FliteVoice(const std::string& name) {
  static const bool ready = flite_init() == 0;
  if (!ready) return nullptr;
  if (name == "awb") return register_cmu_us_awb(nullptr);
  if (name == "rms") return register_cmu_us_rms(nullptr);
  return register_cmu_us_slt(nullptr);
}

Sound Flite(const std::string& name, const std::string& text) {
  struct Free {
    void operator()(cst_wave* wave) const { delete_wave(wave); }
  };
  cst_voice* voice = FliteVoice(name);
  if (voice == nullptr) return {};
  const std::unique_ptr<cst_wave, Free> wave(flite_text_to_wave(text.c_str(), voice));
  if (!wave || wave->sample_rate != static_cast<int>(kRate)) return {};
  return {wave->samples, wave->samples + wave->num_samples};
}

Sound Espeak(const std::string& name, const std::string& text) {
  const std::string command = "espeak-ng -v " + name + " -s 150 --stdout \"" + text +
                              "\" | ffmpeg -loglevel error -i - -ar 16000 -ac 1 -f s16le -";
  struct Close {
    void operator()(std::FILE* file) const { ::pclose(file); }
  };
  const std::unique_ptr<std::FILE, Close> out(::popen(command.c_str(), "r"));  // NOLINT(cert-env33-c)
  Sound sound;
  if (!out) return sound;
  std::array<std::int16_t, 4096> part{};
  while (const std::size_t got = std::fread(part.data(), sizeof(std::int16_t), part.size(), out.get()))
    sound.insert(sound.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(got));
  return sound;
}

std::int16_t Sample(double value) { return static_cast<std::int16_t>(std::clamp(value, -32768.0, 32767.0)); }

double Power(const Sound& sound) {
  constexpr int kSilent = 100;
  double power = 0;
  std::size_t count = 0;
  for (const std::int16_t each : sound) {
    if (std::abs(int{each}) < kSilent) continue;
    power += static_cast<double>(each) * each;
    ++count;
  }
  return count == 0 ? 0 : power / static_cast<double>(count);
}

/// Pink noise of power 1, as a sum of white ones that change at half the pace each.
class Pink {
 public:
  explicit Pink(std::uint32_t seed) : random_(seed) {
    for (double& each : rows_) each = white_(random_);
  }
  double next() {
    ++count_;
    std::size_t row = 0;
    while (row + 1 < rows_.size() && (count_ >> row) % 2 == 0) ++row;
    rows_[row] = white_(random_);
    double sum = white_(random_);
    for (const double each : rows_) sum += each;
    return sum / std::sqrt(static_cast<double>(rows_.size() + 1));
  }

 private:
  std::mt19937 random_;
  std::normal_distribution<double> white_;
  std::array<double, 12> rows_{};
  std::uint32_t count_ = 0;
};

}  // namespace

Voices::Voices(Which which)
    : names_(which == Which::kTuning
                 ? std::vector<std::string>{"flite slt", "flite rms", "espeak en-us"}
                 : std::vector<std::string>{"flite awb", "espeak en-us+f3", "espeak en-gb-x-rp"}) {}

Sound Voices::say(std::size_t voice, const std::string& text) const {
  constexpr std::size_t kBefore = 4800;
  constexpr std::size_t kAfter = 6400;
  const std::string& name = names_[voice];
  const std::string own = name.substr(name.find(' ') + 1);
  const Sound said = name.starts_with("flite") ? Flite(own, text) : Espeak(own, text);
  if (said.empty()) throw std::runtime_error("The voice " + name + " says nothing");
  Sound sound(kBefore);
  sound.insert(sound.end(), said.begin(), said.end());
  sound.resize(sound.size() + kAfter);
  return sound;
}

Sound WithNoise(const Sound& sound, double decibels, std::uint32_t seed) {
  const double loudness = std::sqrt(Power(sound)) * std::pow(10, -decibels / 20);
  Pink pink(seed);
  Sound noisy(sound.size());
  for (std::size_t i = 0; i < sound.size(); ++i) noisy[i] = Sample(sound[i] + loudness * pink.next());
  return noisy;
}

Sound NobodysSound(std::uint32_t seed) {
  constexpr std::size_t kSamples = 32000;
  constexpr double kLoud = 4000;
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> even(0, 1);
  Pink pink(seed + 1);
  Sound sound(kSamples);
  if (seed % 3 == 0) {  // noise that swells
    for (std::size_t i = 0; i < kSamples; ++i)
      sound[i] = Sample(kLoud * pink.next() *
                        std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(kSamples)));
  } else if (seed % 3 == 1) {  // knocks
    for (int knock = 0; knock < 5; ++knock) {
      const auto at = static_cast<std::size_t>(even(random) * (kSamples - 4000));
      for (std::size_t i = 0; i < 4000; ++i)
        sound[at + i] =
            Sample(sound[at + i] + 3 * kLoud * pink.next() * std::exp(-static_cast<double>(i) / 600));
    }
  } else {  // chords of three notes with overtones, four a sound
    for (std::size_t chord = 0; chord < 4; ++chord) {
      const double ground = 110 * std::pow(2, std::floor(even(random) * 24) / 12);
      for (std::size_t i = 0; i < kSamples / 4; ++i) {
        double value = 0;
        const double second = static_cast<double>(i) / kRate;
        for (const double note : {1.0, 1.26, 1.5}) {
          for (int over = 1; over <= 5; ++over)
            value += std::sin(2 * std::numbers::pi * ground * note * over * second) / over;
        }
        sound[chord * kSamples / 4 + i] = Sample(kLoud / 2 * value * std::exp(-2 * second));
      }
    }
  }
  return sound;
}

}  // namespace bench
