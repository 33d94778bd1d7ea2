#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <thread>
#include <utility>

#include "desktop/BoxWindow.hpp"
#include "desktop/MsgFormWindow.hpp"
#include "desktop/ProgBarWindow.hpp"
#include "support/BusPeer.hpp"
#include "support/FakeHost.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"
#include "support/desktop/WindowUser.hpp"
#include "support/faults/InChild.hpp"
#include "ui/myMsgForm.hpp"

namespace {

/// A screen that goes; what waits for its windows goes on.
class ScreenGone : public ::testing::TestWithParam<int> {
 protected:
  void end() { screen.end(GetParam()); }
  bool isTold() {
    return support::TurnUntil(loop, [&] { return told > 0; });
  }

  support::Screen screen;
  bus::PollLoop loop;
  int told = 0;
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop, [this] { ++told; });
  support::User user{loop};
};

}  // namespace

TEST_P(ScreenGone, IsToldOnceAndNothingIsDoneToWindowsAnyMore) {
  desktop::ProgBarWindow progress(*windows);
  progress.show();
  end();
  EXPECT_TRUE(isTold());
  EXPECT_TRUE(windows->gone());
  bool done = false;
  EXPECT_FALSE(windows->enter([&] { done = true; }));
  EXPECT_FALSE(done);
  progress.value(50);
  progress.refresh();
  progress.place(1, 1);
  progress.hide();
  EXPECT_FALSE(progress.visible());
  EXPECT_EQ(progress.screenWidth(), 0);
  EXPECT_EQ(progress.handle(), 0);
  loop.pump();
  EXPECT_EQ(told, 1);
}

TEST_P(ScreenGone, ABoxIsNotRead) {
  user.act([&](QWidget&) { end(); });
  EXPECT_FALSE(desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Configure device Q1"));
  EXPECT_TRUE(isTold());
  EXPECT_FALSE(desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Configure device Q2"));
}

TEST_P(ScreenGone, ATimedMessageIsLeftInTheLog) {
  support::Journal journal;
  plugin::HostServices services{loop};
  services.HostCallback = std::make_shared<support::FakeHost>(journal);
  services.Host = services.HostCallback;
  desktop::MsgFormWindow view(*windows);
  ui::myMsgForm form(view, services, loop);
  user.act([&](QWidget&) { end(); });
  EXPECT_EQ(form.ShowTimedMessage("Error!", "What happened", 30000), 2);
  EXPECT_TRUE(journal.has(R"(WriteLog("Warning", "Media Player: Error! What happened"))"))
      << journal.lines().back();
  journal.clear();
  EXPECT_EQ(form.ShowTimedMessage("Error!", "What else happened", 30000), 2);
  EXPECT_FALSE(journal.has("forcefront(0)"));
}

TEST_P(ScreenGone, OutOfAWindowsEventToo) {
  bool read = true;
  QTimer::singleShot(0, [&] {  // an event of Qt's own, which goes on when the box has ended
    user.act([&](QWidget&) { end(); });
    read = desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Configure device Q1");
  });
  EXPECT_TRUE(isTold());
  EXPECT_FALSE(read);
}

/// Qt finds it out itself when the screen goes while it draws.
class ScreenGoneInTheMiddle : public ::testing::TestWithParam<int> {};

TEST_P(ScreenGoneInTheMiddle, OfDrawingLetsTheProcessLive) {
  for (int round = 0; round < 6; ++round) {
    EXPECT_TRUE(support::InChild([&] {
      const support::Screen other;
      bus::PollLoop own;
      bool gone = false;
      const auto drawn = support::OpenDesktop(own, [&] { gone = true; });
      desktop::ProgBarWindow progress(*drawn);
      progress.show();
      int drawings = 0;
      std::atomic<bool> ends = false;
      std::thread killer([&] {
        while (!ends) std::this_thread::yield();
        other.end(GetParam());
      });
      for (const auto end = own.now() + std::chrono::minutes(2); !gone && own.now() < end;) {
        progress.value(static_cast<float>(++drawings % 100));
        progress.refresh();
        if (drawings == 20 + 7 * round) ends = true;
        if (drawn->gone()) own.pump();
      }
      killer.join();
      EXPECT_TRUE(gone);
    })) << round;
  }
}

TEST(ScreenGoneBeforeQt, HasFoundItIsAsNone) {
  EXPECT_TRUE(support::InChild([] {
    const support::Screen screen;
    bus::PollLoop loop;
    int told = 0;
    auto display = desktop::Display::reach(desktop::Display::Kind::kX);
    ASSERT_TRUE(display);
    screen.end();
    ASSERT_TRUE(support::Eventually([&] { return display->gone(); }));
    desktop::WindowsParts parts{loop, std::move(*display), [&] { ++told; }};
    EXPECT_EQ(desktop::QtWindows::open(std::move(parts)), nullptr);
    EXPECT_TRUE(support::TurnUntil(loop, [&] { return told == 1; }));

    // Another screen comes too late: what Qt has begun is never taken up again.
    const support::Screen other;
    auto second = desktop::Display::reach(desktop::Display::Kind::kX);
    ASSERT_TRUE(second);
    EXPECT_EQ(desktop::QtWindows::open({loop, std::move(*second), [&] { ++told; }}), nullptr);
    loop.pump();
    EXPECT_EQ(told, 1);
  }));
}

/// Wayland's desktop is read by threads of Qt's own, which end the process when it breaks.
class WaylandGone : public ::testing::TestWithParam<int> {};

TEST_P(WaylandGone, LetsTheProcessLive) {
  for (int round = 0; round < 5; ++round) {
    EXPECT_TRUE(support::InChild([] {
      const support::TempFolder runtime;
      ::setenv("XDG_RUNTIME_DIR", runtime.path().c_str(), 1);
      ::setenv("WAYLAND_DISPLAY", "test", 1);
      for (const char* name : {"DISPLAY", "QT_QPA_PLATFORM"}) ::unsetenv(name);
      const support::Process weston(
          {"weston", "--backend=headless-backend.so", "--socket=test", "--idle-time=0"});
      std::optional<desktop::Display> display;
      ASSERT_TRUE(support::Eventually(
          [&] { return (display = desktop::Display::reach(desktop::Display::Kind::kWayland)).has_value(); }));
      bus::PollLoop loop;
      int told = 0;
      const auto windows = desktop::QtWindows::open({loop, std::move(*display), [&] { ++told; }});
      ASSERT_NE(windows, nullptr);
      desktop::ProgBarWindow progress(*windows);
      progress.show();
      progress.refresh();
      weston.signal(GetParam());
      EXPECT_TRUE(support::TurnUntil(loop, [&] { return told == 1; }));
      EXPECT_TRUE(windows->gone());
      progress.hide();
      for (int i = 0; i < 20; ++i) loop.turn(base::Milliseconds(10));
    })) << round;
  }
}

INSTANTIATE_TEST_SUITE_P(Signals, WaylandGone, ::testing::Values(SIGTERM, SIGKILL),
                         [](const auto& signal) { return signal.param == SIGTERM ? "Closing" : "Broken"; });
INSTANTIATE_TEST_SUITE_P(Signals, ScreenGone, ::testing::Values(SIGTERM, SIGKILL),
                         [](const auto& signal) { return signal.param == SIGTERM ? "Closing" : "Broken"; });
INSTANTIATE_TEST_SUITE_P(Signals, ScreenGoneInTheMiddle, ::testing::Values(SIGTERM, SIGKILL),
                         [](const auto& signal) { return signal.param == SIGTERM ? "Closing" : "Broken"; });
