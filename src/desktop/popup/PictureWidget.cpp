#include "desktop/popup/PictureWidget.hpp"

#include <QtGui/QCloseEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <cmath>
#include <utility>

namespace desktop {

PictureWidget::PictureWidget(QWidget* parent, std::function<void()> moved, std::function<void()> left)
    : QWidget(parent), moved_(std::move(moved)), left_(std::move(left)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName("Moving picture");
  if (parent == nullptr) return;
  setAttribute(Qt::WA_TransparentForMouseEvents);
  // As large as its place, and out of sight with the window.
  parent->installEventFilter(this);
  window()->installEventFilter(this);
  setGeometry(parent->rect());
}

bool PictureWidget::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parent() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  if (event->type() == QEvent::WindowStateChange) moved_();
  return false;
}

void PictureWidget::show(base::FrameRef frame) {
  frame_ = std::move(frame);
  update();
}

base::PictureSize PictureWidget::room() const {
  if (!isVisible() || window()->isMinimized()) return {};
  const qreal scale = devicePixelRatioF();
  return {static_cast<int>(std::lround(width() * scale)), static_cast<int>(std::lround(height() * scale))};
}

void PictureWidget::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (!frame_) {
    painter.fillRect(rect(), Qt::black);
    return;
  }
  const QImage image(frame_->data(), frame_->size.width, frame_->size.height,
                     static_cast<qsizetype>(frame_->stride), QImage::Format_RGB32);
  // One that was drawn for another size is only on its way out.
  painter.drawImage(rect(), image);
}

void PictureWidget::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  moved_();
}

void PictureWidget::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  moved_();
}

void PictureWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  moved_();
}

void PictureWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return left_();
  QWidget::keyPressEvent(event);
}

void PictureWidget::mouseDoubleClickEvent(QMouseEvent* /*event*/) { left_(); }

void PictureWidget::closeEvent(QCloseEvent* event) {
  event->ignore();
  left_();
}

}  // namespace desktop
