// The icon of the window and the tray is the drawing that the desktop's menu shows.
#include <gtest/gtest.h>

#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include "desktop/popup/PlayerIcon.hpp"
#include "support/desktop/PopupScene.hpp"

namespace {

QImage Drawing(int size) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  QSvgRenderer(QString(DRAWING_FILE)).render(&painter);
  return image;
}

QImage Seen(const QPixmap& pixmap) {
  return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

class PlayersIcon : public support::PopupScene {};

}  // namespace

TEST_F(PlayersIcon, IsTheDrawingInEachSizeThatDesktopsAskFor) {
  const QIcon icon = desktop::PlayerIcon();
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    EXPECT_EQ(Seen(icon.pixmap(QSize(size, size), 1)), Drawing(size)) << size;
    QImage twice = Seen(icon.pixmap(QSize(size, size), 2));
    twice.setDevicePixelRatio(1);
    EXPECT_EQ(twice, Drawing(2 * size)) << size << " on a screen of twice as many dots";
  }
}

TEST_F(PlayersIcon, IsThatOfTheWindow) {
  EXPECT_EQ(Seen(pane().windowIcon().pixmap(QSize(48, 48), 1)), Drawing(48));
}
