#include "desktop/editor/LabelEdit.hpp"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QStyle>

#include "desktop/editor/TreePane.hpp"

namespace desktop {

LabelEdit::LabelEdit(TreePane* pane) : QStyledItemDelegate(pane), pane_(pane) {}

QWidget* LabelEdit::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& index) const {
  auto* edit = new QLineEdit(parent);
  edit->setText(QString::fromStdString(TreeModel::nodeOf(index)->text()));
  edit->selectAll();
  edit->setFrame(false);
  edit->setAccessibleName("Name");
  edit->setAutoFillBackground(true);
  return edit;
}

void LabelEdit::setModelData(QWidget* editor, QAbstractItemModel* /*model*/, const QModelIndex& index) const {
  const auto* edit = static_cast<QLineEdit*>(editor);
  pane_->edited(index, edit->text(), edit->isModified());
}

// At once, and not a turn later as Qt does it: what is typed behind it is the tree's.
bool LabelEdit::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<const QKeyEvent*>(event)->key();
    auto* edit = qobject_cast<QLineEdit*>(object);
    if (edit != nullptr && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
      commitData(edit);
      closeEditor(edit, NoHint);
      return true;
    }
  }
  return QStyledItemDelegate::eventFilter(object, event);
}

void LabelEdit::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
  QStyleOptionViewItem shown = option;
  initStyleOption(&shown, index);
  QRect place = pane_->style()->subElementRect(QStyle::SE_ItemViewItemText, &shown, pane_);
  place.setRight(option.rect.right());
  editor->setGeometry(place);
}

}  // namespace desktop
