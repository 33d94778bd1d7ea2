// The popup window under a window manager, and on screens with fine dots.
#include <glib.h>
#include <QtGui/QPalette>

#include <cstdlib>

#include "support/desktop/PopupScene.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ManagedPopup : public support::PopupScene {
 protected:
  /// What the window manager says of the window.
  std::string known(const std::string& property) {
    support::Process look({"xprop", "-id", std::to_string(view->handle()), property});
    look.wait();
    return look.output();
  }
  bool becomes(const std::string& property, const std::string& text) {
    return until([&] { return known(property).find(text) != std::string::npos; });
  }
  /// Whether its frame is there.
  bool framed() { return !pane().windowHandle()->frameMargins().isNull(); }
  QSize outside() { return pane().size().grownBy(pane().windowHandle()->frameMargins()); }
  support::WindowManager manager;
};

}  // namespace

TEST_F(ManagedPopup, IsAsLargeAsItIsToldWithItsFrame) {
  show();
  EXPECT_TRUE(until(
      [&] { return pane().frameGeometry() != pane().geometry() && pane().frameGeometry().width() == 251; }));
  layOut(212, true);
  EXPECT_GE(outside().height(), 212 + 200 + 52);
  EXPECT_LE(outside().height(), 212 + 200 + 52 + 20) << "no more than a large frame takes";
  support::ScreenShot("popup-managed");
}

TEST_F(ManagedPopup, ComesBackWhereItsUserHasPutIt) {
  show();
  tool({"windowmove", std::to_string(view->handle()), "400", "300"});
  ASSERT_TRUE(
      until([&] { return std::abs(pane().geometry().x() - 400) < 40 && pane().geometry().y() >= 300; }));
  loop.pump();
  const float top = view->top();
  const float left = view->left();
  view->hide();
  ASSERT_FALSE(view->visible());
  show();
  ASSERT_TRUE(until([&] { return framed(); }));
  EXPECT_NEAR(view->top(), top, 30);
  EXPECT_NEAR(view->left(), left, 30);
}

TEST_F(ManagedPopup, ItsCloseButtonIsAskedFirst) {
  showActive();
  tool({"key", "alt+F4"});
  if (!until([&] { return !journal.lines().empty(); })) FAIL() << "nothing was asked";
  EXPECT_EQ(journal.lines().front(), "query unload 0");
  EXPECT_TRUE(view->visible());
}

TEST_F(ManagedPopup, MinimisingItIsReported) {
  show();
  tool({"windowminimize", std::to_string(view->handle())});
  EXPECT_TRUE(reported("resize"));
  EXPECT_TRUE(view->minimised());
  view->hide();
  EXPECT_FALSE(view->visible());
  view->show();
  EXPECT_TRUE(until([&] { return !view->minimised() && pane().isVisible(); }));
}

TEST_F(ManagedPopup, WithAnIconItIsHiddenAltogether) {
  show();
  view->hide();
  EXPECT_FALSE(pane().isVisible());
  EXPECT_THAT(journal.lines(), IsEmpty()) << "that is not its user's doing";
}

TEST_F(ManagedPopup, WithoutAnIconItIsMinimisedAndComesBackFromTheTaskBar) {
  iconShown = false;
  show();
  view->hide();
  EXPECT_FALSE(view->visible()) << "as far as the house is concerned";
  EXPECT_TRUE(becomes("WM_STATE", "Iconic"));
  EXPECT_THAT(journal.lines(), IsEmpty());
  tool({"windowactivate", std::to_string(view->handle())});
  EXPECT_TRUE(reported("brought back"));
  view->show();
  EXPECT_TRUE(view->visible());
  EXPECT_TRUE(becomes("WM_STATE", "Normal"));
}

TEST_F(ManagedPopup, OnTopOfTheOthersAndBesideThem) {
  show();
  view->setWindowPos(-1, 2970, 83);
  EXPECT_TRUE(becomes("_NET_WM_STATE", "ABOVE"));
  EXPECT_TRUE(pane().isVisible());
  view->setWindowPos(-2, 2970, 83);
  EXPECT_TRUE(until([&] { return known("_NET_WM_STATE").find("ABOVE") == std::string::npos; }));
}

TEST_F(ManagedPopup, WakesNobodyWhileNothingHappens) {
  show();
  view->transport({});
  const auto planned = [] {
    GMainContext* context = g_main_context_default();
    EXPECT_TRUE(g_main_context_acquire(context));
    gint timeout = 0;
    std::array<GPollFD, 64> descriptors{};
    g_main_context_prepare(context, nullptr);
    g_main_context_query(context, G_MAXINT, &timeout, descriptors.data(), descriptors.size());
    g_main_context_release(context);
    return timeout;
  };
  // Qt looks through its cache of pictures once, half a minute behind the last one.
  EXPECT_TRUE(until([&] { return planned() == -1 || planned() > 20'000; }));
}

namespace {

/// A desktop whose things are twice as large.
class LargePopup : public support::PopupScene {
 protected:
  LargePopup() : PopupScene([] { ::setenv("QT_SCALE_FACTOR", "2", 1); }) {}
  void TearDown() override { ::unsetenv("QT_SCALE_FACTOR"); }
};

}  // namespace

TEST_F(LargePopup, TakesTwiceAsManyDots) {
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
  support::ScreenShot("popup-large");
}

TEST_F(LargePopup, DrawsItsButtonsInTheColoursThatTheyAreGiven) {
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
