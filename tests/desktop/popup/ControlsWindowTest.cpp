// The popup window on a screen of its own, without a window manager.
#include "desktop/popup/ControlsWindow.hpp"

#include <QtCore/QBuffer>
#include <QtGui/QGuiApplication>
#include <QtGui/QTextDocument>
#include <QtGui/QWindow>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <csignal>
#include <limits>

#include "base/Failure.hpp"
#include "support/FailureNumber.hpp"
#include "support/desktop/PopupScene.hpp"

using support::FailureNumberOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class ControlsWindow : public support::PopupScene {
 protected:
  static std::string picture(int width, int height, const char* kind = "PNG") {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, kind);
    return bytes.toStdString();
  }
  static ui::TransportShown playing() { return {true, true, true, true, true, 61, 200, 40, false, "Dawn"}; }
  /// The window while something plays and the mouse holds the middle of the position's slider.
  const QSlider* held() {
    show();
    view->transport(playing());
    const auto* slider = named<QSlider>("Position");
    if (slider == nullptr) return nullptr;
    const QPoint at = middleOf(*slider);
    tool({"mousemove", std::to_string(at.x()), std::to_string(at.y()), "mousedown", "1"});
    EXPECT_TRUE(until([&] { return slider->isSliderDown(); }));
    return slider;
  }
};

}  // namespace

TEST_F(ControlsWindow, IsAsLargeAsItIsTold) {
  show();
  EXPECT_EQ(pane().size(), QSize(251, 62 + 52));
  layOut(212, false);
  EXPECT_EQ(pane().size(), QSize(251, 212 + 52));
  EXPECT_TRUE(pane().picture().isVisible());
  EXPECT_EQ(pane().picture().height(), 150);
  layOut(62, true);
  EXPECT_EQ(pane().size(), QSize(251, 62 + 200 + 52));
  EXPECT_FALSE(pane().picture().isVisible());
}

TEST_F(ControlsWindow, StandsWhereItIsPut) {
  view->top(1500);
  view->left(3000);
  show();
  EXPECT_EQ(pane().pos(), QPoint(200, 100));
  EXPECT_EQ(view->top(), 1500);
  EXPECT_EQ(view->left(), 3000);
  EXPECT_EQ(view->screenWidth(), 1280 * 15);
  EXPECT_EQ(view->screenHeight(), 800 * 15);
  view->hide();
  EXPECT_FALSE(view->visible());
  EXPECT_EQ(view->top(), 1500);
  show();
  EXPECT_EQ(pane().pos(), QPoint(200, 100)) << "it comes back there";
}

TEST_F(ControlsWindow, APlaceThatIsNoneIsBroughtOntoTheScreen) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  constexpr float kEndless = std::numeric_limits<float>::infinity();
  for (const float place : {-100000.0F, 1e30F, kEndless, -kEndless, kNone}) {
    view->top(place);
    view->left(place);
    show();
    EXPECT_TRUE(QRect(0, 0, 1280, 800).contains(pane().frameGeometry())) << place;
    view->hide();
  }
}

TEST_F(ControlsWindow, APlaceThatIsPartlyOffTheScreenIsKept) {
  view->top(1500);
  view->left(-1500);
  show();
  EXPECT_EQ(pane().pos(), QPoint(-100, 100));
}

TEST_F(ControlsWindow, IsNotShownBehindAModalWindow) {
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  EXPECT_EQ(FailureNumberOf([&] { view->show(); }), base::number::kWindowNotShown);
  EXPECT_FALSE(view->visible());
  dialog.hide();
  show();
  EXPECT_TRUE(view->visible());
}

TEST_F(ControlsWindow, EachButtonReportsItsClick) {
  show();
  view->transport(playing());
  for (const auto& [name, report] :
       {std::pair("Pause", "play or pause"), std::pair("Stop", "stop"), std::pair("Previous", "previous"),
        std::pair("Next", "next"), std::pair("Mute", "mute")}) {
    auto* button = named<QAbstractButton>(name);
    ASSERT_NE(button, nullptr) << name;
    clickAt(middleOf(*button));
    EXPECT_TRUE(reported(report)) << name;
  }
  EXPECT_TRUE(readable("popup", *pane().findChild<QLabel*>("Title")));
  EXPECT_TRUE(readable("popup", *pane().findChild<QMenuBar*>()));
  for (const auto* button : pane().transport().findChildren<QAbstractButton*>())
    EXPECT_TRUE(readable("popup", *button)) << button->accessibleName().toStdString();
}

