#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "base/Loop.hpp"

namespace standin {

/// Whether what a source of sound gives is sound of 16,000 samples a second, by how much of it has come and
/// when.
class SourceCheck {
 public:
  explicit SourceCheck(base::Milliseconds began) : began_(began), last_(began) {}

  void take(std::span<const std::int16_t> sound, base::Milliseconds now);
  /// Why it can't be listened to, in words for the user; empty while it can.
  [[nodiscard]] std::string trouble(base::Milliseconds now) const;
  /// It gives sound, but there has been nothing in it for a minute: not even a room's own noise.
  [[nodiscard]] bool onlySilence() const;
  /// Has given sound for a while.
  [[nodiscard]] bool proved() const;

 private:
  base::Milliseconds began_;
  base::Milliseconds last_;
  std::uint64_t samples_ = 0;
  std::uint64_t silent_ = 0;  ///< of the last ones
};

}  // namespace standin
