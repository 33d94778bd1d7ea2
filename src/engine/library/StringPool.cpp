#include "engine/library/StringPool.hpp"

#include <algorithm>

namespace engine {
namespace {
constexpr std::size_t kBlockSize = std::size_t{64} * 1024;
}

StringPool::StringPool() : ids_(64, Hash{this}, Same{this}) {
  texts_.emplace_back();
  ids_.insert(0);
}

StringPool::Id StringPool::intern(std::string_view text) {
  const auto found = ids_.find(text);
  if (found != ids_.end()) return *found;
  const Id id = static_cast<Id>(texts_.size());
  texts_.push_back(keep(text));
  ids_.insert(id);
  return id;
}

StringPool::Id StringPool::find(std::string_view text) const {
  const auto found = ids_.find(text);
  return found != ids_.end() ? *found : 0;
}

std::string_view StringPool::keep(std::string_view text) {
  if (text.size() > blockLeft_) {
    const std::size_t size = std::max(kBlockSize, text.size());
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
    blockNext_ = blocks_.back().get();
    blockLeft_ = size;
  }
  char* start = blockNext_;
  std::copy(text.begin(), text.end(), start);
  blockNext_ += text.size();
  blockLeft_ -= text.size();
  return {start, text.size()};
}

}  // namespace engine
