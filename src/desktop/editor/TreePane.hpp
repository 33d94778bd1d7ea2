#pragma once
#include <QtCore/QTimer>
#include <QtWidgets/QTreeView>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/editor/PaneInput.hpp"
#include "desktop/editor/Pictures.hpp"
#include "desktop/editor/TreeModel.hpp"

namespace desktop {

/// The tree of sources.
class TreePane : public QTreeView {
 public:
  TreePane(Shared& shared, Drag& drag, Pictures& pictures);
  ~TreePane() override;
  TreePane(const TreePane&) = delete;
  TreePane& operator=(const TreePane&) = delete;
  TreePane(TreePane&&) = delete;
  TreePane& operator=(TreePane&&) = delete;

  /// The tree to show; may be null.
  void serve(ui::editor::KeyedTree* tree) { model_.serve(tree); }
  void abandon() { model_.abandon(); }
  /// The node at a place of the viewport; may be null. What opens and closes it is no part of it.
  [[nodiscard]] ui::editor::NodeRef nodeAt(QPoint at) const;
  /// Scrolls there, and opens what it stands in.
  void bring(const ui::editor::NodeRef& node);
  /// Edits the selected node's label, if it may be.
  void editLabel();
  /// Ends the edit without a change, and forgets one that has ended but was not reported yet.
  void dropEdit();
  /// Ends an edit with what was typed so far, and reports it if that is still to be done. This may ask the
  /// user.
  void settle();
  /// A label was edited; an unchanged one is told as it was.
  void edited(const QModelIndex& index, const QString& text, bool another);

  void keyboardSearch(const QString& text) override;

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override { input_.move(*event); }
  void mouseReleaseEvent(QMouseEvent* event) override { input_.release(*event); }
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  void showEvent(QShowEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  void showExpanded(const QModelIndex& parent, int first, int last);
  void showSelected();
  /// Whether all that it stands in is open.
  static bool isUnfolded(const ui::editor::TreeNode& node);
  void choose(const QModelIndex& chosen);
  void expand(const ui::editor::NodeRef& node, bool value);
  void goSideways(bool in);
  [[nodiscard]] ui::editor::NodeRef branchAt(QPoint at) const;
  /// Where a node stands that was seen at that place.
  [[nodiscard]] QPoint placeNow(const ui::editor::NodeRef& node, QPoint seen);
  [[nodiscard]] QWidget* labelEdit() const;
  void finishEdits();
  void tellEdits();
  void finishEdit(const ui::editor::NodeRef& node, const std::string& text);

  Shared& shared_;
  PaneInput input_;
  TreeModel model_;
  bool follows_ = false;         // the model, so that nothing it shows is a choice
  bool wasExpanded_ = false;     // before the last press
  ui::editor::NodeRef toBring_;  // when it shows
  std::vector<std::pair<ui::editor::NodeRef, std::string>> edited_;  // labels whose events are still to come
  QTimer finish_;
};

}  // namespace desktop
