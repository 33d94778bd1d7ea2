#include "desktop/popup/PlayerIcon.hpp"

#include <QtSvg/QSvgRenderer>

#include "desktop/Svg.hpp"

// The macro's function stands in no namespace.
static void HaveIcon() { Q_INIT_RESOURCE(playericon); }

namespace desktop {

QIcon PlayerIcon() {
  // Twice as large ones are what screens of twice as many dots show.
  constexpr int kSizes[] = {16, 22, 24, 32, 44, 48, 64, 96, 128, 256};
  HaveIcon();
  QSvgRenderer drawing(QString(":/popup/icon.svg"));
  QIcon icon;
  for (const int size : kSizes) icon.addPixmap(DrawnSvg(drawing, size));
  return icon;
}

}  // namespace desktop
