#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "ui/editor/Entry.hpp"

namespace ui::editor {

/// Entries by key, without regard to case, in constant time. It keeps no second copy of the keys.
template <class T>
class KeyIndex {
 public:
  /// Throws 35602 for a key that is present.
  void add(T& entry) {
    if (!entries_.insert(&entry).second) throw base::Failure(base::number::kKeyNotUnique);
  }
  void remove(T& entry) { entries_.erase(&entry); }
  void clear() { entries_.clear(); }
  /// Null for a key that is absent.
  [[nodiscard]] T* find(std::string_view key) const {
    const auto found = entries_.find(Folded(key));
    return found == entries_.end() ? nullptr : *found;
  }
  /// Gives an entry that is in here another key. Throws 35602 for one that another entry has.
  void change(T& entry, const std::string& key) {
    const Folded folded(key);
    const auto found = entries_.find(folded);
    if (found != entries_.end() && *found != &entry) throw base::Failure(base::number::kKeyNotUnique);
    entries_.erase(&entry);
    entry.key_ = key;
    entry.keyHash_ = folded.hash;
    entries_.insert(&entry);
  }

 private:
  struct Folded {
    explicit Folded(std::string_view key)
        : text(base::LowerCase(key)), hash(std::hash<std::string>()(text)) {}
    std::string text;
    std::size_t hash;
  };
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(const T* entry) const { return entry->keyHash_; }
    std::size_t operator()(const Folded& key) const { return key.hash; }
  };
  struct Same {
    using is_transparent = void;
    bool operator()(const T* left, const T* right) const {
      return left == right || (left->keyHash_ == right->keyHash_ && base::SameText(left->key_, right->key_));
    }
    bool operator()(const T* entry, const Folded& key) const {
      return entry->keyHash_ == key.hash && base::LowerCase(entry->key_) == key.text;
    }
    bool operator()(const Folded& key, const T* entry) const { return (*this)(entry, key); }
  };

  std::unordered_set<T*, Hash, Same> entries_;
};

}  // namespace ui::editor
