// The popup window under a window manager, and on screens with fine dots.
#include <glib.h>
#include <csignal>
#include <cstdio>

#include "desktop/BoxWindow.hpp"

#include "support/desktop/PopupScene.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ManagedPopup : public support::PopupScene {
 protected:
  ManagedPopup() : PopupScene(true) {
    view->top(300 * 15);
    view->left(300 * 15);
  }
  /// What the window manager says of the window.
  std::string known(const std::string& property) {
    support::Process look({"xprop", "-id", std::to_string(view->handle()), property});
    look.wait();
    return look.output();
  }
  bool becomes(const std::string& property, const std::string& text) {
    return until([&] { return known(property).find(text) != std::string::npos; });
  }
  /// Also as far as the window itself knows: a manager's news that nobody has read before the next may be
  /// missed.
  bool isInTheTaskBar() {
    const bool there = becomes("WM_STATE", "Iconic") && becomes("_NET_WM_STATE", "HIDDEN");
    windows->enter([] { QGuiApplication::sync(); });
    return there;
  }
  /// Whether its frame is there.
  bool framed() { return !pane().windowHandle()->frameMargins().isNull(); }
  QSize outside() { return pane().size().grownBy(pane().windowHandle()->frameMargins()); }
  /// Its user takes it there by its frame.
  void moveTo(int x, int y) {
    tool({"windowmove", std::to_string(view->handle()), std::to_string(x), std::to_string(y)});
    ASSERT_TRUE(until([&] {
      return std::abs(pane().geometry().x() - x) < 40 && std::abs(pane().geometry().y() - y) < 40;
    }));
  }
  void minimiseByFrame() { tool({"windowminimize", std::to_string(view->handle())}); }
};

}  // namespace

TEST_F(ManagedPopup, IsAsLargeAsItIsToldWithItsFrame) {
  show();
  EXPECT_TRUE(until(
      [&] { return pane().frameGeometry() != pane().geometry() && pane().frameGeometry().width() == 251; }));
  layOut(212, true);
  EXPECT_GE(outside().height(), 212 + 200 + 52);
  EXPECT_LE(outside().height(), 212 + 200 + 52 + 20) << "no more than a large frame takes";
  EXPECT_TRUE(readable("popup-managed", *pane().findChild<QMenuBar*>()));
}

TEST_F(ManagedPopup, StandsWhereItWasPutWithItsFrameAlsoWhenItHadAHandleBefore) {
  ASSERT_NE(view->handle(), 0);
  view->top(200 * 15);
  view->left(250 * 15);
  show();
  ASSERT_TRUE(until([&] { return framed(); }));
  EXPECT_TRUE(until([&] { return pane().pos() == QPoint(250, 200); }))
      << pane().pos().x() << " " << pane().pos().y();
  layOut(212, true);
  EXPECT_EQ(view->top(), 200 * 15) << "or it would climb by its title at each start";
  EXPECT_EQ(view->left(), 250 * 15);
}

TEST_F(ManagedPopup, ComesBackWhereItsUserHasPutIt) {
  show();
  moveTo(400, 330);
  ASSERT_TRUE(until([&] { return framed(); }));
  const float top = view->top();
  const float left = view->left();
  EXPECT_GT(top, 4500) << "it has been moved";
  // Again and again, so that a place that is off by a frame each time is seen.
  for (int i = 0; i < 5; ++i) {
    view->hide();
    ASSERT_FALSE(view->visible());
    show();
    ASSERT_TRUE(until([&] { return view->top() == top && view->left() == left; }))
        << i << ": " << view->top() << " " << view->left() << " for " << top << " " << left;
  }
}

TEST_F(ManagedPopup, ComesBackWhereItsUserHasPutItBeforeMinimisingIt) {
  show();
  moveTo(400, 330);
  ASSERT_TRUE(until([&] { return framed(); }));
  const QPoint place = pane().pos();
  minimiseByFrame();
  ASSERT_TRUE(reported("resize"));
  view->hide();
  EXPECT_EQ(view->left(), place.x() * 15);
  EXPECT_EQ(view->top(), place.y() * 15);
  show();
  EXPECT_TRUE(until([&] { return pane().pos() == place; })) << pane().pos().x() << " " << pane().pos().y();
}

