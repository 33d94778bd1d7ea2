#pragma once
#include <QtCore/QString>

#include <algorithm>
#include <string>

namespace desktop {

/// A text of the library for one line of a window: no longer than anybody reads, and with a blank for each
/// character that would break the line or can't be seen.
inline QString ShownText(const std::string& text) {
  constexpr std::size_t kMostBytes = 2000;
  constexpr qsizetype kLongest = 300;
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(std::min(text.size(), kMostBytes)));
  if (shown.size() > kLongest) {
    // Not within a character of two halves.
    shown.truncate(shown[kLongest - 1].isHighSurrogate() ? kLongest - 1 : kLongest);
    shown += QChar(0x2026);
  }
  for (QChar& each : shown)
    if (each.category() == QChar::Other_Control || each == QChar::LineSeparator ||
        each == QChar::ParagraphSeparator)
      each = ' ';
  return shown;
}

}  // namespace desktop
