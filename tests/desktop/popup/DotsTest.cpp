// The popup window on screens whose dots are as large as ever, and half as large.
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStyle>

#include <cstdlib>
#include <tuple>

#include "support/desktop/OwnSession.hpp"
#include "support/desktop/PopupScene.hpp"
#include "support/desktop/Portal.hpp"

namespace {

/// A desktop that tells whether its user wants it dark.
class ToldColours : protected support::OwnSession {
 protected:
  explicit ToldColours(bool dark) : portal_(bus.address(), dark) {}

 private:
  support::Portal portal_;
};

/// How many dots an inch has, as the screen tells, and whether its user wants it dark.
class PopupAt : protected ToldColours,
                public support::PopupScene,
                public ::testing::WithParamInterface<std::tuple<int, bool>> {
 protected:
  PopupAt()
      : ToldColours(Dark()),
        PopupScene(false, {"-dpi", std::to_string(Dots())}, [] { support::TellDots(Dots()); }) {}
  static int Dots() { return std::get<0>(GetParam()); }
  static bool Dark() { return std::get<1>(GetParam()); }
  static std::string Shot(const std::string& name) {
    return name + "-" + std::to_string(Dots()) + (Dark() ? "-dark" : "");
  }
  /// How many millimetres a line of a widget's text has.
  static double line(const QWidget& widget) {
    return widget.fontMetrics().height() * widget.devicePixelRatioF() / Dots() * 25.4;
  }
  /// It has the colours that its user wants.
  bool dressed(const QWidget& widget) {
    return until([&] {
      const QColor ground(support::Drawn(support::ScreenShot(Shot("popup-ground")), widget).ground());
      return Dark() ? ground.lightness() < 60 : ground.lightness() > 215;
    });
  }
  /// The least that readers need: letters of this many millimetres from top to bottom of a line.
  static constexpr double kReadableLine = 3;
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
  EXPECT_GE(line(*title), kReadableLine);
  EXPECT_TRUE(fits(*title)) << title->fontMetrics().height() << " in " << title->height();
  // The row is laid out anew on the loop's next turn.
  EXPECT_TRUE(until([&] { return fits(*time); })) << time->width() << " by " << time->height();
  for (QWidget* each : pane().transport().findChildren<QWidget*>())
    EXPECT_TRUE(pane().transport().rect().contains(each->geometry())) << each->accessibleName().toStdString();
  ASSERT_TRUE(dressed(pane()));
  for (const QWidget* each : {static_cast<QWidget*>(title), static_cast<QWidget*>(time),
                              static_cast<QWidget*>(pane().findChild<QMenuBar*>())})
    EXPECT_TRUE(readable(Shot("popup"), *each)) << each->objectName().toStdString();
  const auto* more = named<QAbstractButton>("More");
  ASSERT_TRUE(more != nullptr && more->isVisible()) << "the bar has no room for all";
  EXPECT_TRUE(readable(Shot("popup"), *more));
  for (const auto* button : pane().transport().findChildren<QAbstractButton*>())
    EXPECT_TRUE(readable(Shot("popup"), *button)) << button->accessibleName().toStdString();
}

TEST_P(PopupAt, HasHandlesThatCanBeSeen) {
  show();
  view->transport({true, true, true, true, true, 61, 200, 40, false, "Dawn"});
  ASSERT_TRUE(dressed(pane()));
  for (const char* name : {"Position", "Volume"}) {
    const QSlider& slider = *named<QSlider>(name);
    const int length = slider.style()->pixelMetric(QStyle::PM_SliderLength, nullptr, &slider);
    const int left = QStyle::sliderPositionFromValue(slider.minimum(), slider.maximum(), slider.value(),
                                                     slider.width() - length);
    // What has been played, left of it, is seen anyway.
    const QRect rightHalf(left + length / 2, 0, length, slider.height());
    EXPECT_TRUE(readable(Shot("popup-handle"), slider, rightHalf)) << name;
  }
}

TEST_P(PopupAt, HasMenusAndListsThatCanBeRead) {
  for (std::int16_t i = 1; i <= 30; ++i) {
    menus.load("Album", i);
    menus.caption("Album", i, "Name " + std::to_string(i));
  }
  showActive();
  ASSERT_TRUE(dressed(pane()));
  QMenu& settings = *menu("&Settings");
  settings.popup(QPoint(50, 50));
  ASSERT_TRUE(until([&] { return seen(&settings); }));
  EXPECT_GE(line(settings), kReadableLine);
  EXPECT_TRUE(dressed(settings));
  for (QAction* action : settings.actions()) {
    if (action->isSeparator()) continue;
    EXPECT_TRUE(readable(Shot("popup-settings"), settings, settings.actionGeometry(action)))
        << action->text().toStdString();
  }
  constexpr int kBox = 26;
  const QRect loop = settings.actionGeometry(item(settings, "&Loop Mode"));
  EXPECT_TRUE(readable(Shot("popup-box"), settings, QRect(loop.topLeft(), QSize(kBox, loop.height()))))
      << "a box that nobody has checked";
  settings.hide();
  openAlbums();
  EXPECT_GE(line(list()), kReadableLine);
  EXPECT_TRUE(dressed(list()));
  for (int row = 0; row < 5; ++row) EXPECT_TRUE(rowReadable(Shot("popup-names"), row)) << row;
}

INSTANTIATE_TEST_SUITE_P(Dots, PopupAt, ::testing::Combine(::testing::Values(96, 192), ::testing::Bool()));

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
  EXPECT_TRUE(readable("popup-doubled", *pane().findChild<QLabel*>("Title")));
  EXPECT_TRUE(readable("popup-doubled", *pane().findChild<QMenuBar*>()));
}
