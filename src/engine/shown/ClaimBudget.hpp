#pragma once
#include <cstdint>
#include <vector>

namespace engine {

/// How much of what an MP4 file says of itself is believed. The decoder keeps an entry for each sample that a
/// number in the file speaks of, whether the file holds it or not; so all of a file's numbers together have a
/// bound. An honest sample takes four bytes of its file at least, in its list or in its sound; a book of
/// seventy hours has eleven million.
///
/// What is refused isn't counted, and is refused ever after.
class ClaimBudget {
 public:
  explicit ClaimBudget(std::uint64_t fileSize);

  /// Samples of a track or of a piece of one.
  bool samples(std::uint64_t count);
  /// Small samples of one size. They may take a half of what is allowed, if the file is as large as they are
  /// together.
  bool smallSamples(std::uint64_t count, std::uint64_t each);
  /// Parts of a track that are played one after the other: each may repeat all of the track.
  bool edits(std::uint64_t count);
  /// A list that takes so many bytes of the file.
  bool list(std::uint64_t bytes);
  /// A list of so many chunks.
  bool chunks(std::uint64_t count);
  /// How the samples of a track lie in its chunks, in pieces as the decoder keeps them: so many in those that
  /// are told, and in each from the `first` of the others on (1 is the first of all).
  bool spread(std::uint64_t told, std::uint64_t each, std::uint64_t first);
  /// One more track, of which the decoder keeps something for each fragment.
  bool track();
  bool fragments(std::uint64_t count);

 private:
  /// The chunks of a track that aren't told one by one.
  struct Others {
    std::uint64_t each;
    std::uint64_t first;
  };
  /// Whether there is room for what is told and for those others, were there so many chunks.
  [[nodiscard]] bool fit(std::uint64_t told, std::uint64_t chunks) const;

  std::uint64_t fileSize_;
  std::uint64_t mostSamples_;
  std::uint64_t mostPieces_;
  std::uint64_t bytesLeft_;
  std::uint64_t samples_ = 0;
  std::uint64_t edits_ = 1;
  std::uint64_t chunks_ = 1;  ///< of the longest list of them
  std::uint64_t told_ = 0;
  std::vector<Others> others_;
  std::uint64_t tracks_ = 1;
  std::uint64_t fragments_ = 1;
};

}  // namespace engine
