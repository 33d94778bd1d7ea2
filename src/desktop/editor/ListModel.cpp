#include "desktop/editor/ListModel.hpp"

#include <utility>

namespace desktop {

using ui::editor::ItemRef;

void ListModel::abandon() {
  if (list_ != nullptr) list_->watch(nullptr);
  list_ = nullptr;
}

void ListModel::serve(ui::editor::KeyedList* list) {
  if (list_ != nullptr) list_->watch(nullptr);
  resetting();
  list_ = list;
  reset();
  if (list_ != nullptr) list_->watch(this);
}

ItemRef ListModel::itemOf(const QModelIndex& index) const {
  const bool there = list_ != nullptr && index.isValid() && index.row() < rowCount({});
  return there ? list_->item(static_cast<std::size_t>(index.row()) + 1) : nullptr;
}

QModelIndex ListModel::indexOf(const ItemRef& item) const {
  if (list_ == nullptr || !item || !item->held()) return {};
  const std::size_t position = list_->indexOf(*item);
  return position <= list_->rowCount() ? index(static_cast<int>(position - 1)) : QModelIndex();
}

int ListModel::rowCount(const QModelIndex& parent) const {
  return list_ == nullptr || parent.isValid() ? 0 : static_cast<int>(list_->rowCount());
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
  const ItemRef item = itemOf(index);
  return item ? EntryData(*item, role, icon_) : QVariant();
}

void ListModel::rowsInserting(std::size_t first, std::size_t last) {
  view_.enter([&] {
    changes_ = true;
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(last));
  });
}

void ListModel::rowsInserted() {
  view_.enter([&] {
    endInsertRows();
    settled();
  });
}

void ListModel::rowsRemoving(std::size_t first, std::size_t last) {
  view_.enter([&] {
    changes_ = true;
    beginRemoveRows({}, static_cast<int>(first), static_cast<int>(last));
  });
}

void ListModel::rowsRemoved() {
  view_.enter([&] {
    endRemoveRows();
    settled();
  });
}

void ListModel::resetting() {
  view_.enter([&] {
    changes_ = true;
    beginResetModel();
  });
}

void ListModel::reset() {
  view_.enter([&] {
    endResetModel();
    settled();
  });
}

void ListModel::settled() {
  changes_ = false;
  view_.selected();
}

void ListModel::changed(const ui::editor::ListItem& item) {
  view_.enter([&] {
    const QModelIndex at = index(static_cast<int>(list_->indexOf(item)) - 1);
    Q_EMIT dataChanged(at, at);
  });
}

void ListModel::selectionChanged() {
  if (!changes_) view_.enter(view_.selected);
}

}  // namespace desktop