TEST_F(ControlsWindow, ButtonsAreCalledWhatTheyDo) {
  show();
  view->transport(playing());
  EXPECT_NE(named<QAbstractButton>("Pause"), nullptr);
  EXPECT_EQ(named<QAbstractButton>("Play"), nullptr);
  ui::TransportShown still;
  still.mute = true;
  view->transport(still);
  ASSERT_NE(named<QAbstractButton>("Play"), nullptr);
  EXPECT_FALSE(named<QAbstractButton>("Play")->isEnabled());
  EXPECT_FALSE(named<QAbstractButton>("Next")->isEnabled());
  EXPECT_NE(named<QAbstractButton>("Unmute"), nullptr);
}

TEST_F(ControlsWindow, EveryControlHasAName) {
  show();
  int controls = 0;
  for (QWidget* each : pane().findChildren<QWidget*>()) {
    if (each->focusPolicy() == Qt::NoFocus || !each->isVisible() || each->inherits("QMenuBar")) continue;
    EXPECT_FALSE(each->accessibleName().isEmpty()) << each->metaObject()->className();
    ++controls;
  }
  EXPECT_EQ(controls, 7);
}

TEST_F(ControlsWindow, AClickIntoTheTitleSeeksThere) {
  show();
  view->transport(playing());
  auto* slider = named<QSlider>("Position");
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ(slider->value(), 61);
  EXPECT_THAT(journal.with("seek"), IsEmpty()) << "being told is no seeking";
  clickAt(slider->mapToGlobal(QPoint(slider->width() * 3 / 4, slider->height() / 2)));
  ASSERT_TRUE(until([&] { return !journal.with("seek").empty(); }));
  // Whoever heard of the button's going up had heard of its going down before.
  ASSERT_THAT(journal.with("seek"), SizeIs(1));
  EXPECT_NEAR(std::stoi(journal.with("seek").front().substr(5)), 150, 8);
  clickAt(middleOf(*named<QAbstractButton>("Stop")));
  ASSERT_TRUE(reported("stop"));
  EXPECT_THAT(journal.with("seek"), SizeIs(1)) << "and nothing comes behind it";
}

TEST_F(ControlsWindow, AClickAnywhereIntoAShortTitleSeeks) {
  show();
  ui::TransportShown shown = playing();
  shown.duration = 10;
  shown.position = 3;
  view->transport(shown);
  auto* slider = named<QSlider>("Position");
  ASSERT_NE(slider, nullptr);
  for (const QPoint& at :
       {QPoint(15, 7), QPoint(slider->width() - 14, 7), QPoint(40, slider->height() - 1)}) {
    journal.clear();
    clickAt(slider->mapToGlobal(at));
    EXPECT_TRUE(until([&] { return !journal.with("seek").empty(); })) << at.x();
    // Whoever heard of the next click had heard of the whole first one.
    clickAt(middleOf(*named<QAbstractButton>("Stop")));
    ASSERT_TRUE(reported("stop"));
    EXPECT_THAT(journal.with("seek"), SizeIs(1)) << at.x();
    EXPECT_FALSE(slider->isSliderDown()) << at.x();
  }
}

TEST_F(ControlsWindow, ASliderThatAQuestionCutsOffFollowsThePlayerAgain) {
  const QSlider* slider = held();
  ASSERT_TRUE(slider != nullptr && slider->isSliderDown());
  QDialog question;
  question.setModal(true);
  question.show();
  ASSERT_TRUE(until([&] { return question.windowHandle()->isExposed(); }));
  tool({"mouseup", "1"});
  ASSERT_TRUE(until([] { return QGuiApplication::mouseButtons() == Qt::NoButton; }));
  question.hide();
  ui::TransportShown later = playing();
  later.position = 90;
  view->transport(later);
  EXPECT_FALSE(slider->isSliderDown());
  EXPECT_EQ(slider->value(), 90);
  EXPECT_THAT(journal.with("seek"), IsEmpty());
}

