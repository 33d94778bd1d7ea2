#include "desktop/editor/TreeModel.hpp"

#include <QtGui/QFont>
#include <utility>

namespace desktop {

using ui::editor::NodeRef;
using ui::editor::TreeNode;

namespace {

TreeNode* At(const QModelIndex& index) {
  return index.isValid() ? static_cast<TreeNode*>(index.internalPointer()) : nullptr;
}

}  // namespace

void TreeModel::abandon() {
  if (tree_ != nullptr) tree_->watch(nullptr);
  tree_ = nullptr;
}

void TreeModel::serve(ui::editor::KeyedTree* tree) {
  if (tree_ != nullptr) tree_->watch(nullptr);
  resetting();
  tree_ = tree;
  reset();
  if (tree_ != nullptr) tree_->watch(this);
}

NodeRef TreeModel::nodeOf(const QModelIndex& index) {
  TreeNode* node = At(index);
  return node != nullptr ? node->self() : nullptr;
}

QModelIndex TreeModel::indexOf(const TreeNode& node) const {
  if (tree_ == nullptr || !node.held()) return {};
  const NodeRef parent = node.parent();
  if (parent && !indexOf(*parent).isValid()) return {};
  const std::size_t row = tree_->rowOf(node);
  if (row >= tree_->rowCount(parent.get())) return {};
  const NodeRef there = tree_->nodeAt(parent.get(), row);
  return there.get() == &node ? createIndex(static_cast<int>(row), 0, there.get()) : QModelIndex();
}

QModelIndex TreeModel::parentIndex(const TreeNode* parent) const {
  return parent != nullptr ? indexOf(*parent) : QModelIndex();
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (column != 0 || row < 0 || row >= rowCount(parent)) return {};
  return createIndex(row, 0, tree_->nodeAt(At(parent), static_cast<std::size_t>(row)).get());
}

QModelIndex TreeModel::parent(const QModelIndex& child) const {
  const TreeNode* node = At(child);
  const NodeRef parent = node != nullptr ? node->parent() : nullptr;
  return parent ? createIndex(static_cast<int>(tree_->rowOf(*parent)), 0, parent.get()) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const {
  return tree_ != nullptr ? static_cast<int>(tree_->rowCount(At(parent))) : 0;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
  const TreeNode* node = At(index);
  if (node == nullptr) return {};
  if (role == Qt::FontRole && node->bold()) {
    QFont font;
    font.setBold(true);
    return font;
  }
  return EntryData(*node, role, icon_);
}

// The header is hidden, but read aloud.
QVariant TreeModel::headerData(int /*section*/, Qt::Orientation /*orientation*/, int role) const {
  return role == Qt::DisplayRole ? QVariant("Name") : QVariant();
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const {
  return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable : Qt::NoItemFlags;
}

void TreeModel::rowsInserting(const TreeNode* parent, std::size_t first, std::size_t last) {
  view_.enter([&] {
    changes_ = true;
    coming_ = {parent, static_cast<int>(first), static_cast<int>(last)};
    beginInsertRows(parentIndex(parent), coming_.first, coming_.last);
  });
}

void TreeModel::rowsInserted() {
  view_.enter([&] {
    endInsertRows();
    view_.came(parentIndex(coming_.parent), coming_.first, coming_.last);
    settled();
  });
}

void TreeModel::rowsRemoving(const TreeNode* parent, std::size_t first, std::size_t last) {
  view_.enter([&] {
    changes_ = true;
    beginRemoveRows(parentIndex(parent), static_cast<int>(first), static_cast<int>(last));
  });
}

void TreeModel::rowsRemoved() {
  view_.enter([&] {
    endRemoveRows();
    settled();
  });
}

void TreeModel::rowMoving(const TreeNode* parent, std::size_t from, std::size_t to) {
  view_.enter([&] {
    changes_ = true;
    const QModelIndex above = parentIndex(parent);
    const std::size_t before = to > from ? to + 1 : to;
    beginMoveRows(above, static_cast<int>(from), static_cast<int>(from), above, static_cast<int>(before));
  });
}

void TreeModel::rowMoved() {
  view_.enter([&] {
    endMoveRows();
    settled();
  });
}

void TreeModel::resetting() {
  view_.enter([&] {
    changes_ = true;
    beginResetModel();
  });
}

void TreeModel::reset() {
  view_.enter([&] {
    endResetModel();
    const int roots = rowCount({});
    if (roots > 0) view_.came({}, 0, roots - 1);
    settled();
  });
}

void TreeModel::settled() {
  changes_ = false;
  view_.selected();
}

void TreeModel::changed(const TreeNode& node) {
  view_.enter([&] {
    const QModelIndex index = indexOf(node);
    if (index.isValid()) Q_EMIT dataChanged(index, index);
  });
}

void TreeModel::expandedChanged(const TreeNode& node) {
  view_.enter([&] { view_.expanded(node); });
}

void TreeModel::selectionChanged() {
  if (!changes_) view_.enter([&] { view_.selected(); });
}

}  // namespace desktop
