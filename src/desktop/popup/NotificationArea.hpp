#pragma once
#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServiceWatcher>

#include <functional>

namespace desktop {

/// Where a desktop shows icons: a panel that takes them over the session bus, or one on an X screen that
/// takes them as windows. Either may come and go at any time. Nobody is waited for: an answer of the bus is
/// known when it comes.
class NotificationArea : private QAbstractNativeEventFilter {
 public:
  /// `changed` is called, as an event of Qt's, when what is said here has changed.
  explicit NotificationArea(std::function<void()> changed);
  ~NotificationArea() override;
  NotificationArea(const NotificationArea&) = delete;
  NotificationArea& operator=(const NotificationArea&) = delete;
  NotificationArea(NotificationArea&&) = delete;
  NotificationArea& operator=(NotificationArea&&) = delete;

  /// False until the bus has answered the first time.
  [[nodiscard]] bool known() const { return known_; }
  [[nodiscard]] bool onBus() const { return onBus_; }
  [[nodiscard]] bool onScreen() const { return onScreen_; }

 private:
  bool nativeEventFilter(const QByteArray& type, void* event, qintptr* result) override;
  void listen();
  void ask();
  void answered(bool hosted);
  void lookAtScreen();

  std::function<void()> changed_;
  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  QTimer again_;  // asks once for all that has happened in one turn
  int asked_ = 0;
  bool known_ = false;
  bool onBus_ = false;
  bool onScreen_ = false;
};

}  // namespace desktop
