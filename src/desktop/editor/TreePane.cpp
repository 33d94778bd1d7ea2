#include "desktop/editor/TreePane.hpp"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <utility>

#include "desktop/editor/LabelEdit.hpp"

namespace desktop {

using ui::editor::KeyedTree;
using ui::editor::NodeRef;
using ui::editor::TreeNode;

TreePane::TreePane(Shared& shared, Drag& drag, Pictures& pictures)
    : shared_(shared),
      input_(*this, kTreeEvents, shared, drag),
      model_(
          {shared.enter, [this](const TreeNode& node) { setExpanded(model_.indexOf(node), node.expanded()); },
           [this] { showSelected(); },
           [this](const QModelIndex& parent, int first, int last) { showExpanded(parent, first, last); }},
          [this, &pictures](const char* key) {
            return pictures.icon(key, palette().color(QPalette::Text),
                                 palette().color(QPalette::HighlightedText));
          }) {
  finish_.setSingleShot(true);
  connect(&finish_, &QTimer::timeout, this, [this] { finishEdits(); });
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setIconSize({16, 16});
  setEditTriggers(NoEditTriggers);
  setSelectionMode(SingleSelection);
  setExpandsOnDoubleClick(false);
  setAutoScroll(false);
  setContextMenuPolicy(Qt::NoContextMenu);
  setItemDelegate(new LabelEdit(this));
  setModel(&model_);
  // Not all choices are made by mouse and keys: those who can't use them have programs that do.
  connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (!follows_ && !model_.changes()) choose(current);
  });
  const auto opened = [this](const QModelIndex& index, bool value) {
    const NodeRef node = TreeModel::nodeOf(index);
    if (!follows_ && !model_.changes() && node && node->expanded() != value) expand(node, value);
  };
  connect(this, &QTreeView::expanded, this, [opened](const QModelIndex& index) { opened(index, true); });
  connect(this, &QTreeView::collapsed, this, [opened](const QModelIndex& index) { opened(index, false); });
}

TreePane::~TreePane() {
  follows_ = true;
  setModel(nullptr);
}

void TreePane::showExpanded(const QModelIndex& parent, int first, int last) {
  for (int row = first; row <= last; ++row) {
    const QModelIndex index = model_.index(row, 0, parent);
    if (TreeModel::nodeOf(index)->expanded()) setExpanded(index, true);
    if (const int below = model_.rowCount(index); below > 0) showExpanded(index, 0, below - 1);
  }
}

bool TreePane::isUnfolded(const TreeNode& node) {
  const NodeRef above = node.parent();
  return !above || (above->expanded() && isUnfolded(*above));
}

void TreePane::showSelected() {
  const NodeRef node = shared_.models != nullptr ? shared_.models->TreeView1.selectedItem() : nullptr;
  const QModelIndex index = node ? model_.indexOf(*node) : QModelIndex();
  if (index == currentIndex() && selectionModel()->isSelected(index)) return;
  const bool before = std::exchange(follows_, true);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  follows_ = before;
  // What was made comes in sight; what is pressed must not run away from under the mouse. And what is closed
  // stays so.
  if (node && QGuiApplication::mouseButtons() == Qt::NoButton && isUnfolded(*node)) bring(node);
}

NodeRef TreePane::nodeAt(QPoint at) const {
  const QModelIndex index = indexAt(at);
  if (!index.isValid() || at.x() < visualRect(index).left()) return nullptr;
  return TreeModel::nodeOf(index);
}

NodeRef TreePane::branchAt(QPoint at) const {
  const QModelIndex index = indexAt(at);
  const int left = visualRect(index).left();
  if (!index.isValid() || at.x() >= left || at.x() < left - indentation()) return nullptr;
  return model_.rowCount(index) > 0 ? TreeModel::nodeOf(index) : nullptr;
}

void TreePane::bring(const NodeRef& node) {
  if (!node || shared_.models == nullptr) return;
  for (NodeRef above = node->parent(); above; above = above->parent())
    shared_.models->TreeView1.expanded(above, true);
  // A pane that is hidden doesn't know yet how large it is.
  toBring_ = isVisible() ? nullptr : node;
  if (isVisible()) scrollTo(model_.indexOf(*node));
}

void TreePane::showEvent(QShowEvent* event) {
  QTreeView::showEvent(event);
  bring(std::exchange(toBring_, nullptr));
}

// Qt takes the first row for the current one where there is none, which is nobody's choice.
void TreePane::focusInEvent(QFocusEvent* event) {
  const bool before = std::exchange(follows_, true);
  QTreeView::focusInEvent(event);
  follows_ = before;
  showSelected();
}

QPoint TreePane::placeNow(const NodeRef& node, QPoint seen) {
  if (!node || !node->held() || nodeAt(seen) == node) return seen;
  bring(node);
  return visualRect(model_.indexOf(*node)).center();
}

void TreePane::mousePressEvent(QMouseEvent* event) {
  event->accept();
  const NodeRef branch = branchAt(event->pos());
  const NodeRef seen = nodeAt(event->pos());
  shared_.settle();
  input_.entered();
  if (branch && event->button() == Qt::LeftButton) {
    if (branch->held()) expand(branch, !branch->expanded());
    return;
  }
  // A label that has just been edited may have put its node elsewhere, and others with it.
  const QPoint at = placeNow(seen, event->pos());
  const NodeRef node = nodeAt(at);
  wasExpanded_ = node && node->expanded();
  if (node && shared_.models != nullptr && PaneInput::tells(*event))
    shared_.models->TreeView1.selectedItem(node);
  input_.press(*event, at, node != nullptr, [&] { shared_.events->TreeView1_NodeClick(node); });
}

