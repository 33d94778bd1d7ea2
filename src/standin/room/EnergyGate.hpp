#pragma once
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <vector>

namespace standin {

/// Finds where somebody speaks in a sound that never ends: what is louder than the room for long enough, with
/// a little before and behind it. The room is what is there most of the time, be it a fan or music; it is
/// learnt and followed. It knows time by the sound alone, which has 16,000 samples a second.
class EnergyGate {
 public:
  static constexpr std::size_t kRate = 16000;
  /// No utterance is longer: what goes on then is the room from then on.
  static constexpr std::size_t kLongest = 30 * kRate;

  struct Told {
    std::function<void()> begins;
    /// A piece of what began; the first one is from before it began.
    std::function<void(const std::vector<std::int16_t>& piece)> more;
    /// What began has ended.
    std::function<void()> ends;
    /// What began was nobody's speech, or is not heard to its end.
    std::function<void()> nothing;
  };
  explicit EnergyGate(Told told);

  void take(std::span<const std::int16_t> sound);
  /// What has begun is over, and what comes next, for not quite a second, is the room as it is now. So it is
  /// at the beginning, and after each utterance: the players come back then.
  void rest();
  /// Whether it could hear somebody now.
  [[nodiscard]] bool open() const { return resting_ == 0; }

 private:
  static constexpr std::size_t kBlock = kRate / 50;  ///< samples that are judged together
  using Block = std::vector<std::int16_t>;

  double levelOf(const Block& block);
  void judge(Block block);
  void learn(double level);
  void wait(double level);
  void follow(double level);
  void end();

  Told told_;
  Block partial_;
  double before_ = 0;    ///< the sample before, for what only changes slowly to be left out
  double filtered_ = 0;  ///< and what became of it
  std::size_t resting_ = 0;
  std::vector<double> learnt_;  ///< levels of the room, while it is learnt
  double floor_ = 0;            ///< level of the room, in decibels of a sample's square
  std::deque<Block> kept_;      ///< the latest, before anybody speaks
  std::deque<bool> loud_;       ///< which of them were
  bool speaking_ = false;
  std::size_t samples_ = 0;  ///< since before it began
  std::size_t loudBlocks_ = 0;
  std::size_t stillBlocks_ = 0;  ///< since it was loud last
};

}  // namespace standin