TEST_F(ControlsWindow, ASliderThatIsDraggedIsToldWhereItIsLetGo) {
  show();
  view->transport(playing());
  auto* slider = named<QSlider>("Position");
  const auto at = [&](int part) {
    return slider->mapToGlobal(QPoint(slider->width() * part / 4, slider->height() / 2));
  };
  const auto go = [&](QPoint to, const std::string& then) {
    tool({"mousemove", std::to_string(to.x()), std::to_string(to.y()), then, "1"});
  };
  go(at(1), "mousedown");
  ASSERT_TRUE(until([&] { return slider->isSliderDown(); }));
  tool({"mousemove", std::to_string(at(2).x()), std::to_string(at(2).y())});
  EXPECT_TRUE(until([&] { return std::abs(slider->value() - 100) < 8; }));
  EXPECT_THAT(journal.with("seek"), IsEmpty());
  go(at(3), "mouseup");
  ASSERT_TRUE(until([&] { return !journal.with("seek").empty(); }));
  EXPECT_NEAR(std::stoi(journal.with("seek").front().substr(5)), 150, 8);
}

TEST_F(ControlsWindow, ASliderThatIsHeldWhenItsTitleEndsSeeksNowhereInTheNext) {
  const QSlider* slider = held();
  ASSERT_TRUE(slider != nullptr && slider->isSliderDown());
  ui::TransportShown next = playing();
  next.title = "Dusk";
  next.position = 1;
  view->transport(next);
  EXPECT_EQ(slider->value(), 1) << "it follows the next one";
  tool({"mouseup", "1"});
  clickAt(middleOf(*named<QAbstractButton>("Stop")));
  ASSERT_TRUE(reported("stop"));
  EXPECT_THAT(journal.with("seek"), IsEmpty());
}

TEST_F(ControlsWindow, ASliderThatIsHeldWhenTheWindowGoesIsHeldNoMore) {
  const QSlider* slider = held();
  ASSERT_TRUE(slider != nullptr && slider->isSliderDown());
  view->hide();
  EXPECT_FALSE(slider->isSliderDown());
  EXPECT_THAT(journal.with("seek"), IsEmpty());
  tool({"mouseup", "1"});
}

TEST_F(ControlsWindow, WhatHasNoEndCantBeSoughtIn) {
  show();
  ui::TransportShown station = playing();
  station.duration = 0;
  view->transport(station);
  EXPECT_FALSE(named<QSlider>("Position")->isEnabled());
  EXPECT_EQ(pane().findChild<QLabel*>("Time")->text(), "1:01");
}

TEST_F(ControlsWindow, TheVolumeFollowsItsSlider) {
  showActive();
  view->transport(playing());
  auto* slider = named<QSlider>("Volume");
  EXPECT_EQ(slider->value(), 40);
  slider->setFocus();
  tool({"key", "Home"});
  EXPECT_TRUE(reported("volume 0"));
}

