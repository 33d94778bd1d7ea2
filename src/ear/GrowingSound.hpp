#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "ear/Messages.hpp"

namespace ear {

/// A sound that comes while it is spoken. Where somebody pauses it is heard already, as he may have said all:
/// if nothing but stillness follows, that is the answer, and nobody waits for it. To hear it piece by piece
/// is no way, as the decoder judges each moment by the loudness and the colour of the whole.
class GrowingSound {
 public:
  using Hear = std::function<Heard(const std::vector<std::int16_t>& sound)>;
  explicit GrowingSound(Hear hear) : hear_(std::move(hear)) {}

  void begin();
  /// At most half a minute of it; what is longer is cut.
  void more(const std::vector<std::int16_t>& piece);
  /// Whether there is something to do until more comes.
  [[nodiscard]] bool pauses() const;
  /// Does it.
  void hearPause() { ahead_ = hear_(sound_); }
  /// What was heard in all of it.
  Heard end();

 private:
  void judge(std::size_t block);

  Hear hear_;
  std::vector<std::int16_t> sound_;
  std::size_t judged_ = 0;  ///< blocks of it
  double loudest_ = 0;      ///< power of the loudest of them
  std::size_t still_ = 0;   ///< the last of them that are still
  std::optional<Heard> ahead_;
};

}  // namespace ear
