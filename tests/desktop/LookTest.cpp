// The colours of windows, as the desktop wants them.
#include <QtWidgets/QLabel>

#include <cstdlib>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/desktop/Portal.hpp"
#include "support/desktop/WindowUser.hpp"

namespace {

class Look : public ::testing::Test {
 protected:
  Look() { ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1); }
  void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }
  void open() {
    windows = support::OpenDesktop(loop);
    windows->enter([&] {
      window = std::make_unique<QLabel>();
      window->resize(300, 200);
      window->show();
    });
    ASSERT_TRUE(support::TurnUntil(loop, [] { return support::OpenWindow() != nullptr; }));
  }
  /// What the screen shows becomes so.
  bool becomes(bool dark) {
    return support::TurnUntil(loop, [&] {
      const QColor seen = support::ScreenShot(dark ? "look-dark" : "look-light").pixelColor(150, 100);
      return dark ? seen.lightness() < 40 && seen != Qt::black : seen.lightness() > 215;
    });
  }

  support::Screen screen;
  support::BusDaemon bus;
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows;
  std::unique_ptr<QLabel> window;
};

}  // namespace

TEST_F(Look, IsLightWhereNobodySaysOtherwise) {
  open();
  EXPECT_TRUE(becomes(false));
}

TEST_F(Look, IsDarkWhereTheDesktopsSettingsSaySo) {
  const support::Portal portal(bus.address(), true);
  open();
  EXPECT_TRUE(becomes(true));
}

TEST_F(Look, FollowsADesktopThatTurnsDarkAndLightAgain) {
  support::Portal portal(bus.address(), false);
  open();
  EXPECT_TRUE(becomes(false));
  portal.turnDark(true);
  EXPECT_TRUE(becomes(true));
  portal.turnDark(false);
  EXPECT_TRUE(becomes(false));
}
