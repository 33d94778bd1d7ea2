#pragma once
#include <algorithm>
#include <string>
#include <vector>

#include "ui/editor/KeyedList.hpp"
#include "ui/editor/KeyedTree.hpp"

namespace support {

using ui::editor::KeyedList;
using ui::editor::KeyedTree;
using ui::editor::ListItem;
using ui::editor::NodeRef;
using ui::editor::TreeNode;

/// What is shown of a tree, a line a node, indented.
inline std::vector<std::string> LinesOf(const KeyedTree& tree, const TreeNode* parent = nullptr,
                                        const std::string& indent = "") {
  std::vector<std::string> lines;
  for (std::size_t row = 0; row < tree.rowCount(parent); ++row) {
    const NodeRef node = tree.nodeAt(parent, row);
    lines.push_back(indent + node->text());
    const auto below = LinesOf(tree, node.get(), indent + "  ");
    lines.insert(lines.end(), below.begin(), below.end());
  }
  return lines;
}

inline std::vector<std::string> LinesOf(const KeyedList& list) {
  std::vector<std::string> lines;
  for (std::size_t row = 0; row < list.rowCount(); ++row) lines.push_back(list.item(row + 1)->text());
  return lines;
}

/// A view of a tree that knows only what it is told, as a view of the desktop does.
class TreeShadow : public ui::editor::TreeWatch {
 public:
  explicit TreeShadow(const KeyedTree& tree) : tree_(tree) {}

  [[nodiscard]] std::vector<std::string> lines() const { return linesOf(top_, ""); }
  int inserts = 0;
  int resets = 0;
  int selections = 0;
  int highlights = 0;
  int expansions = 0;

  void rowsInserting(const TreeNode* parent, std::size_t first, std::size_t last) override {
    changing_ = {parent, first, last};
    ++inserts;
  }
  void rowsInserted() override {
    auto& rows = nodeOf(changing_.parent).below;
    std::vector<Shown> added;
    for (std::size_t row = changing_.first; row <= changing_.last; ++row)
      added.push_back(read(tree_.nodeAt(changing_.parent, row)));
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(changing_.first), added.begin(), added.end());
  }
  void rowsRemoving(const TreeNode* parent, std::size_t first, std::size_t last) override {
    auto& rows = nodeOf(parent).below;
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(first),
               rows.begin() + static_cast<std::ptrdiff_t>(last) + 1);
  }
  void rowsRemoved() override {}
  void rowMoving(const TreeNode* parent, std::size_t from, std::size_t to) override {
    auto& rows = nodeOf(parent).below;
    const Shown moved = rows[from];
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(from));
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(to), moved);
  }
  void rowMoved() override {}
  void resetting() override { top_.below.clear(); }
  void reset() override {
    ++resets;
    for (std::size_t row = 0; row < tree_.rowCount(nullptr); ++row)
      top_.below.push_back(read(tree_.nodeAt(nullptr, row)));
  }
  void changed(const TreeNode& node) override { nodeOf(&node).text = node.text(); }
  void expandedChanged(const TreeNode& /*node*/) override { ++expansions; }
  void selectionChanged() override { ++selections; }
  void dropHighlightChanged() override { ++highlights; }

 private:
  struct Shown {
    std::string text;
    std::vector<Shown> below;
  };
  struct Change {
    const TreeNode* parent = nullptr;
    std::size_t first = 0;
    std::size_t last = 0;
  };

  /// By the rows from the top down.
  Shown& nodeOf(const TreeNode* node) {
    if (node == nullptr) return top_;
    return nodeOf(node->parent().get()).below.at(tree_.rowOf(*node));
  }
  Shown read(const NodeRef& node) {
    Shown shown{node->text(), {}};
    for (std::size_t row = 0; row < tree_.rowCount(node.get()); ++row)
      shown.below.push_back(read(tree_.nodeAt(node.get(), row)));
    return shown;
  }
  static std::vector<std::string> linesOf(const Shown& parent, const std::string& indent) {
    std::vector<std::string> lines;
    for (const Shown& each : parent.below) {
      lines.push_back(indent + each.text);
      const auto below = linesOf(each, indent + "  ");
      lines.insert(lines.end(), below.begin(), below.end());
    }
    return lines;
  }

  const KeyedTree& tree_;
  Shown top_;
  Change changing_;
};

/// The same of a list.
class ListShadow : public ui::editor::ListWatch {
 public:
  explicit ListShadow(const KeyedList& list) : list_(list) {}

  std::vector<std::string> lines;
  int inserts = 0;
  int columns = 0;
  int selections = 0;
  int highlights = 0;

  void rowsInserting(std::size_t first, std::size_t last) override {
    first_ = first;
    last_ = last;
    ++inserts;
  }
  void rowsInserted() override {
    for (std::size_t row = first_; row <= last_; ++row)
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(row), list_.item(row + 1)->text());
  }
  void rowsRemoving(std::size_t first, std::size_t last) override {
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(first),
                lines.begin() + static_cast<std::ptrdiff_t>(last) + 1);
  }
  void rowsRemoved() override {}
  void resetting() override { lines.clear(); }
  void reset() override { lines = LinesOf(list_); }
  void changed(const ListItem& item) override { lines.at(list_.indexOf(item) - 1) = item.text(); }
  void columnChanged() override { ++columns; }
  void selectionChanged() override { ++selections; }
  void dropHighlightChanged() override { ++highlights; }

 private:
  const KeyedList& list_;
  std::size_t first_ = 0;
  std::size_t last_ = 0;
};

}  // namespace support
