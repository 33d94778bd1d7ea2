#pragma once
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <optional>

class QApplication;

namespace desktop {

/// Gives all windows the colours of the house's pages, light or dark as the user's desktop is, also when that
/// becomes another. What the desktop's settings say of it on the session bus goes before what its own colours
/// are; the bus is not waited for.
class Look : public QObject {
 public:
  /// Belongs to the application.
  explicit Look(QApplication& application);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// As the settings number it.
  enum class Wish { kNone = 0, kDark = 1, kLight = 2 };

  void ask();
  void apply();

  QApplication& application_;
  QDBusConnection bus_;
  QTimer again_;  // for the slot that the bus wants to be given by its name
  QTimer dress_;
  Wish wish_ = Wish::kNone;
  std::optional<bool> dark_;  // as it is now
  bool dressing_ = false;
};

}  // namespace desktop
