#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "engine/shown/BoxWalk.hpp"
#include "engine/shown/ClaimBudget.hpp"
#include "engine/shown/SeenRanges.hpp"

namespace engine {

class UnreadTags;

/// A file as the decoder may read it: the boxes of an MP4 file say no more of samples than is believed. One
/// that says more is told under a name that nobody knows; nothing moves. What doesn't hold such boxes is
/// passed on as it is, and so is sound.
///
/// A box is known by its name alone, wherever it stands, so that it doesn't matter by which way the decoder
/// comes to it; and it is looked at once.
class SampleClaims {
 public:
  /// The file is lent; it has that size now.
  SampleClaims(UnreadTags& file, std::uint64_t size);

  /// Reads up to `most` bytes from there on: the number of bytes read, 0 at the end, -1 for a failure.
  std::int64_t read(char* bytes, std::uint64_t most, std::uint64_t offset);

 private:
  struct Box;
  /// How a box is told.
  enum class Verdict : std::uint8_t { kAsItIs, kUnread, kFewer };

  /// Whether all of that range is sound which is passed as it is.
  [[nodiscard]] bool isSound(std::uint64_t begin, std::uint64_t end) const;
  /// Fills `buffer_`; false for a failure.
  bool fill(std::uint64_t offset, std::size_t length);
  void look(std::uint64_t start, std::size_t from, std::size_t to);
  Verdict verdictOn(const Box& box);
  Verdict judge(const Box& box);
  Verdict judgeSizes(const Box& box);
  bool believesRun(const Box& box);
  bool believesEdits(const Box& box);
  bool believesSpread(const Box& box);

  UnreadTags& file_;
  BoxWalk walk_;
  ClaimBudget budget_;
  SeenRanges seen_;
  std::map<std::uint64_t, Verdict> verdicts_;  ///< on what isn't told as it is, by the place of its name
  std::string buffer_;
};

}  // namespace engine
