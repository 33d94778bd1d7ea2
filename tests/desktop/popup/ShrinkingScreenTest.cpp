// The popup window on a screen that becomes smaller while the house runs.
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <cstdlib>
#include <regex>

#include "support/desktop/PopupScene.hpp"

namespace {

/// A screen of 1280 by 800 pixels that can be made smaller, as one whose resolution is changed. (Xvfb's
/// can't.)
struct Resizable {
  void begin() {
    server.emplace(std::vector<std::string>{"Xvnc", "-displayfd", "1", "-geometry", "1280x800", "-depth",
                                            "24", "-SecurityTypes", "None", "-rfbport", "-1", "-nolisten",
                                            "tcp"});
    std::smatch found;
    std::string said;
    ASSERT_TRUE(support::Eventually([&] {
      said = server->output();
      return std::regex_search(said, found, std::regex("(?:^|\\n)(\\d+)\\n"));
    })) << said;
    ::setenv("DISPLAY", (":" + found[1].str()).c_str(), 1);
  }
  static void resize(const std::string& size) {
    support::Process tool({"xrandr", "-s", size});
    ASSERT_EQ(tool.wait(), 0) << tool.output();
  }
  std::optional<support::Process> server;
};

class AShrinkingScreen : protected Resizable, public support::PopupScene {
 protected:
  AShrinkingScreen() : PopupScene(false, {}, [this] { begin(); }) {}
};

TEST_F(AShrinkingScreen, LeavesTheWindowWithinReachWhenItIsShownAgain) {
  view->top(600 * 15);
  view->left(1000 * 15);
  show();
  ASSERT_EQ(pane().pos(), QPoint(1000, 600));
  resize("800x600");
  ASSERT_TRUE(until([] { return QGuiApplication::primaryScreen()->size() == QSize(800, 600); }));
  view->hide();
  ASSERT_TRUE(until([&] { return !pane().isVisible(); }));
  show();
  EXPECT_TRUE(QRect(0, 0, 800, 600).contains(pane().frameGeometry())) << pane().x() << ", " << pane().y();
}

}  // namespace
