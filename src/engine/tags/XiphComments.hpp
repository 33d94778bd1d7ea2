#pragma once
#include <cstdint>
#include <string_view>

#include "engine/tags/ByteSource.hpp"
#include "engine/tags/TagFields.hpp"

namespace engine::tags {

/// Bytes one after the other.
class ByteStream {
 public:
  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  ByteStream(ByteStream&&) = delete;
  ByteStream& operator=(ByteStream&&) = delete;
  virtual ~ByteStream() = default;

  /// The next bytes, at most `ByteSource::kMost`, fewer at the end. They hold until the next call.
  virtual std::string_view take(std::size_t length) = 0;
  virtual void skip(std::uint64_t length) = 0;
};

/// A part of a file.
class FileStream : public ByteStream {
 public:
  FileStream(ByteSource& source, std::uint64_t begin, std::uint64_t end)
      : source_(source), at_(begin), end_(end) {}
  std::string_view take(std::size_t length) override;
  void skip(std::uint64_t length) override;

 private:
  ByteSource& source_;
  std::uint64_t at_;
  std::uint64_t end_;
};

/// The comments that FLAC, Vorbis, Opus, Speex and Theora share.
void ReadXiphComments(ByteStream& stream, TagFields& fields);
/// A picture as FLAC writes it, of `length` bytes in all.
void ReadFlacPicture(std::string_view block, TagFields& fields);

}  // namespace engine::tags
