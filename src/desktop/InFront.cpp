#include "desktop/InFront.hpp"

#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>
#include <algorithm>

namespace desktop {

void ShowInFront(QWidget& window) {
  const QWindowList open = QGuiApplication::topLevelWindows();
  const bool onTop = std::any_of(open.begin(), open.end(), [](const QWindow* each) {
    return each->isVisible() && each->flags().testFlag(Qt::WindowStaysOnTopHint);
  });
  if (onTop && !window.isVisible()) window.setWindowFlag(Qt::WindowStaysOnTopHint);
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace desktop
