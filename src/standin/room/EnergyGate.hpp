#pragma once
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <vector>

namespace standin {

/// Finds where somebody speaks in a sound that never ends: what is louder than the room for longer than a
/// bang is, with a little before and behind it. The room is what is there most of the time, be it a fan or
/// music; it is learnt and followed. It knows time by the sound alone, which has 16,000 samples a second.
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
    /// What began is not heard to its end.
    std::function<void()> nothing;
  };
  explicit EnergyGate(Told told);

  void take(std::span<const std::int16_t> sound);
  /// What has begun is over, and what comes next, for not quite a second, is the room as it is now. So it is
  /// at the beginning, after each utterance, and where something else begins to play.
  void rest();
  /// What has begun is over, and what comes isn't heard, nor its echo behind it: the house speaks, or
  /// somebody is heard elsewhere. The room stays as it was known.
  void pause();
  /// Players are asked for silence: the room may be a stiller one from now on, also in the middle of a word.
  void playersLeave();
  /// They come back: where the room has been a stiller one, it is learnt anew, and their music as it was
  /// before is a part of it, even if it takes some seconds to be there again.
  void playersReturn();
  /// Whether a single short word may come, which is no longer than a bang.
  void awaitsWord(bool awaits) { awaitsWord_ = awaits; }
  /// Whether it could hear somebody now.
  [[nodiscard]] bool open() const { return resting_ == 0; }
  [[nodiscard]] bool speaking() const { return speaking_; }

 private:
  static constexpr std::size_t kBlock = kRate / 50;  ///< samples that are judged together
  using Block = std::vector<std::int16_t>;
  struct Kept {
    Block block;
    double level = 0;
    bool loud = false;
  };

  void close(std::size_t blocks);
  double levelOf(const Block& block);
  void judge(Block block);
  void learn(double level);
  void wait(Kept kept);
  [[nodiscard]] bool somebodySpeaks() const;
  void begin();
  void follow(double level);
  void fall();
  [[nodiscard]] double room() const;

  Told told_;
  Block partial_;
  double before_ = 0;    ///< the sample before, for what only changes slowly to be left out
  double filtered_ = 0;  ///< and what became of it
  std::size_t resting_ = 0;
  bool unknown_ = true;         ///< the room has to be learnt
  bool learning_ = true;        ///< and is, while it rests
  std::vector<double> learnt_;  ///< levels of the room, while it is learnt
  double floor_ = 0;            ///< level of the room, in decibels of a sample's square
  double music_ = 0;            ///< what it was before players were asked for silence
  std::size_t returning_ = 0;   ///< blocks in which that may come again
  bool stiller_ = false;        ///< players have been asked for silence
  bool awaitsWord_ = false;
  std::deque<Kept> kept_;  ///< the latest, before anybody speaks
  bool speaking_ = false;
  std::size_t samples_ = 0;    ///< since before it began
  std::deque<double> latest_;  ///< levels, while somebody speaks
};

}  // namespace standin
