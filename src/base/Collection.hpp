#pragma once
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace base {

/// An ordered collection whose items are found by position, from 1, or by key. An item may come without a
/// key; keys compare without regard to case.
template <class T>
class Collection {
 public:
  using value_type = T;
  using const_iterator = typename std::vector<T>::const_iterator;

  Collection() = default;
  Collection(std::initializer_list<T> items) : items_(items) {}

  void add(T item) { items_.push_back(std::move(item)); }
  /// Throws number 457 when the key is in use.
  void add(T item, std::string_view key) {
    if (!positions_.emplace(LowerCase(key), items_.size()).second) throw Failure(number::kKeyInUse);
    items_.push_back(std::move(item));
  }

  [[nodiscard]] std::size_t size() const { return items_.size(); }
  [[nodiscard]] bool empty() const { return items_.empty(); }
  void reserve(std::size_t count) { items_.reserve(count); }

  /// Throws number 9 outside of 1 to `size`.
  [[nodiscard]] const T& item(std::int32_t index) const { return items_[at(index)]; }
  /// Throws number 5 for an unknown key.
  [[nodiscard]] const T& item(std::string_view key) const { return items_[at(key)]; }
  [[nodiscard]] bool contains(std::string_view key) const { return positions_.count(LowerCase(key)) > 0; }

  /// Both take time proportional to the number of items. They throw as `item` does.
  void remove(std::int32_t index) { erase(at(index)); }
  void remove(std::string_view key) { erase(at(key)); }

  [[nodiscard]] const_iterator begin() const { return items_.begin(); }
  [[nodiscard]] const_iterator end() const { return items_.end(); }

 private:
  [[nodiscard]] std::size_t at(std::int32_t index) const {
    if (index < 1 || static_cast<std::size_t>(index) > items_.size()) throw Failure(number::kIndex);
    return static_cast<std::size_t>(index) - 1;
  }
  [[nodiscard]] std::size_t at(std::string_view key) const {
    const auto found = positions_.find(LowerCase(key));
    if (found == positions_.end()) throw Failure(number::kInvalidArgument);
    return found->second;
  }
  void erase(std::size_t position) {
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto entry = positions_.begin(); entry != positions_.end();) {
      if (entry->second == position) {
        entry = positions_.erase(entry);
        continue;
      }
      if (entry->second > position) --entry->second;
      ++entry;
    }
  }

  std::vector<T> items_;
  std::unordered_map<std::string, std::size_t> positions_;  // by folded key
};

/// A collection of texts, and a reference to one: holders of the same reference share the collection.
using TextList = Collection<std::string>;
using TextListRef = std::shared_ptr<TextList>;

/// Orders texts without regard to case: for maps whose keys are words.
struct FoldedLess {
  bool operator()(std::string_view left, std::string_view right) const {
    return LowerCase(left) < LowerCase(right);
  }
};

}  // namespace base
