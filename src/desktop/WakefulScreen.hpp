#pragma once
#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <optional>

namespace desktop {

/// Asks the desktop, over the session bus, not to blank or lock its screen while a film fills it.
/// Nothing waits for it, and a desktop that knows nothing of that is left alone.
class WakefulScreen : public QObject {
 public:
  explicit WakefulScreen(QObject& parent);
  ~WakefulScreen() override;
  WakefulScreen(const WakefulScreen&) = delete;
  WakefulScreen& operator=(const WakefulScreen&) = delete;
  WakefulScreen(WakefulScreen&&) = delete;
  WakefulScreen& operator=(WakefulScreen&&) = delete;

  void keep(bool awake);

 private:
  void follow();
  void ask();

  QDBusConnection bus_;
  bool wanted_ = false;
  bool asking_ = false;
  std::optional<uint> cookie_;  ///< by which the desktop's promise is given back
};

}  // namespace desktop
