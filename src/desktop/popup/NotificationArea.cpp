#include "desktop/popup/NotificationArea.hpp"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <utility>

#include "desktop/popup/ScreenOwners.hpp"

namespace desktop {

namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";

}  // namespace

NotificationArea::NotificationArea(std::function<void()> changed)
    : changed_(std::move(changed)),
      bus_(QDBusConnection::sessionBus()),
      watcher_(kWatcher, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
  again_.setSingleShot(true);
  again_.setInterval(0);
  QObject::connect(&again_, &QTimer::timeout, &again_, [this] { ask(); });
  onScreen_ = NotificationWindow() != 0;
  QCoreApplication::instance()->installNativeEventFilter(this);
  known_ = !bus_.isConnected();
  if (!known_) listen();
}

NotificationArea::~NotificationArea() = default;

void NotificationArea::listen() {
  QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &again_, [this] { again_.start(); });
  // A timer has the slot that the bus wants to be given by its name.
  for (const char* news : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
    bus_.connect(kWatcher, kWatcherPath, kWatcher, news, &again_, SLOT(start()));
  bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", &again_,
               SLOT(start()));
  again_.start();
}

void NotificationArea::ask() {
  lookAtScreen();
  if (!bus_.isConnected()) return answered(false);
  QDBusMessage question =
      QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
  question << kWatcher << "IsStatusNotifierHostRegistered";
  question.setAutoStartService(false);
  const int number = ++asked_;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(question), &again_);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, &again_,
                   [this, number](QDBusPendingCallWatcher* ended) {
                     ended->deleteLater();
                     const QDBusPendingReply<QDBusVariant> answer = *ended;
                     // An answer that a later question has overtaken says nothing any more.
                     if (number == asked_) answered(!answer.isError() && answer.value().variant().toBool());
                   });
}

void NotificationArea::answered(bool hosted) {
  if (known_ && hosted == onBus_) return;
  known_ = true;
  onBus_ = hosted;
  changed_();
}

void NotificationArea::lookAtScreen() {
  const bool there = NotificationWindow() != 0;
  if (std::exchange(onScreen_, there) != there) changed_();
}

bool NotificationArea::nativeEventFilter(const QByteArray& type, void* event, qintptr* /*result*/) {
  // Later, when Qt knows of it too.
  if (type == "xcb_generic_event_t" && TellsOfOwners(event)) again_.start();
  return false;
}

}  // namespace desktop
