#include "standin/house/ValueTable.hpp"

#include <algorithm>
#include <functional>

namespace standin {

std::optional<std::string_view> NameOfValue(std::string_view table, std::int32_t value) {
  const std::string sought = std::to_string(value);
  while (!table.empty()) {
    const std::string_view entry = table.substr(0, table.find('\1'));
    table.remove_prefix(std::min(table.size(), entry.size() + 1));
    const std::size_t cut = entry.find('\2');
    if (cut != std::string_view::npos && entry.substr(cut + 1) == sought) return entry.substr(0, cut);
  }
  return std::nullopt;
}

std::size_t CountValues(std::string_view table) {
  return table.empty() ? 0 : 1 + static_cast<std::size_t>(std::count(table.begin(), table.end(), '\1'));
}

std::string MarkOfValues(std::string_view table) {
  return std::to_string(std::hash<std::string_view>()(table));
}

}  // namespace standin
