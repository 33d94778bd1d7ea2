#include "desktop/QtWindows.hpp"

#include <poll.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QLibraryInfo>
#include <QtCore/QPluginLoader>
#include <QtWidgets/QApplication>
#include <clocale>
#include <thread>
#include <utility>

#include "desktop/DesktopGone.hpp"
#include "desktop/Look.hpp"
#include "desktop/MainContext.hpp"

namespace desktop {

namespace {

/// Qt takes the user's locale for the whole process; numbers and letters of the logic are not the user's.
class LocaleKept {
 public:
  LocaleKept() : former_(std::setlocale(LC_ALL, nullptr)) {}
  ~LocaleKept() { std::setlocale(LC_ALL, former_.c_str()); }
  LocaleKept(const LocaleKept&) = delete;
  LocaleKept& operator=(const LocaleKept&) = delete;
  LocaleKept(LocaleKept&&) = delete;
  LocaleKept& operator=(LocaleKept&&) = delete;

 private:
  std::string former_;
};

/// A plug-in file may be missing, or a library that it needs.
bool Loads(const QString& plugin) {
  QPluginLoader loader(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms/lib" + plugin + ".so");
  return loader.load();
}

}  // namespace

std::unique_ptr<QtWindows> QtWindows::open(WindowsParts parts) {
  if (!Loads(parts.display.kind() == Display::Kind::kX ? "qxcb" : "qwayland-generic")) return nullptr;
  if (LastWords::startWasLeft()) return nullptr;
  std::unique_ptr<QtWindows> windows(new QtWindows(std::move(parts)));
  return windows->gone_ ? nullptr : std::move(windows);
}

QtWindows::QtWindows(WindowsParts parts)
    : loop_(parts.loop),
      display_(std::move(parts.display)),
      tellGone_(std::move(parts.gone)),
      words_(std::make_unique<LastWords>(display_)) {
  qputenv("QT_QPA_PLATFORM", display_.kind() == Display::Kind::kX ? "xcb" : "wayland");
  qunsetenv("QT_NO_GLIB");                   // the loop knows how to wait for GLib's context
  qputenv("QT_XCB_GL_INTEGRATION", "none");  // no window is drawn by OpenGL, whose libraries are large
  const LocaleKept locale;
  const bool started = words_->outliveStart([this] {
    application_ = std::make_unique<QApplication>(argumentCount_, static_cast<char**>(arguments_));
  });
  if (!started) {
    gone_ = true;
    loop_.post(tellGone_);
    return;
  }
  QApplication::setQuitOnLastWindowClosed(false);
  QGuiApplication::setDesktopFileName("vantorix-media-player");  // whose icon and name its windows have
  new Look(*application_);                                       // which owns it
  context_ = std::make_unique<MainContext>(loop_, [this] { work(); });
  watch_ = loop_.watch(display_.descriptor(), POLLIN | POLLRDHUP, [this](short) {
    if (display_.gone()) leave();
  });
}

QtWindows::~QtWindows() {
  if (gone_ || display_.gone()) static_cast<void>(application_.release());
}

bool QtWindows::run(const std::function<void()>& act) {
  if (!gone_ && display_.gone()) leave();
  if (gone_) return false;
  try {
    const LastWords::Awaited awaited(*words_);
    act();
  } catch (const DesktopGone&) {
    leave();
  }
  return !gone_;
}

bool QtWindows::enter(const std::function<void()>& act) {
  const bool done = run(act);
  if (done) context_->ask();
  return done;
}

void QtWindows::leave() {
  if (gone_) return;
  gone_ = true;
  watch_.reset();
  context_->stop();
  loop_.post(tellGone_);
}

void QtWindows::work() {
  ++depth_;
  run([&] {
    QCoreApplication::processEvents();
    // Without a Qt loop nobody else does away with what Qt puts off to its loop's end.
    if (depth_ == 1) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  });
  --depth_;
}

void QtWindows::waitUntil(const std::function<bool()>& done) {
  constexpr base::Milliseconds kLongestTurn = std::chrono::minutes(1);
  loop_.whileOpen([&] {
    while (!gone_ && !done()) loop_.turn(kLongestTurn);
  });
}

void QtWindows::drawUntil(const std::function<bool()>& done, base::Milliseconds limit) {
  constexpr base::Milliseconds kPause(2);
  for (const QDeadlineTimer end(limit); !end.hasExpired(); std::this_thread::sleep_for(kPause)) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    if (done()) return;
  }
}

}  // namespace desktop
