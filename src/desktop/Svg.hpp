#pragma once
#include <QtGui/QPixmap>

class QSvgRenderer;

namespace desktop {

/// The drawing, `size` dots wide and high, on a ground that shows through.
QPixmap DrawnSvg(QSvgRenderer& drawing, int size);

}  // namespace desktop
