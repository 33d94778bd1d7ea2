#include "desktop/BoxWindow.hpp"

#include <gtest/gtest.h>

#include <QtWidgets/QLabel>

#include "support/desktop/WindowUser.hpp"

namespace {

class BoxWindow : public ::testing::Test {
 protected:
  support::Screen screen;
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop);
  support::User user{loop};
};

}  // namespace

TEST_F(BoxWindow, StaysUntilItIsRead) {
  std::string text;
  std::string title;
  bool timerRan = false;
  const auto timer = loop.makeTimer(base::Milliseconds(100), [&] { timerRan = true; });
  timer->enabled(true);
  user.when([&](QWidget&) { return timerRan; },
            [&](QWidget& window) {
              title = window.windowTitle().toStdString();
              text = window.findChild<QLabel*>("MessageText")->text().toStdString();
              support::ScreenShot("critical");
            })
      .click("&OK");
  desktop::ShowBox(*windows, base::BoxKind::kCritical, "Media Player",
                   "No house code is left for the devices");
  EXPECT_TRUE(user.finished());
  EXPECT_EQ(title, "Media Player");
  EXPECT_EQ(text, "No house code is left for the devices");
}

TEST_F(BoxWindow, GoesByKeyboard) {
  user.key("Return");
  desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Configure device Q1");
  EXPECT_TRUE(user.finished());
  user.key("Escape");
  desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "Configure device Q1");
  EXPECT_TRUE(user.finished());
}
