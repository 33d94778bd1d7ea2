#pragma once
#include <QtCore/QString>

#include <algorithm>
#include <string>

namespace desktop {

/// Whether a character has what stands behind it, or beside the whole text, run the other way.
inline bool TurnsItsLine(QChar character) {
  constexpr char16_t kEmbedding = 0x202a;  // U+202A to U+202E
  constexpr char16_t kOverride = 0x202e;
  constexpr char16_t kIsolate = 0x2066;  // U+2066 to U+2069
  constexpr char16_t kIsolateEnd = 0x2069;
  const char16_t code = character.unicode();
  return (code >= kEmbedding && code <= kOverride) || (code >= kIsolate && code <= kIsolateEnd);
}

/// A text of the library for one line of a window: no longer than anybody reads, and with a blank for each
/// character that would break the line, turn it round, or can't be seen.
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
        each == QChar::ParagraphSeparator || TurnsItsLine(each))
      each = ' ';
  return shown;
}

/// The tip that says a shown text letter for letter: only with a mark in it an escaped text is read as one
/// with marks, and only as it stands are its blanks as many as they are. None for none.
inline QString TipOf(const QString& shown) {
  return shown.isEmpty() ? QString()
                         : "<span style=\"white-space:pre-wrap\">" + shown.toHtmlEscaped() + "</span>";
}

}  // namespace desktop
