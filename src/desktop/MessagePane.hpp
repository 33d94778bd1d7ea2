#pragma once
#include <QtWidgets/QWidget>

#include "base/Platform.hpp"

class QLabel;
class QScrollArea;

namespace desktop {

/// A message's text beside a badge that tells its kind. It is as large as its text, up to a part of the
/// screen; a longer text scrolls.
class MessagePane : public QWidget {
 public:
  explicit MessagePane(base::BoxKind kind);

  void text(const QString& value);

 private:
  QLabel* text_;
  QScrollArea* area_;
};

}  // namespace desktop
