#include "desktop/popup/BarButton.hpp"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace desktop {

namespace {

using Sign = BarButton::Sign;

void AddTriangle(QPainterPath& path, double left, double right) {
  path.moveTo(left, 4);
  path.lineTo(right, 9);
  path.lineTo(left, 14);
  path.closeSubpath();
}

void AddSpeaker(QPainterPath& path) {
  path.moveTo(3, 7);
  path.lineTo(6, 7);
  path.lineTo(10, 4);
  path.lineTo(10, 14);
  path.lineTo(6, 11);
  path.lineTo(3, 11);
  path.closeSubpath();
}

/// On a ground of 18 by 18.
QPainterPath PathOf(Sign sign) {
  QPainterPath path;
  switch (sign) {
    case Sign::kPlay: AddTriangle(path, 5, 14); break;
    case Sign::kPause:
      path.addRect(5, 4, 3, 10);
      path.addRect(10, 4, 3, 10);
      break;
    case Sign::kPrevious:
      path.addRect(4, 4, 2, 10);
      AddTriangle(path, 14, 7);
      break;
    case Sign::kNext:
      path.addRect(12, 4, 2, 10);
      AddTriangle(path, 4, 11);
      break;
    case Sign::kStop: path.addRect(5, 5, 8, 8); break;
    case Sign::kSound:
    case Sign::kMuted: AddSpeaker(path); break;
  }
  return path;
}

void DrawSound(QPainter& painter, Sign sign) {
  if (sign == Sign::kSound) {
    painter.drawArc(QRectF(9, 6, 5, 6), -60 * 16, 120 * 16);
    painter.drawArc(QRectF(8, 4, 9, 10), -60 * 16, 120 * 16);
  } else {
    painter.drawLine(QPointF(12, 7), QPointF(16, 11));
    painter.drawLine(QPointF(16, 7), QPointF(12, 11));
  }
}

}  // namespace

BarButton::BarButton(Sign sign, const QString& name) : sign_(sign) {
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  become(sign, name);
}

void BarButton::become(Sign sign, const QString& name) {
  sign_ = sign;
  setAccessibleName(name);
  setToolTip(name);
  update();
}

QSize BarButton::sizeHint() const { return {28, 26}; }

void BarButton::paintEvent(QPaintEvent* /*event*/) {
  constexpr int kGround = 18;
  constexpr double kRound = 6;
  constexpr double kLine = 1.4;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF inside = QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75);
  if (isEnabled() && (isDown() || underMouse())) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(isDown() ? QPalette::Mid : QPalette::AlternateBase));
    painter.drawRoundedRect(inside, kRound, kRound);
  }
  if (hasFocus()) {
    painter.setPen(QPen(palette().color(QPalette::Highlight), kLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(inside, kRound, kRound);
  }
  const QColor ink =
      palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
  painter.translate((width() - kGround) / 2.0, (height() - kGround) / 2.0);
  painter.setOpacity(isEnabled() ? 1 : 0.5);
  painter.fillPath(PathOf(sign_), ink);
  if (sign_ != Sign::kSound && sign_ != Sign::kMuted) return;
  painter.setPen(QPen(ink, kLine, Qt::SolidLine, Qt::RoundCap));
  painter.setBrush(Qt::NoBrush);
  DrawSound(painter, sign_);
}

}  // namespace desktop
