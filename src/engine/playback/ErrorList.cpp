#include "engine/playback/ErrorList.hpp"

#include <utility>

#include "base/Failure.hpp"

namespace engine {
namespace {
constexpr std::size_t kMost = 100;  // nobody may ever clear it
}

void ErrorList::add(std::int32_t code, std::string description) {
  items_.push_front({code, std::move(description)});
  if (items_.size() > kMost) items_.pop_back();
}

player::ErrorItem ErrorList::item(std::int32_t index) const {
  if (index < 0 || index >= errorCount()) throw base::Failure(base::number::kIndex);
  return items_[static_cast<std::size_t>(index)];
}

}  // namespace engine
