#include "engine/tags/XiphComments.hpp"

#include <algorithm>
#include <string>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine::tags {
namespace {

constexpr std::uint64_t kMostComments = 4096;
constexpr std::size_t kLongestName = 64;
constexpr std::string_view kPicture = "METADATA_BLOCK_PICTURE=";

std::string Taken(ByteStream& stream, std::uint64_t length) {
  std::string all;
  while (all.size() < length) {
    const std::string_view piece = stream.take(
        static_cast<std::size_t>(std::min<std::uint64_t>(length - all.size(), ByteSource::kMost)));
    if (piece.empty()) break;
    all += piece;
  }
  return all;
}

}  // namespace

std::string_view FileStream::take(std::size_t length) {
  if (at_ >= end_) return {};
  const std::string_view bytes =
      source_.at(at_, static_cast<std::size_t>(std::min<std::uint64_t>(length, end_ - at_)));
  at_ += bytes.size();
  return bytes;
}

void FileStream::skip(std::uint64_t length) {
  at_ = length < end_ - std::min(at_, end_) ? at_ + length : end_;
}

void ReadXiphComments(ByteStream& stream, TagFields& fields) {
  stream.skip(Little(stream.take(4), 0, 4));  // who has written them
  const std::uint64_t count = std::min(Little(stream.take(4), 0, 4), kMostComments);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::string_view size = stream.take(4);
    if (size.size() < 4) return;
    const std::uint64_t length = Little(size, 0, 4);
    const std::string_view text = stream.take(
        static_cast<std::size_t>(std::min<std::uint64_t>(length, kLongestName + TagFields::kMostOfText)));
    const std::size_t taken = text.size();
    const std::size_t mark = text.find('=');
    const bool picture = text.size() > kPicture.size() && FieldNamed(text.substr(0, mark)) == std::nullopt &&
                         text.substr(0, kPicture.size()) == kPicture;
    if (picture && fields.wantsPicture(true, length / 4 * 3)) {
      std::string whole(text.substr(kPicture.size()));
      whole += Taken(stream, length - taken);
      ReadFlacPicture(FromBase64(whole), fields);
      continue;
    }
    if (mark != std::string_view::npos && mark <= kLongestName)
      fields.offer(text.substr(0, mark), text.substr(mark + 1));
    stream.skip(length - taken);
  }
}

void ReadFlacPicture(std::string_view block, TagFields& fields) {
  const bool front = Big(block, 0, 4) == 3;
  std::size_t at = 4;
  for (int i = 0; i < 2; ++i)
    at += 4 + static_cast<std::size_t>(Big(block, at, 4));  // its type, its description
  at += 16;                                                 // its sizes and colours
  const std::uint64_t length = Big(block, at, 4);
  if (fields.wantsPicture(front, length) && at + 4 + length <= block.size())
    fields.offerPicture(front, std::string(block.substr(at + 4, static_cast<std::size_t>(length))));
}

}  // namespace engine::tags
