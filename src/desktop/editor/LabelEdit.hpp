#pragma once
#include <QtWidgets/QStyledItemDelegate>

namespace desktop {

class TreePane;

/// Edits a label of the tree in its place.
class LabelEdit : public QStyledItemDelegate {
 public:
  explicit LabelEdit(TreePane* pane);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* /*editor*/, const QModelIndex& /*index*/) const override {}
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  TreePane* pane_;
};

}  // namespace desktop
