#pragma once
#include <cstdint>
#include <string>

namespace engine {

/// A file as the decoder may read it: its ID3 tags are of a version that nobody reads. They take the place
/// that they have, so nothing else moves; but the libraries below the decoder, which would unpack whatever a
/// tag says, pass over them. What the player shows of tags comes from its own readers, which know bounds.
///
/// A tag is one where those libraries look for one: at the front, behind its name in a file of parts, where a
/// DSF file says, and anywhere in a stream that has no form of its own. Elsewhere the same bytes are sound.
class UnreadTags {
 public:
  /// The descriptor is lent.
  explicit UnreadTags(int descriptor);

  /// Reads up to `most` bytes from there on: the number of bytes read, 0 at the end, -1 for a failure.
  std::int64_t read(char* bytes, std::uint64_t most, std::uint64_t offset);
  /// Where the tags at the file's front end.
  [[nodiscard]] std::uint64_t frontEnd() const { return frontEnd_; }

 private:
  void findFront();
  [[nodiscard]] bool isRead(std::uint64_t offset, std::size_t at) const;
  void veil(std::uint64_t start);
  /// Fills `buffer_`; false for a failure.
  bool fill(std::uint64_t offset, std::size_t length);

  int descriptor_;
  std::uint64_t frontEnd_ = 0;
  std::uint64_t pointed_ = 0;  ///< where a DSF file's tag begins
  bool formless_ = true;
  std::string buffer_;
};

}  // namespace engine
