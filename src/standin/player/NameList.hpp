#pragma once
#include <string>
#include <vector>

#include "standin/player/SearchTable.hpp"

namespace standin {

/// Names in an order of their own, searchable by words without regard to case and accents.
class NameList {
 public:
  explicit NameList(std::vector<std::string> names);

  struct Page {
    std::vector<std::string> names;
    std::vector<std::size_t> places;  ///< of these names in the whole list
    std::size_t total = 0;            ///< of all names that fit
  };
  /// The names that hold all words of `sought`, from `offset` on, at most `limit`.
  [[nodiscard]] Page page(const std::string& sought, std::size_t offset, std::size_t limit) const;
  [[nodiscard]] std::size_t size() const { return names_.size(); }
  [[nodiscard]] const std::vector<std::string>& all() const { return names_; }

 private:
  std::vector<std::string> names_;
  SearchTable table_;
};

}  // namespace standin
