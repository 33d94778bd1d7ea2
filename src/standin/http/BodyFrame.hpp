#pragma once
#include <cstddef>
#include <string_view>

#include "standin/http/RequestHead.hpp"

namespace standin {

/// Follows the bytes of a request's body to its end, so that what reads the body can neither go beyond it nor
/// take the body's form for another one than it is.
class BodyFrame {
 public:
  /// Of a request without a body.
  BodyFrame() = default;
  /// Takes `most` bytes in all, those of the chunks' own lines among them.
  BodyFrame(const RequestHead& head, std::size_t most);

  /// How many of the bytes, from the first one on, belong to the body; fewer than there are where it ends, or
  /// breaks its form, or is too long.
  std::size_t take(std::string_view bytes);
  /// All of it has been taken.
  [[nodiscard]] bool ended() const { return state_ == State::kEnd; }
  /// Nothing more of it can be understood.
  [[nodiscard]] bool broken() const { return state_ == State::kBroken; }

 private:
  /// A body with a length is kData alone. In chunks it is a line with the size, data, a line's end, and so on
  /// to a chunk of size 0, behind which an empty line is the end.
  enum class State { kData, kSize, kSizeEnd, kDataReturn, kDataEnd, kLastReturn, kLastEnd, kEnd, kBroken };
  void step(char c);
  void stepSize(char c);

  State state_ = State::kEnd;
  bool chunked_ = false;
  std::size_t left_ = 0;    ///< bytes of data, or the size as far as it is read
  std::size_t digits_ = 0;  ///< of the size
  std::size_t most_ = 0;    ///< bytes that may still be taken
};

}  // namespace standin