TEST_F(ManagedPopup, KeepsWhereItsUserHasPutItWhenTheScreenGoes) {
  show();
  moveTo(400, 330);
  ASSERT_TRUE(until([&] { return framed(); }));
  const QPoint place = pane().pos();
  screen.end(SIGKILL);
  ASSERT_TRUE(until([&] { return windows->gone(); }));
  EXPECT_EQ(view->left(), place.x() * 15);
  EXPECT_EQ(view->top(), place.y() * 15);
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
  minimiseByFrame();
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
  EXPECT_TRUE(until([&] { return !pane().isVisible(); }));
  EXPECT_THAT(journal.lines(), IsEmpty()) << "that is not its user's doing";
}

TEST_F(ManagedPopup, WithoutAnIconItIsMinimisedAndComesBackFromTheTaskBar) {
  iconShown = false;
  show();
  view->hide();
  EXPECT_FALSE(view->visible()) << "as far as the house is concerned";
  EXPECT_TRUE(isInTheTaskBar());
  EXPECT_THAT(journal.lines(), IsEmpty());
  tool({"windowactivate", std::to_string(view->handle())});
  EXPECT_TRUE(reported("brought back"));
  view->show();
  EXPECT_TRUE(view->visible());
  EXPECT_TRUE(becomes("WM_STATE", "Normal"));
}

TEST_F(ManagedPopup, GoesToTheTaskBarWhenItIsHiddenAndItsIconGoes) {
  show();
  view->hide();
  ASSERT_TRUE(until([&] { return !pane().isVisible(); }));
  iconShown = false;
  view->iconChanged();
  EXPECT_TRUE(isInTheTaskBar());
  EXPECT_FALSE(view->visible());
  EXPECT_THAT(journal.lines(), IsEmpty());
  tool({"windowactivate", std::to_string(view->handle())});
  EXPECT_TRUE(reported("brought back"));
}

TEST_F(ManagedPopup, LeavesTheTaskBarForAnIconThatComes) {
  iconShown = false;
  show();
  view->hide();
  ASSERT_TRUE(isInTheTaskBar());
  iconShown = true;
  view->iconChanged();
  EXPECT_TRUE(until([&] { return !pane().isVisible(); }));
  EXPECT_THAT(journal.lines(), IsEmpty());
  show();
  EXPECT_TRUE(view->visible());
  EXPECT_TRUE(becomes("WM_STATE", "Normal"));
}

TEST_F(ManagedPopup, WithoutAnIconOneThatWasNeverShownStandsInTheTaskBar) {
  iconShown = false;
  view->hide();
  EXPECT_TRUE(isInTheTaskBar());
  tool({"windowactivate", std::to_string(view->handle())});
  EXPECT_TRUE(reported("brought back"));
  show();
  EXPECT_TRUE(until([&] { return pane().pos() == QPoint(300, 300); }));
}

TEST_F(ManagedPopup, WhatIconsDoIsNothingToOneThatIsShownOrWasNeverHidden) {
  iconShown = false;
  view->iconChanged();
  EXPECT_FALSE(pane().isVisible());
  show();
  view->iconChanged();
  EXPECT_TRUE(view->visible());
  EXPECT_FALSE(view->minimised());
}

TEST_F(ManagedPopup, OnTopOfTheOthersAndBesideThem) {
  show();
  view->setWindowPos(-1, 2970, 83);
  EXPECT_TRUE(becomes("_NET_WM_STATE", "ABOVE"));
  EXPECT_TRUE(pane().isVisible());
  view->setWindowPos(-2, 2970, 83);
  EXPECT_TRUE(until([&] { return known("_NET_WM_STATE").find("ABOVE") == std::string::npos; }));
}

TEST_F(ManagedPopup, ABoxThatWaitsStandsBeforeItThoughItIsOnTop) {
  show();
  view->setWindowPos(-1, 2970, 83);
  ASSERT_TRUE(becomes("_NET_WM_STATE", "ABOVE"));
  bool before = false;
  const auto look = loop.makeTimer(base::Milliseconds(10), [&] {
    QWidget* box = QApplication::activeModalWidget();
    if (box == nullptr || !box->windowHandle()->isExposed()) return;
    // Of two in the same layer the one that was raised last is the upper one.
    support::Process order({"xprop", "-root", "_NET_CLIENT_LIST_STACKING"});
    order.wait();
    char id[32];
    std::snprintf(id, sizeof id, "0x%llx\n", static_cast<unsigned long long>(box->winId()));
    before = order.output().ends_with(id) && known("_NET_WM_STATE").find("ABOVE") != std::string::npos;
    if (before) box->close();
  });
  look->enabled(true);
  desktop::ShowBox(*windows, base::BoxKind::kPlain, "Media Player", "About");
  EXPECT_TRUE(before);
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
