#pragma once
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "engine/common/IdTable.hpp"

namespace engine {

/// Texts stored once each and known by a number; 0 is the empty text. Nothing is ever given back.
class StringPool {
 public:
  using Id = IdTable::Id;

  StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;
  StringPool(StringPool&&) = delete;
  StringPool& operator=(StringPool&&) = delete;
  ~StringPool() = default;

  Id intern(std::string_view text);
  /// The text's number, or 0 when it is empty or not stored.
  [[nodiscard]] Id find(std::string_view text) const;
  [[nodiscard]] std::string_view view(Id id) const;
  [[nodiscard]] std::size_t size() const { return texts_.size(); }

 private:
  /// Where the text lies now, behind its length.
  const char* keep(std::string_view text);

  std::vector<const char*> texts_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t blockLeft_ = 0;
  char* blockNext_ = nullptr;
  IdTable ids_;
};

}  // namespace engine
