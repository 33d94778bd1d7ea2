#include "standin/player/SearchTable.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "standin/text/Folding.hpp"

namespace standin {

void SearchTable::reserve(std::size_t entries) { ends_.reserve(entries); }

void SearchTable::add(std::initializer_list<std::string_view> texts) {
  for (const std::string_view text : texts) (texts_ += Folded(text)) += ' ';
  texts_ += '\n';
  ends_.push_back(texts_.size());
}

std::vector<std::uint32_t> SearchTable::find(const std::vector<std::string>& words) const {
  std::vector<std::uint32_t> found;
  if (words.empty()) {
    found.resize(size());
    std::iota(found.begin(), found.end(), 0U);
    return found;
  }
  // The longest word is likely to be the rarest: entries without it are passed over in one go.
  const auto rarest = std::max_element(words.begin(), words.end(), [](const auto& left, const auto& right) {
    return left.size() < right.size();
  });
  const std::string_view all(texts_);
  std::size_t from = 0;
  auto entry = ends_.begin();
  while (from < all.size()) {
    const void* const hit = memmem(all.data() + from, all.size() - from, rarest->data(), rarest->size());
    if (hit == nullptr) break;
    const auto at = static_cast<std::size_t>(static_cast<const char*>(hit) - all.data());
    entry = std::upper_bound(entry, ends_.end(), at);
    const std::size_t start = entry == ends_.begin() ? 0 : *(entry - 1);
    const std::string_view text = all.substr(start, *entry - start);
    const bool fits = std::all_of(words.begin(), words.end(), [&](const std::string& word) {
      return &word == &*rarest || text.find(word) != std::string_view::npos;
    });
    if (fits) found.push_back(static_cast<std::uint32_t>(entry - ends_.begin()));
    from = *entry;
  }
  return found;
}

}  // namespace standin
