#include "ui/editor/DropBox.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace ui::editor {

std::vector<DropBox::Name>& DropBox::sorted() const {
  if (!inOrder_) std::stable_sort(names_.begin(), names_.end());
  inOrder_ = true;
  return names_;
}

std::int32_t DropBox::where(std::int64_t number) const {
  const auto& names = sorted();
  const auto found =
      std::find_if(names.begin(), names.end(), [&](const Name& name) { return name.number == number; });
  return found == names.end() ? -1 : static_cast<std::int32_t>(found - names.begin());
}

DropBox::Name& DropBox::at(std::size_t position) const {
  auto& names = sorted();
  if (position >= names.size()) throw base::Failure(base::number::kIndex);
  return names[position];
}

void DropBox::clear() {
  names_.clear();
  inOrder_ = true;
  chosen_ = 0;
  tell();
}

void DropBox::add(const std::string& name) {
  names_.push_back({base::LowerCase(name), name, ++last_});
  inOrder_ = names_.size() == 1;
  tell();
}

void DropBox::remove(std::size_t position) {
  if (at(position).number == chosen_) chosen_ = 0;
  names_.erase(names_.begin() + static_cast<std::ptrdiff_t>(position));
  tell();
}

const std::string& DropBox::entry(std::size_t position) const { return at(position).text; }

std::int32_t DropBox::newIndex() const { return where(last_); }

std::int32_t DropBox::listIndex() const { return where(chosen_); }

void DropBox::listIndex(std::int32_t position) {
  if (refuses()) return tell();
  chosen_ = position == -1 ? 0 : at(static_cast<std::size_t>(position)).number;
  tell();
  Click();
}

std::string DropBox::text() const {
  const std::int32_t chosen = listIndex();
  return chosen < 0 ? std::string() : entry(static_cast<std::size_t>(chosen));
}

}  // namespace ui::editor
