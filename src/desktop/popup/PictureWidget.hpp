#pragma once
#include <QtWidgets/QWidget>
#include <functional>

#include "base/MovingPicture.hpp"

namespace desktop {

/// Shows one frame after the other.
class PictureWidget : public QWidget {
 public:
  /// `moved` is called when it is shown, hidden or of another size; `left` when the user wants to get away
  /// from it, as by Escape or a double click.
  PictureWidget(QWidget* parent, std::function<void()> moved, std::function<void()> left);

  void show(base::FrameRef frame);
  using QWidget::show;
  /// In the screen's own pixels; empty while it can't be seen.
  [[nodiscard]] base::PictureSize room() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> moved_;
  std::function<void()> left_;
  base::FrameRef frame_;
};

}  // namespace desktop
