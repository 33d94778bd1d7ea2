#pragma once
#include <QtCore/QAbstractItemModel>

#include <functional>

#include "desktop/editor/EntryData.hpp"
#include "ui/editor/KeyedTree.hpp"

namespace desktop {

/// Shows a keyed tree to a view, without a copy of its own.
class TreeModel : public QAbstractItemModel, public ui::editor::TreeWatch {
 public:
  /// What the view has to show beside the rows.
  struct View {
    /// Runs something, or does not when the desktop has gone.
    std::function<void(const std::function<void()>& act)> enter;
    std::function<void(const ui::editor::TreeNode& node)> expanded;
    std::function<void()> selected;
    /// Rows have come, whose nodes may be expanded. The parent of a root is invalid.
    std::function<void(const QModelIndex& parent, int first, int last)> came;
  };
  TreeModel(View view, IconOf icon) : view_(std::move(view)), icon_(std::move(icon)) {}
  ~TreeModel() override { abandon(); }
  TreeModel(const TreeModel&) = delete;
  TreeModel& operator=(const TreeModel&) = delete;
  TreeModel(TreeModel&&) = delete;
  TreeModel& operator=(TreeModel&&) = delete;

  /// The tree to show; may be null.
  void serve(ui::editor::KeyedTree* tree);
  /// Looks at the tree no more, and tells the view nothing about it.
  void abandon();
  /// While it changes, what the view takes for the current node is nobody's choice.
  [[nodiscard]] bool changes() const { return changes_; }
  /// Null for an invalid index.
  [[nodiscard]] static ui::editor::NodeRef nodeOf(const QModelIndex& index);
  /// Invalid for a node that is not shown.
  [[nodiscard]] QModelIndex indexOf(const ui::editor::TreeNode& node) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& /*parent*/) const override { return 1; }
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

  void rowsInserting(const ui::editor::TreeNode* parent, std::size_t first, std::size_t last) override;
  void rowsInserted() override;
  void rowsRemoving(const ui::editor::TreeNode* parent, std::size_t first, std::size_t last) override;
  void rowsRemoved() override;
  void rowMoving(const ui::editor::TreeNode* parent, std::size_t from, std::size_t to) override;
  void rowMoved() override;
  void resetting() override;
  void reset() override;
  void changed(const ui::editor::TreeNode& node) override;
  void expandedChanged(const ui::editor::TreeNode& node) override;
  void selectionChanged() override;
  void dropHighlightChanged() override {}  // the tree is no target

 private:
  [[nodiscard]] QModelIndex parentIndex(const ui::editor::TreeNode* parent) const;
  void settled();

  View view_;
  IconOf icon_;
  ui::editor::KeyedTree* tree_ = nullptr;
  bool changes_ = false;
  struct Coming {
    const ui::editor::TreeNode* parent = nullptr;
    int first = 0;
    int last = 0;
  } coming_;
};

}  // namespace desktop
