#include "desktop/Look.hpp"

#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyleFactory>
#include <algorithm>

namespace desktop {

namespace {

struct Colours {
  QRgb background, panel, ink, quiet, line, soft, accent, accentInk;
};

constexpr Colours kLight{0xfff4f6fb, 0xffffffff, 0xff1b2333, 0xff5c6880,
                         0xffdfe4ef, 0xffeef1f8, 0xff2f55e0, 0xffffffff};
constexpr Colours kDark{0xff10141d, 0xff191f2c, 0xffe8ecf5, 0xff9aa6bd,
                        0xff2a3244, 0xff222a3a, 0xff86a3ff, 0xff0e1530};

QPalette PaletteOf(const Colours& colours) {
  QPalette palette;
  palette.setColor(QPalette::Window, colours.background);
  palette.setColor(QPalette::Base, colours.panel);
  palette.setColor(QPalette::AlternateBase, colours.soft);
  palette.setColor(QPalette::Button, colours.panel);
  palette.setColor(QPalette::Midlight, colours.soft);
  palette.setColor(QPalette::Mid, colours.line);
  palette.setColor(QPalette::Highlight, colours.accent);
  palette.setColor(QPalette::HighlightedText, colours.accentInk);
  palette.setColor(QPalette::Link, colours.accent);
  palette.setColor(QPalette::ToolTipBase, colours.panel);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, colours.ink);
  palette.setColor(QPalette::PlaceholderText, colours.quiet);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, colours.quiet);
  return palette;
}

constexpr const char* kStyle = R"(
QPushButton { background: palette(button); color: palette(button-text); border: 1px solid palette(mid);
  border-radius: 7px; padding: 6px 18px; min-width: 58px; }
QPushButton:hover { border-color: palette(highlight); }
QPushButton:focus { border: 2px solid palette(highlight); padding: 5px 17px; }
QPushButton:pressed, QPushButton:disabled { background: palette(alternate-base); }
QPushButton:default { background: palette(highlight); color: palette(highlighted-text);
  border-color: palette(highlight); }
QPushButton:default:focus { border-color: palette(button-text); }
QProgressBar { background: palette(mid); border: 0; border-radius: 5px; min-height: 10px; max-height: 10px; }
QProgressBar::chunk { background: palette(highlight); border-radius: 5px; }
)";

}  // namespace

void ApplyLook(QApplication& application) {
  constexpr double kSmallestFont = 10.5;
  const bool dark = QApplication::palette().color(QPalette::Window).lightness() <
                    QApplication::palette().color(QPalette::WindowText).lightness();
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QFont font = QApplication::font();
  font.setPointSizeF(std::max(font.pointSizeF(), kSmallestFont));
  QApplication::setFont(font);
  QApplication::setPalette(PaletteOf(dark ? kDark : kLight));
  application.setStyleSheet(kStyle);
}

}  // namespace desktop