// The first press of the two may have expanded it already, since a click fills what was not filled.
void TreePane::mouseDoubleClickEvent(QMouseEvent* event) {
  event->accept();
  shared_.settle();
  const NodeRef node = nodeAt(event->pos());
  if (node == nullptr) return mousePressEvent(event);
  if (event->button() == Qt::LeftButton && node->expanded() == wasExpanded_) expand(node, !wasExpanded_);
}

void TreePane::expand(const NodeRef& node, bool value) {
  if (shared_.models == nullptr) return;
  shared_.models->TreeView1.expanded(node, value);
  if (value && shared_.events != nullptr) shared_.events->TreeView1_Expand(node);
}

void TreePane::choose(const QModelIndex& chosen) {
  const NodeRef node = TreeModel::nodeOf(chosen);
  if (!node) return;
  shared_.settle();
  if (shared_.models == nullptr || !node->held() || node == shared_.models->TreeView1.selectedItem()) return;
  shared_.models->TreeView1.selectedItem(node);
  const QModelIndex index = model_.indexOf(*node);
  scrollTo(index);
  input_.chosen(visualRect(index).center(), [&] { shared_.events->TreeView1_NodeClick(node); });
}

void TreePane::keyboardSearch(const QString& text) {
  if (state() != EditingState) QTreeView::keyboardSearch(text);
}

void TreePane::goSideways(bool in) {
  const NodeRef node = TreeModel::nodeOf(currentIndex());
  if (!node) return;
  const bool open = node->expanded() && KeyedTree::childCount(node) > 0;
  if (in && open)
    setCurrentIndex(model_.index(0, 0, currentIndex()));
  else if (in && KeyedTree::childCount(node) > 0)
    expand(node, true);
  else if (!in && open)
    expand(node, false);
  else if (!in && node->parent())
    setCurrentIndex(currentIndex().parent());
}

void TreePane::keyPressEvent(QKeyEvent* event) {
  // What the label's edit has no use for is nothing to the tree.
  if (state() == EditingState) return;
  if (input_.keyDown(*event)) return;
  const auto go = [this](CursorAction action) {
    const QModelIndex to = moveCursor(action, Qt::NoModifier);
    if (to.isValid()) setCurrentIndex(to);
  };
  switch (event->key()) {
    case Qt::Key_Up: return go(MoveUp);
    case Qt::Key_Down: return go(MoveDown);
    case Qt::Key_Home: return go(MoveHome);
    case Qt::Key_End: return go(MoveEnd);
    case Qt::Key_PageUp: return go(MovePageUp);
    case Qt::Key_PageDown: return go(MovePageDown);
    case Qt::Key_Left: return goSideways(false);
    case Qt::Key_Right: return goSideways(true);
    default: break;
  }
  if (PaneInput::searches(*event))
    keyboardSearch(event->text());
  else
    event->ignore();
}

// Nor is a key that was pressed before and is let go in the edit.
void TreePane::keyReleaseEvent(QKeyEvent* event) {
  if (state() != EditingState) input_.keyUp(*event);
}

void TreePane::editLabel() {
  const NodeRef node = shared_.models != nullptr ? shared_.models->TreeView1.selectedItem() : nullptr;
  if (!node || !isVisible() || state() == EditingState || shared_.events == nullptr) return;
  std::int16_t cancel = 0;
  shared_.events->TreeView1_BeforeLabelEdit(cancel);
  const QModelIndex index = model_.indexOf(*node);
  if (cancel != 0 || !index.isValid()) return;
  bring(node);
  edit(index);
}

QWidget* TreePane::labelEdit() const {
  return state() == EditingState ? indexWidget(currentIndex()) : nullptr;
}

void TreePane::dropEdit() {
  edited_.clear();
  if (QWidget* editor = labelEdit()) closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

void TreePane::settle() {
  if (QWidget* editor = labelEdit()) {
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
  }
  tellEdits();
}

// No other label is edited behind it, as Qt does where the edit is left by the tabulator.
void TreePane::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  const bool another =
      hint == QAbstractItemDelegate::EditNextItem || hint == QAbstractItemDelegate::EditPreviousItem;
  QTreeView::closeEditor(editor, another ? QAbstractItemDelegate::NoHint : hint);
}

// What follows may ask the user, and must not do so from within the editor.
void TreePane::edited(const QModelIndex& index, const QString& text, bool another) {
  const NodeRef node = TreeModel::nodeOf(index);
  if (!node) return;
  edited_.emplace_back(node, another ? text.toStdString() : node->text());
  finish_.start(0);
}

void TreePane::finishEdits() {
  constexpr int kHeld = 20;  // milliseconds until it is looked at again
  // The press that has ended it is not to be lost in a question: it settles the edit by itself when it comes
  // to something, as a button's does when it is let go.
  if (QGuiApplication::mouseButtons() != Qt::NoButton) return finish_.start(kHeld);
  tellEdits();
}

void TreePane::tellEdits() {
  finish_.stop();
  for (const auto& [node, text] : std::exchange(edited_, {})) finishEdit(node, text);
}

void TreePane::finishEdit(const NodeRef& node, const std::string& text) {
  if (shared_.events == nullptr || !node->held()) return;
  std::int16_t cancel = 0;
  std::string now = text;
  shared_.events->TreeView1_AfterLabelEdit(cancel, now);
  if (cancel == 0 && shared_.models != nullptr && node->held()) shared_.models->TreeView1.text(node, now);
}

}  // namespace desktop
