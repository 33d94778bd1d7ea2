// The popup window on screens whose dots are as large as ever, and half as large.
#include <QtWidgets/QLabel>

#include <cstdlib>

#include "support/desktop/PopupScene.hpp"

namespace {

/// How many dots an inch has, as the screen tells.
class PopupAt : public support::PopupScene, public ::testing::WithParamInterface<int> {
 protected:
  PopupAt()
      : PopupScene(false, {"-dpi", std::to_string(GetParam())}, [] {
          // Desktops say it here for all their programs.
          support::Process tell({"xprop", "-root", "-f", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER",
                                 "Xft.dpi:\t" + std::to_string(GetParam())});
          tell.wait();
        }) {}
  /// The least that readers need: letters of this many millimetres from top to bottom of a line.
  static constexpr double kReadable = 3;
  /// Whether all of a widget's text fits into it.
  static bool fits(const QLabel& label) {
    const QSize text = label.fontMetrics().size(Qt::TextSingleLine, label.text());
    return text.width() <= label.width() && text.height() <= label.height() + 1;
  }
};

}  // namespace

TEST_P(PopupAt, CanBeReadAndUsed) {
  show();
  view->transport({true, true, true, true, true, 61, 200, 40, false, "Dawn"});
  auto* title = pane().findChild<QLabel*>("Title");
  auto* time = pane().findChild<QLabel*>("Time");
  ASSERT_FALSE(title->text().isEmpty());
  const double dots = title->fontMetrics().height() * title->devicePixelRatioF();
  EXPECT_GE(dots / GetParam() * 25.4, kReadable) << dots << " dots";
  EXPECT_TRUE(fits(*title)) << title->fontMetrics().height() << " in " << title->height();
  // The row is laid out anew on the loop's next turn.
  EXPECT_TRUE(until([&] { return fits(*time); })) << time->width() << " by " << time->height();
  for (QWidget* each : pane().transport().findChildren<QWidget*>())
    EXPECT_TRUE(pane().transport().rect().contains(each->geometry())) << each->accessibleName().toStdString();
  pane().repaint();
  support::ScreenShot("popup-" + std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Dots, PopupAt, ::testing::Values(96, 192));

namespace {

/// A desktop whose user has everything twice as large.
class DoubledPopup : public support::PopupScene {
 protected:
  DoubledPopup() : PopupScene(false, {}, [] { ::setenv("QT_SCALE_FACTOR", "2", 1); }) {}
  void TearDown() override { ::unsetenv("QT_SCALE_FACTOR"); }
};

}  // namespace

TEST_F(DoubledPopup, TakesTwiceAsManyDots) {
  view->top(1500);
  view->left(1500);
  show();
  EXPECT_EQ(pane().size(), QSize(251, 114)) << "in the desktop's own measure";
  support::Process look({"xwininfo", "-id", std::to_string(view->handle())});
  look.wait();
  EXPECT_NE(look.output().find("Width: 502"), std::string::npos) << look.output();
  EXPECT_NE(look.output().find("Height: 228"), std::string::npos);
  EXPECT_EQ(view->top(), 1500);
  view->transport({true, true, true, true, true, 61, 200, 40, false, "A title"});
  support::ScreenShot("popup-doubled");
}
