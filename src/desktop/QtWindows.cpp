#include "desktop/QtWindows.hpp"

#include <QtCore/QDeadlineTimer>
#include <QtWidgets/QApplication>
#include <clocale>
#include <thread>

#include "desktop/Display.hpp"
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

}  // namespace

std::unique_ptr<QtWindows> QtWindows::open(bus::PollLoop& loop) {
  const auto display = Display::reach();
  if (!display) return nullptr;
  return std::unique_ptr<QtWindows>(new QtWindows(loop, display->platform()));
}

QtWindows::QtWindows(bus::PollLoop& loop, const std::string& platform) : loop_(loop) {
  qputenv("QT_QPA_PLATFORM", platform.c_str());
  qunsetenv("QT_NO_GLIB");                   // the loop knows how to wait for GLib's context
  qputenv("QT_XCB_GL_INTEGRATION", "none");  // no window is drawn by OpenGL, whose libraries are large
  const LocaleKept locale;
  application_ = std::make_unique<QApplication>(wordCount_, static_cast<char**>(words_));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setApplicationDisplayName("Media Player");
  ApplyLook(*application_);
  context_ = std::make_unique<MainContext>(loop_, [this] { work(); });
}

QtWindows::~QtWindows() = default;

void QtWindows::work() {
  ++depth_;
  QCoreApplication::processEvents();
  // Without a Qt loop nobody else does away with what Qt puts off to its loop's end.
  if (depth_ == 1) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  --depth_;
}

void QtWindows::waitUntil(const std::function<bool()>& done) {
  constexpr base::Milliseconds kLongestTurn = std::chrono::minutes(1);
  loop_.whileOpen([&] {
    while (!done()) loop_.turn(kLongestTurn);
  });
}

void QtWindows::drawUntil(const std::function<bool()>& done, base::Milliseconds limit) {
  constexpr base::Milliseconds kPause(2);
  for (const QDeadlineTimer end(limit); !end.hasExpired(); std::this_thread::sleep_for(kPause)) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    if (done()) return;
  }
}

void QtWindows::changed() { context_->ask(); }

}  // namespace desktop
