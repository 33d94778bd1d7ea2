#pragma once
#include <QtWidgets/QListView>

#include "desktop/editor/ListModel.hpp"
#include "desktop/editor/PaneInput.hpp"
#include "desktop/editor/Pictures.hpp"

namespace desktop {

/// The list of the playlist that is chosen.
class ListPane : public QListView {
 public:
  ListPane(Shared& shared, Drag& drag, Pictures& pictures);
  ~ListPane() override;
  ListPane(const ListPane&) = delete;
  ListPane& operator=(const ListPane&) = delete;
  ListPane(ListPane&&) = delete;
  ListPane& operator=(ListPane&&) = delete;

  /// The list to show; may be null.
  void serve(ui::editor::KeyedList* list) { model_.serve(list); }
  void abandon() { model_.abandon(); }
  /// The item at a place of the viewport; may be null.
  [[nodiscard]] ui::editor::ItemRef itemAt(QPoint at) const { return model_.itemOf(indexAt(at)); }
  void bring(const ui::editor::ItemRef& item);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override { input_.move(*event); }
  void mouseReleaseEvent(QMouseEvent* event) override { input_.release(*event); }
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override { input_.keyUp(*event); }
  void showEvent(QShowEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  class Rows;
  [[nodiscard]] int columnWidth() const;
  void showSelected();
  void showColumn();
  void choose(const QModelIndex& chosen);

  Shared& shared_;
  PaneInput input_;
  ListModel model_;
  bool follows_ = false;         // the model, so that nothing it shows is a choice
  ui::editor::ItemRef toBring_;  // when it shows
};

}  // namespace desktop
