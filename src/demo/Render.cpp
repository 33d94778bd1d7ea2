#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

#include "demo/Piece.hpp"

namespace engine::demo {
namespace {

constexpr int kRate = 32000;
constexpr std::array<int, 7> kMajor{0, 2, 4, 5, 7, 9, 11};
constexpr std::array<int, 7> kMinor{0, 2, 3, 5, 7, 8, 10};

double Frequency(double note) { return 440.0 * std::pow(2.0, (note - 69) / 12); }

/// The note of a step of the scale; steps go on above and below.
int Note(const Piece& piece, int step) {
  const int octave = step >= 0 ? step / 7 : -((6 - step) / 7);
  const auto degree = static_cast<std::size_t>(step - octave * 7);
  return piece.key + 12 * octave + (piece.minor ? kMinor : kMajor).at(degree);
}

struct Partial {
  double multiple;
  double strength;
  double decay;  ///< how much faster than the note it fades
};

std::vector<Partial> Partials(Timbre timbre) {
  switch (timbre) {
    case Timbre::kOrgan: return {{1, 0.5, 0}, {2, 0.3, 0}, {3, 0.15, 0}, {4, 0.1, 0}};
    case Timbre::kPluck: return {{1, 0.6, 3}, {2, 0.3, 5}, {3, 0.2, 8}, {5, 0.1, 12}};
    case Timbre::kBell: return {{1, 0.5, 1.5}, {2.76, 0.25, 3}, {5.4, 0.12, 5}};
    case Timbre::kPad: return {{1, 0.4, 0}, {1.006, 0.4, 0}, {2.003, 0.15, 0}};
  }
  return {};
}

double Attack(Timbre timbre) {
  return timbre == Timbre::kPad ? 0.25 : timbre == Timbre::kOrgan ? 0.03 : 0.004;
}

/// Adds one note to the sound.
void Play(Sound& sound, Timbre timbre, int note, double start, double length, double strength) {
  const double attack = Attack(timbre);
  const double release = 0.08;
  const auto first = static_cast<std::size_t>(start * sound.rate);
  const auto count = static_cast<std::size_t>((length + release) * sound.rate);
  for (const Partial& partial : Partials(timbre)) {
    // A rotating and shrinking pointer, much cheaper than a sine and an exponential for every sample.
    const double angle = 2 * std::numbers::pi * Frequency(note) * partial.multiple / sound.rate;
    const auto turn = std::polar(std::exp(-partial.decay / sound.rate), angle);
    std::complex<double> pointer(strength * partial.strength, 0);
    for (std::size_t i = 0; i < count && first + i < sound.samples.size(); ++i) {
      const double time = static_cast<double>(i) / sound.rate;
      const double rise = std::min(1.0, time / attack);
      const double fall = std::clamp((length + release - time) / release, 0.0, 1.0);
      sound.samples[first + i] += static_cast<float>(rise * fall * pointer.imag());
      pointer = {pointer.real() * turn.real() - pointer.imag() * turn.imag(),
                 pointer.real() * turn.imag() + pointer.imag() * turn.real()};
    }
  }
}

void PlayFigure(Sound& sound, const Piece& piece, int chord, double start, double beat, int bar) {
  static constexpr std::array<int, 8> kArpeggio{0, 2, 4, 7, 9, 7, 4, 2};
  static constexpr std::array<int, 8> kMelody{4, 5, 7, 4, 2, 4, 1, 0};
  for (int eighth = 0; eighth < 8; ++eighth) {
    const double when = start + eighth * beat / 2;
    const auto place = static_cast<std::size_t>(eighth);
    switch (piece.figure) {
      case Figure::kArpeggio:
        Play(sound, piece.lead, Note(piece, chord + kArpeggio.at(place)), when, beat * 0.6, 0.28);
        break;
      case Figure::kMelody:
        if (eighth % 2 == 0 || (bar + eighth) % 3 == 0) {
          const int step = chord + kMelody.at((place + static_cast<std::size_t>(bar) * 3) % 8) + 7;
          Play(sound, piece.lead, Note(piece, step), when, beat * (eighth % 2 == 0 ? 0.9 : 0.4), 0.3);
        }
        break;
      case Figure::kPulse:
        Play(sound, piece.lead, Note(piece, chord + (eighth % 4 == 3 ? 4 : 0)), when, beat * 0.3,
             eighth % 2 == 0 ? 0.35 : 0.2);
        break;
    }
  }
}

}  // namespace

Sound Render(const Piece& piece) {
  Sound sound = Silence(piece.seconds, kRate);
  const double beat = 60.0 / piece.beatsPerMinute;
  const double bar = beat * 4;
  for (int number = 0; number * bar < piece.seconds - bar / 2; ++number) {
    const int chord = piece.chords[static_cast<std::size_t>(number) % piece.chords.size()];
    const double start = number * bar;
    for (const int step : {0, 2, 4}) {
      Play(sound, piece.ground, Note(piece, chord + step), start, bar * 0.95, 0.12);
    }
    Play(sound, Timbre::kOrgan, Note(piece, chord - 14), start, bar * 0.9, 0.2);
    PlayFigure(sound, piece, chord, start, beat, number);
  }
  float peak = 0.01F;
  for (const float sample : sound.samples) peak = std::max(peak, std::abs(sample));
  const auto fade = static_cast<std::size_t>(kRate) * 2;
  const std::size_t size = sound.samples.size();
  for (std::size_t i = 0; i < size; ++i) {
    const float tail = std::min(1.0F, static_cast<float>(size - i) / static_cast<float>(fade));
    sound.samples[i] *= 0.8F / peak * tail;
  }
  return sound;
}

}  // namespace engine::demo
