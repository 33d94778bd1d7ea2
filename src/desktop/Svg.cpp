#include "desktop/Svg.hpp"

#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

namespace desktop {

QPixmap DrawnSvg(QSvgRenderer& drawing, int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  drawing.render(&painter);
  return pixmap;
}

}  // namespace desktop
