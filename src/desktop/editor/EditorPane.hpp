#pragma once
#include <QtCore/QPointer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

#include <array>
#include <functional>

#include "desktop/QtWindows.hpp"
#include "desktop/editor/ListPane.hpp"
#include "desktop/editor/NameBox.hpp"
#include "desktop/editor/TreePane.hpp"

namespace desktop {

/// What is in the editor's window, each control at its place.
class EditorPane : public QWidget {
 public:
  /// `closed` is called when its user closes it, before it goes.
  EditorPane(QtWindows& windows, std::function<void()> closed);
  ~EditorPane() override;
  EditorPane(const EditorPane&) = delete;
  EditorPane& operator=(const EditorPane&) = delete;
  EditorPane(EditorPane&&) = delete;
  EditorPane& operator=(EditorPane&&) = delete;

  void serve(ui::editor::EditorEvents* events, ui::editor::EditorModels* models);
  /// Serves nobody any more, when the desktop has gone: no widget is touched.
  void abandon();
  [[nodiscard]] Shared& shared() { return shared_; }
  [[nodiscard]] Drag& drag() { return drag_; }
  [[nodiscard]] TreePane& tree() { return *tree_; }
  [[nodiscard]] ListPane& list() { return *list_; }
  [[nodiscard]] QWidget& control(ui::editor::Control which) { return *controls_[std::size_t(which)]; }

  /// One that is disabled keeps in mind what had the focus.
  void enable(bool value);
  void showControl(ui::editor::Control control, bool value);
  /// As the user would by keyboard: that is told.
  void focusOn(ui::editor::Control pane);
  /// The colour of what is written in it.
  [[nodiscard]] QColor ink() const { return palette().color(QPalette::Text); }
  /// Whether it has been drawn since it was shown.
  [[nodiscard]] bool drawn() const { return drawn_; }

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void place(const ui::editor::ControlPlace& place, QWidget* widget);
  void addButtons();
  void fitButtons();
  void focusMoved(const QWidget* from, const QWidget* to);
  void clicked(ui::editor::Control button);

  std::function<void()> closed_;
  Shared shared_;
  Pictures pictures_;
  Drag drag_{shared_};
  TreePane* tree_;
  NameBox* box_;
  ListPane* list_;
  std::array<QWidget*, ui::editor::layout::kControls.size()> controls_{};
  std::array<QPushButton*, 6> buttons_{};
  QPointer<QWidget> hadFocus_;
  bool drawn_ = false;
};

}  // namespace desktop
