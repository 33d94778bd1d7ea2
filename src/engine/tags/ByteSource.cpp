#include "engine/tags/ByteSource.hpp"

#include <unistd.h>

#include <algorithm>

namespace engine::tags {
namespace {
constexpr int kMostReads = 4096;
constexpr std::uint64_t kMostBytes = std::uint64_t{64} * 1024 * 1024;  // four times the largest copy
}  // namespace

bool ByteSource::fill(std::uint64_t offset, std::size_t length) {
  char* target = small_.data();
  std::size_t room = small_.size();
  if (length > small_.size()) {
    large_.resize(kMost);
    target = large_.data();
    room = length;
  }
  window_ = {};
  start_ = offset;
  if (++reads_ > kMostReads || bytes_ > kMostBytes) return false;
  const ssize_t got = ::pread(descriptor_, target, room, static_cast<off_t>(offset));
  if (got <= 0) return false;
  bytes_ += static_cast<std::uint64_t>(got);
  window_ = {target, static_cast<std::size_t>(got)};
  return true;
}

std::string_view ByteSource::at(std::uint64_t offset, std::size_t length) {
  if (offset >= size_) return {};
  const auto wanted =
      static_cast<std::size_t>(std::min<std::uint64_t>(std::min(length, kMost), size_ - offset));
  const bool inside = offset >= start_ && offset - start_ + wanted <= window_.size();
  if (!inside && !fill(offset, wanted)) return {};
  return window_.substr(static_cast<std::size_t>(offset - start_), wanted);
}

std::string ByteSource::copy(std::uint64_t offset, std::uint64_t length) {
  if (length > kLargestCopy || offset >= size_ || length > size_ - offset) return {};
  std::string all;
  all.reserve(static_cast<std::size_t>(length));
  while (all.size() < length) {
    const std::string_view piece = at(offset + all.size(), static_cast<std::size_t>(length - all.size()));
    if (piece.empty()) return {};
    all += piece;
  }
  return all;
}

}  // namespace engine::tags
