#include "desktop/WakefulScreen.hpp"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

namespace desktop {

namespace {

QDBusMessage Call(const char* method) {
  constexpr const char* kName = "org.freedesktop.ScreenSaver";
  QDBusMessage call = QDBusMessage::createMethodCall(kName, "/org/freedesktop/ScreenSaver", kName, method);
  call.setAutoStartService(false);
  return call;
}

}  // namespace

WakefulScreen::WakefulScreen(QObject& parent) : QObject(&parent), bus_(QDBusConnection::sessionBus()) {}
WakefulScreen::~WakefulScreen() { keep(false); }

void WakefulScreen::keep(bool awake) {
  wanted_ = awake;
  follow();
}

void WakefulScreen::follow() {
  // Until the answer is there, nothing can be given back.
  if (asking_) return;
  if (wanted_ && !cookie_) ask();
  if (wanted_ || !cookie_) return;
  QDBusMessage call = Call("UnInhibit");
  call << *cookie_;
  bus_.send(call);
  cookie_.reset();
}

void WakefulScreen::ask() {
  if (!bus_.isConnected()) return;
  QDBusMessage question = Call("Inhibit");
  question << "Vantorix Media Player"
           << "A film fills the screen";
  asking_ = true;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* ended) {
    ended->deleteLater();
    asking_ = false;
    const QDBusPendingReply<uint> answer = *ended;
    if (answer.isError()) return;
    cookie_ = answer.value();
    follow();
  });
}

}  // namespace desktop
