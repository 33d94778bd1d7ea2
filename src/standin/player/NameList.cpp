#include "standin/player/NameList.hpp"

#include <algorithm>
#include <utility>

#include "standin/text/Folding.hpp"

namespace standin {

NameList::NameList(std::vector<std::string> names) : names_(std::move(names)) {
  table_.reserve(names_.size());
  for (const std::string& name : names_) table_.add({name});
}

NameList::Page NameList::page(const std::string& sought, std::size_t offset, std::size_t limit) const {
  Page page;
  const std::vector<std::uint32_t> found = table_.find(SoughtWords(sought));
  page.total = found.size();
  for (std::size_t i = offset; i < found.size() && page.names.size() < limit; ++i) {
    page.names.push_back(names_[found[i]]);
    page.places.push_back(found[i]);
  }
  return page;
}

}  // namespace standin
