#include "ui/editor/KeyedList.hpp"

#include <algorithm>
#include <utility>

namespace ui::editor {

namespace {

void Check(bool there) {
  if (!there) throw base::Failure(base::number::kIndex);
}

}  // namespace

KeyedList::Filling::~Filling() {
  if (--list_.fillings_ == 0) list_.showAll();
}

void KeyedList::showAll() {
  if (shown_ == items_.size()) return;
  if (watch_ != nullptr) watch_->rowsInserting(shown_, items_.size() - 1);
  shown_ = items_.size();
  if (watch_ != nullptr) watch_->rowsInserted();
}

void KeyedList::clearColumns() { columns_.clear(); }

void KeyedList::addColumn(const std::string& caption, float width) {
  columns_.push_back({caption, width});
  if (watch_ != nullptr) watch_->columnChanged();
}

const std::string& KeyedList::columnCaption() const {
  Check(!columns_.empty());
  return columns_.front().caption;
}

float KeyedList::columnWidth() const {
  Check(!columns_.empty());
  return columns_.front().width;
}

void KeyedList::columnWidth(float twips) {
  Check(!columns_.empty());
  columns_.front().width = twips;
  if (watch_ != nullptr) watch_->columnChanged();
}

void KeyedList::clear() {
  if (watch_ != nullptr) watch_->resetting();
  for (const ItemRef& item : items_) item->held_ = false;
  keys_.clear();
  items_.clear();
  shown_ = 0;
  numbered_ = 0;
  selected_.reset();
  highlighted_.reset();
  if (watch_ == nullptr) return;
  watch_->reset();
  watch_->selectionChanged();
}

ItemRef KeyedList::add(std::size_t position, const std::string& key, const std::string& text,
                       const char* image) {
  Check(position >= 1 && position <= items_.size() + 1);
  ItemRef item = std::make_shared<ListItem>(key, text, image);
  keys_.add(*item);
  const std::size_t row = position - 1;
  if (row == items_.size()) {
    items_.push_back(item);
    if (fillings_ == 0) showAll();
    return item;
  }
  showAll();
  if (watch_ != nullptr) watch_->rowsInserting(row, row);
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(row), item);
  shown_ = items_.size();
  numbered_ = std::min(numbered_, row);
  if (watch_ != nullptr) watch_->rowsInserted();
  return item;
}

void KeyedList::remove(std::size_t position) {
  const ItemRef item = this->item(position);
  showAll();
  const std::size_t row = position - 1;
  if (watch_ != nullptr) watch_->rowsRemoving(row, row);
  keys_.remove(*item);
  item->held_ = false;
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(row));
  shown_ = items_.size();
  numbered_ = std::min(numbered_, row);
  if (watch_ != nullptr) watch_->rowsRemoved();
  if (selected_ == item) selectedItem(nullptr);
  if (highlighted_ == item) dropHighlight(nullptr);
}

ItemRef KeyedList::find(const std::string& key) const {
  ListItem* found = keys_.find(key);
  if (found == nullptr) throw base::Failure(base::number::kElementNotFound);
  return found->self();
}

ItemRef KeyedList::item(std::size_t position) const {
  Check(position >= 1 && position <= items_.size());
  return items_[position - 1];
}

std::size_t KeyedList::indexOf(const ListItem& item) const {
  if (!item.held()) throw base::Failure(base::number::kElementNotFound);
  for (; numbered_ < items_.size(); ++numbered_) items_[numbered_]->row_ = numbered_;
  return item.row_ + 1;
}

void KeyedList::key(const ItemRef& item, const std::string& value) {
  if (item->held())
    keys_.change(*item, value);
  else
    item->key_ = value;
}

void KeyedList::text(const ItemRef& item, const std::string& value) {
  item->text_ = value;
  if (watch_ != nullptr && item->held() && indexOf(*item) <= shown_) watch_->changed(*item);
}

void KeyedList::selectedItem(const ItemRef& item) {
  if (selected_ == item) return;
  selected_ = item;
  if (watch_ != nullptr) watch_->selectionChanged();
}

void KeyedList::dropHighlight(const ItemRef& item) {
  if (highlighted_ == item) return;
  highlighted_ = item;
  if (watch_ != nullptr) watch_->dropHighlightChanged();
}

}  // namespace ui::editor
