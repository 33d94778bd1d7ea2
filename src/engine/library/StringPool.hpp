#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace engine {

/// Texts stored once each and known by a number; 0 is the empty text. Nothing is ever given back.
class StringPool {
 public:
  using Id = std::uint32_t;

  StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;
  StringPool(StringPool&&) = delete;
  StringPool& operator=(StringPool&&) = delete;
  ~StringPool() = default;

  Id intern(std::string_view text);
  /// The text's number, or 0 when it is empty or not stored.
  [[nodiscard]] Id find(std::string_view text) const;
  [[nodiscard]] std::string_view view(Id id) const { return texts_[id]; }
  [[nodiscard]] std::size_t size() const { return texts_.size(); }

 private:
  struct Hash {
    using is_transparent = void;
    const StringPool* pool;
    std::size_t operator()(Id id) const { return std::hash<std::string_view>{}(pool->texts_[id]); }
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  struct Same {
    using is_transparent = void;
    const StringPool* pool;
    bool operator()(Id left, Id right) const { return left == right; }
    bool operator()(std::string_view left, Id right) const { return left == pool->texts_[right]; }
    bool operator()(Id left, std::string_view right) const { return pool->texts_[left] == right; }
  };

  std::string_view keep(std::string_view text);

  std::vector<std::string_view> texts_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t blockLeft_ = 0;
  char* blockNext_ = nullptr;
  std::unordered_set<Id, Hash, Same> ids_;
};

}  // namespace engine
