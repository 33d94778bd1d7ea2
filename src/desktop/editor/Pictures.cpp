#include "desktop/editor/Pictures.hpp"

#include <QtCore/QFile>
#include <QtGui/QGuiApplication>
#include <QtGui/QPixmap>
#include <QtSvg/QSvgRenderer>

#include "desktop/Svg.hpp"

// The macro's function stands in no namespace.
static void HavePictures() { Q_INIT_RESOURCE(pictures); }

namespace desktop {

namespace {

/// The pictures' own colours that can't be told from the ground of what is chosen.
constexpr const char* kLost[] = {"#2f7fe0", "#a04fd0"};

QByteArray TextOf(const char* key, const QColor& ink) {
  HavePictures();
  QFile file(QString(":/editor/") + key);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return file.readAll().replace("currentColor", ink.name().toUtf8());
}

}  // namespace

QIcon Pictures::icon(const char* key, const QColor& ink, const QColor& chosen) {
  constexpr int kSizes[] = {16, 24, 32, 48};
  if (ink.rgb() != ink_ || chosen.rgb() != chosen_) drawn_.clear();
  ink_ = ink.rgb();
  chosen_ = chosen.rgb();
  const auto [entry, isNew] = drawn_.try_emplace(key);
  if (!isNew) return entry->second;
  const QByteArray text = TextOf(key, ink);
  if (text.isEmpty()) return {};
  QByteArray onChosen = TextOf(key, chosen);
  for (const char* colour : kLost) onChosen.replace(colour, chosen.name().toUtf8());
  QSvgRenderer plain(text);
  QSvgRenderer chosenOne(onChosen);
  for (const int size : kSizes) {
    entry->second.addPixmap(DrawnSvg(plain, size));
    entry->second.addPixmap(DrawnSvg(chosenOne, size), QIcon::Selected);
  }
  return entry->second;
}

QCursor Pictures::pointer(const char* key, const QColor& ink) {
  constexpr int kSize = 24;
  const QByteArray text = TextOf(key, ink);
  if (text.isEmpty()) return {};
  const double scale = qGuiApp->devicePixelRatio();
  QSvgRenderer drawing(text);
  QPixmap drawn = DrawnSvg(drawing, static_cast<int>(kSize * scale));
  drawn.setDevicePixelRatio(scale);
  return QCursor(drawn, 1, 1);
}

}  // namespace desktop
