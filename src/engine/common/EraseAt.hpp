#pragma once
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace engine {

/// Takes out the items at these places, which rise and lie within the items.
template <class Item>
void EraseAt(std::vector<Item>& items, const std::vector<std::int32_t>& places) {
  auto next = places.begin();
  std::size_t kept = 0;
  for (std::size_t at = 0; at < items.size(); ++at) {
    if (next != places.end() && static_cast<std::size_t>(*next) == at) {
      ++next;
    } else if (kept++ != at) {
      items[kept - 1] = std::move(items[at]);
    }
  }
  items.resize(kept);
}

}  // namespace engine
