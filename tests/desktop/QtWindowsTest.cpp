#include "desktop/QtWindows.hpp"

#include <glib.h>
#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <array>
#include <clocale>

#include "desktop/BoxWindow.hpp"
#include "support/BusPeer.hpp"
#include "support/desktop/WindowUser.hpp"

namespace {

class QtWindows : public ::testing::Test {
 protected:
  /// In how many milliseconds Qt wants to be woken; -1 for never.
  static int plannedWakeUp() {
    GMainContext* context = g_main_context_default();
    EXPECT_TRUE(g_main_context_acquire(context));
    gint timeout = 0;
    std::array<GPollFD, 64> descriptors{};
    g_main_context_prepare(context, nullptr);
    g_main_context_query(context, G_MAXINT, &timeout, descriptors.data(), descriptors.size());
    g_main_context_release(context);
    return timeout;
  }
  /// Whether what has begun comes to its end, and nothing more is to be done.
  bool sleeps() {
    return support::TurnUntil(loop, [] { return plannedWakeUp() == -1; });
  }

  support::Screen screen;
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop);
};

}  // namespace

TEST_F(QtWindows, AnIdleDesktopWakesNobody) { EXPECT_TRUE(sleeps()); }

TEST_F(QtWindows, AnIdleDesktopWakesNobodyBehindAWindowEither) {
  {
    support::User user(loop);
    user.key("Return");
    desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Read");
  }
  EXPECT_TRUE(sleeps());
}

TEST_F(QtWindows, QtsOwnTimersRunOnTheLoop) {
  int fired = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++fired; });
  timer.start(20);
  const auto start = loop.now();
  EXPECT_TRUE(support::TurnUntil(loop, [&] { return fired >= 5; }));
  EXPECT_GE((loop.now() - start).count(), 80);
  timer.stop();
  EXPECT_TRUE(sleeps());
}

TEST_F(QtWindows, WorkPostedByAnotherThreadRunsOnTheLoop) {
  bool ran = false;
  ASSERT_TRUE(sleeps());
  std::thread other([&] {
    QMetaObject::invokeMethod(
        qApp, [&] { ran = true; }, Qt::QueuedConnection);
  });
  const auto start = loop.now();
  while (!ran) loop.turn(std::chrono::hours(1));
  other.join();
  EXPECT_LT(loop.now() - start, std::chrono::seconds(55));  // by itself the loop would look after a minute
}

TEST_F(QtWindows, TheProcessKeepsItsLocale) { EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C"); }

TEST_F(QtWindows, AWindowThatIsPutOffToTheEndGoes) {
  auto* window = new QWidget;
  bool gone = false;
  QObject::connect(window, &QObject::destroyed, [&] { gone = true; });
  window->show();
  window->deleteLater();
  EXPECT_TRUE(support::TurnUntil(loop, [&] { return gone; }));
}