TEST_F(ControlsWindow, TimesAndTitlesAreShownAsTheyAre) {
  show();
  ui::TransportShown shown = playing();
  shown.position = 3725;
  shown.duration = 7322.9;
  shown.title = "<b>Salt & Pepper</b>\nמלח";
  view->transport(shown);
  EXPECT_EQ(pane().findChild<QLabel*>("Time")->text(), "1:02:05 / 2:02:02");
  EXPECT_EQ(pane().findChild<QLabel*>("Title")->accessibleName(),
            QString::fromUtf8("<b>Salt & Pepper</b> מלח"));
  shown.title = std::string(10'000, 'x');
  shown.position = std::numeric_limits<double>::quiet_NaN();
  shown.duration = std::numeric_limits<double>::infinity();
  view->transport(shown);
  EXPECT_EQ(pane().findChild<QLabel*>("Title")->accessibleName(), QString(300, 'x') + QChar(0x2026));
  EXPECT_EQ(pane().width(), 251);
  EXPECT_EQ(pane().findChild<QLabel*>("Time")->text(), "");
}

TEST_F(ControlsWindow, TheTitlesTipSaysTheTitleLetterForLetter) {
  show();
  ui::TransportShown shown = playing();
  for (const char* title : {"Salt & Pepper", "<b>Salt</b> &amp; Pepper", "a < b", "Dawn", "Live  1970"}) {
    shown.title = title;
    view->transport(shown);
    const QString tip = pane().findChild<QLabel*>("Title")->toolTip();
    ASSERT_TRUE(Qt::mightBeRichText(tip)) << title;
    QTextDocument read;
    read.setHtml(tip);
    EXPECT_EQ(read.toPlainText().toStdString(), title);
  }
  view->transport({});
  EXPECT_EQ(pane().findChild<QLabel*>("Title")->toolTip(), "");
}

TEST_F(ControlsWindow, ClosingItIsAskedFirst) {
  show();
  pane().close();
  EXPECT_THAT(journal.lines(), ElementsAre("query unload 0"));
  EXPECT_TRUE(view->visible());
}

TEST_F(ControlsWindow, ADoubleClickOnTheCoverAndOnThePicture) {
  QApplication::setDoubleClickInterval(10 * 60 * 1000);  // a slow machine lets both clicks be far apart
  show();
  view->image(picture(600, 600));
  layOut(212, true);
  auto* cover = pane().findChild<QLabel*>("Image1");
  ASSERT_TRUE(cover->isVisible());
  clickAt(middleOf(*cover), 2);
  EXPECT_TRUE(reported("double click on Image1"));
  const QPoint middle = middleOf(*cover);
  EXPECT_TRUE(
      until([&] { return support::ScreenShot("popup-cover").pixelColor(middle) == QColor(Qt::darkGreen); }));
  tool({"mousemove", "1000", "700"});
  clickAt(middleOf(pane().picture()), 2);
  EXPECT_TRUE(reported("double click on the player"));
}

TEST_F(ControlsWindow, ACoverOfAnySizeFitsItsRoom) {
  for (const QSize size : {QSize(4000, 3000), QSize(10, 1000), QSize(3, 3)}) {
    view->image(picture(size.width(), size.height()));
    const QPixmap shown = pane().findChild<QLabel*>("Image1")->pixmap();
    EXPECT_EQ(shown.size(), size.scaled(251, 200, Qt::KeepAspectRatio)) << size.width();
  }
}

TEST_F(ControlsWindow, ACoverThatIsToBeTurnedFitsItsRoomAfterwards) {
  const std::string jpeg = picture(800, 400, "JPG");
  // A quarter turn to the right, as cameras note it.
  const std::string turn(
      "\xff\xe1\0\x22"
      "Exif\0\0"
      "MM\0\x2a\0\0\0\x08"
      "\0\x01"
      "\x01\x12\0\x03\0\0\0\x01\0\x06\0\0"
      "\0\0\0\0",
      36);
  view->image(jpeg.substr(0, 2) + turn + jpeg.substr(2));
  EXPECT_EQ(pane().findChild<QLabel*>("Image1")->pixmap().size(), QSize(100, 200));
}

TEST_F(ControlsWindow, ACoverThatIsAllBreadthIsShownAsALine) {
  view->image(picture(4000, 1));
  EXPECT_EQ(pane().findChild<QLabel*>("Image1")->pixmap().size(), QSize(251, 1));
  view->image(picture(1, 4000));
  EXPECT_EQ(pane().findChild<QLabel*>("Image1")->pixmap().size(), QSize(1, 200));
}

TEST_F(ControlsWindow, WhatIsNoPictureIsRefused) {
  for (const std::string& bytes : {std::string(), std::string("no picture"), picture(20, 20).substr(0, 30)})
    EXPECT_EQ(FailureNumberOf([&] { view->image(bytes); }), 481) << bytes.size();
}

TEST_F(ControlsWindow, DrawsItsButtonsInTheColoursThatTheyAreGiven) {
  show();
  view->transport({false, true, true, true, true, 0, 200, 40, false, "A title"});
  auto* play = named<QAbstractButton>("Play");
  ASSERT_NE(play, nullptr);
  for (const Qt::GlobalColor ink : {Qt::white, Qt::black, Qt::red}) {
    QPalette palette = play->palette();
    palette.setColor(QPalette::ButtonText, ink);
    play->setPalette(palette);
    const QImage drawn = play->grab().toImage();
    EXPECT_EQ(drawn.pixelColor(drawn.rect().center()), QColor(ink)) << "the sign itself";
  }
}

TEST_F(ControlsWindow, WhereNobodyMinimisesWindowsItIsHiddenAltogether) {
  iconShown = false;
  show();
  view->hide();
  EXPECT_FALSE(pane().isVisible());
  show();
  EXPECT_TRUE(view->visible());
}

TEST_F(ControlsWindow, WithoutItsScreenItKeepsWhatItWas) {
  view->top(1500);
  view->left(3000);
  show();
  screen.end(SIGKILL);
  ASSERT_TRUE(until([&] { return windows->gone(); }));
  EXPECT_TRUE(view->visible());
  EXPECT_EQ(view->handle(), 0);
  EXPECT_EQ(view->top(), 1500);
  view->transport(playing());
  layOut(212, true);
  view->popUpMedia(2);
  view->hide();
  EXPECT_FALSE(view->visible());
  view->show();
  EXPECT_TRUE(view->visible()) << "nothing is to wait for it";
}
