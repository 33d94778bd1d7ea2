#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// Texts that are searched by words. They are folded once, when they are added, and lie side by side, so that
/// a search is one walk over plain bytes.
class SearchTable {
 public:
  void reserve(std::size_t entries);
  /// An entry more: texts that are searched as one, in any order.
  void add(std::initializer_list<std::string_view> texts);
  [[nodiscard]] std::size_t size() const { return ends_.size(); }
  /// The entries that hold all of the words, in their order; each of them when there are none. The words are
  /// those of `SoughtWords`.
  [[nodiscard]] std::vector<std::uint32_t> find(const std::vector<std::string>& words) const;

 private:
  std::string texts_;              ///< each entry's, ended by a line's end
  std::vector<std::size_t> ends_;  ///< of the entries, behind the line's end
};

}  // namespace standin
