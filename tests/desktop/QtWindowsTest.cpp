#include "desktop/QtWindows.hpp"

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <clocale>

#include "desktop/BoxWindow.hpp"
#include "support/BusPeer.hpp"
#include "support/WindowUser.hpp"

namespace {

class QtWindows : public ::testing::Test {
 protected:
  /// How often the loop wakes up in a time.
  int wakeUpsIn(base::Milliseconds time) {
    int turns = 0;
    for (const auto end = loop.now() + time; loop.now() < end; ++turns) loop.turn(end - loop.now());
    return turns;
  }
  /// Lets what has begun come to its end.
  void settle() {
    while (wakeUpsIn(std::chrono::milliseconds(300)) > 2) {
    }
  }

  support::Screen screen;
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop);
};

}  // namespace

TEST_F(QtWindows, AnIdleDesktopWakesNobody) {
  settle();
  EXPECT_LE(wakeUpsIn(std::chrono::seconds(2)), 2);
}

TEST_F(QtWindows, AnIdleDesktopWakesNobodyBehindAWindowEither) {
  {
    support::User user(loop);
    user.key("Return");
    desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Read");
  }
  settle();
  EXPECT_LE(wakeUpsIn(std::chrono::seconds(2)), 2);
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
  settle();
  EXPECT_LE(wakeUpsIn(std::chrono::seconds(1)), 2);
}

TEST_F(QtWindows, WorkPostedByAnotherThreadRunsOnTheLoop) {
  bool ran = false;
  settle();
  std::thread other([&] {
    QMetaObject::invokeMethod(
        qApp, [&] { ran = true; }, Qt::QueuedConnection);
  });
  const auto start = loop.now();
  while (!ran && loop.now() - start < std::chrono::seconds(20)) loop.turn(std::chrono::seconds(20));
  other.join();
  EXPECT_TRUE(ran);
  EXPECT_LT((loop.now() - start).count(), 10'000);
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
