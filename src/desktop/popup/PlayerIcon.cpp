#include "desktop/popup/PlayerIcon.hpp"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>

namespace desktop {

namespace {

QPixmap Drawn(int size) {
  constexpr QRgb kGround = 0xff2f55e0;
  constexpr double kRound = 0.22;
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(kGround));
  painter.drawRoundedRect(QRectF(0, 0, size, size), size * kRound, size * kRound);
  painter.setBrush(Qt::white);
  const QPolygonF triangle({QPointF(0.36, 0.26), QPointF(0.76, 0.5), QPointF(0.36, 0.74)});
  painter.scale(size, size);
  painter.drawPolygon(triangle);
  return pixmap;
}

}  // namespace

QIcon PlayerIcon() {
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) icon.addPixmap(Drawn(size));
  return icon;
}

}  // namespace desktop
