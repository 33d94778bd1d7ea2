#include "engine/common/StringPool.hpp"

#include <algorithm>
#include <array>
#include <functional>

namespace engine {
namespace {

constexpr std::size_t kBlockSize = std::size_t{64} * 1024;
constexpr std::size_t kLongestLength = 10;  // bytes of seven bits, the last of them below 128

std::size_t HashOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

}  // namespace

StringPool::StringPool() { texts_.push_back(keep({})); }

StringPool::Id StringPool::intern(std::string_view text) {
  if (text.empty()) return 0;
  if (const Id known = find(text); known != 0) return known;
  const Id id = static_cast<Id>(texts_.size());
  if (texts_.size() == texts_.capacity()) texts_.reserve(texts_.size() + texts_.size() / 4 + 64);
  texts_.push_back(keep(text));
  ids_.insert(id, [this](Id other) { return HashOf(view(other)); });
  return id;
}

StringPool::Id StringPool::find(std::string_view text) const {
  if (text.empty()) return 0;
  const Id found = ids_.find(HashOf(text), [&](Id id) { return view(id) == text; });
  return found != IdTable::kNone ? found : 0;
}

std::string_view StringPool::view(Id id) const {
  const char* at = texts_[id];
  std::size_t length = 0;
  for (unsigned shift = 0;; shift += 7) {
    const auto byte = static_cast<unsigned char>(*at++);
    length |= static_cast<std::size_t>(byte & 0x7FU) << shift;
    if (byte < 0x80) return {at, length};
  }
}

const char* StringPool::keep(std::string_view text) {
  std::array<char, kLongestLength> length{};
  std::size_t used = 0;
  for (std::size_t rest = text.size();; rest >>= 7U) {
    length.at(used++) = static_cast<char>((rest & 0x7FU) | (rest >= 0x80 ? 0x80U : 0U));
    if (rest < 0x80) break;
  }
  const std::size_t needed = used + text.size();
  if (needed > blockLeft_) {
    const std::size_t size = std::max(kBlockSize, needed);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
    blockNext_ = blocks_.back().get();
    blockLeft_ = size;
  }
  char* start = blockNext_;
  std::copy_n(length.begin(), used, start);
  std::copy(text.begin(), text.end(), start + used);
  blockNext_ += needed;
  blockLeft_ -= needed;
  return start;
}

}  // namespace engine
