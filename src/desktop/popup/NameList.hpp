#pragma once
#include <QtCore/QPoint>
#include <QtCore/QString>
#include <QtWidgets/QFrame>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QListView;

namespace desktop {

/// An entry of a long menu, by the number of its element.
struct NameEntry {
  std::int16_t element = 0;
  QString text;
  bool name = true;  ///< false for what stands among the names and is none; nobody looks for that
};

/// A menu of thousands of names: it opens at once, scrolls, and finds by typing. Escape and a click beside it
/// close it.
class NameList : public QFrame {
 public:
  /// `chosen` is called behind the list's closing, with the entry.
  explicit NameList(std::function<void(const NameEntry&)> chosen);

  /// Opens at a place of the screen. The heading is bold and can't be chosen; an empty one takes no room.
  void open(QPoint at, const QString& heading, const QString& name, std::vector<NameEntry> entries);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Entries;
  [[nodiscard]] int heightFor(int rows) const;
  void find(const QString& text);
  void choose(int row);

  std::function<void(const NameEntry&)> chosen_;
  QListView* view_;
  Entries* entries_;
  QLabel* heading_;
  QLineEdit* edit_;
};

}  // namespace desktop
