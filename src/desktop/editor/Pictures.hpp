#pragma once
#include <QtGui/QColor>
#include <QtGui/QCursor>
#include <QtGui/QIcon>

#include <map>
#include <string>

namespace desktop {

/// The pictures of the playlist editor by their keys, drawn sharply at any scale of the desktop and in the
/// colours that it has at the time. One that has been drawn is kept.
class Pictures {
 public:
  /// Empty for a key that no picture has. `chosen` is the ink on the ground of what is chosen.
  [[nodiscard]] QIcon icon(const char* key, const QColor& ink, const QColor& chosen);
  /// The same as a pointer, which points with its upper left corner.
  static QCursor pointer(const char* key, const QColor& ink);

 private:
  std::map<std::string, QIcon> drawn_;
  QRgb ink_ = 0;  // that they are drawn in
  QRgb chosen_ = 0;
};

}  // namespace desktop
