// The icon in a real notification area, pressed by real clicks.
#include "desktop/popup/TrayIcon.hpp"

#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

#include "base/Failure.hpp"
#include "support/FailureNumber.hpp"
#include "support/Journal.hpp"
#include "support/desktop/PopupScene.hpp"

using support::FailureNumberOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Reports : public ui::TrayEvents {
 public:
  explicit Reports(support::Journal& journal) : journal_(journal) {}
  std::function<void()> onRightButton = [] {};
  void Form_MouseMove(std::int32_t x) override {
    journal_.add("message " + std::to_string(x));
    if (x == kRightDown) onRightButton();
  }
  void mnuShowHide_Click() override { journal_.add("mnuShowHide"); }
  void mnuMute_Click() override { journal_.add("mnuMute"); }

 private:
  support::Journal& journal_;
};

class TrayIcon : public ::testing::Test {
 protected:
  TrayIcon() {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);  // no other area than this screen's
    windows = support::OpenDesktop(loop);
    icon = std::make_unique<desktop::TrayIcon>(*windows);
    icon->serve(&reports);
    reports.onRightButton = [this] { icon->popUpMenu(); };
  }
  void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

  void startArea() {
    area = std::make_unique<support::Process>(std::vector<std::string>{
        "trayer", "--edge", "top", "--align", "left", "--widthtype", "request", "--height", "32"});
  }
  bool until(const std::function<bool()>& done) { return support::TurnUntil(loop, done); }
  /// Where the icon is on the screen.
  static QWidget* shownIcon() {
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->inherits("QSystemTrayIconSys") && window->isVisible()) return window;
    return nullptr;
  }
  bool stands() {
    return until([&] {
      const QWidget* shown = shownIcon();
      return icon->canBeSeen() && shown != nullptr && shown->windowHandle() != nullptr &&
             shown->windowHandle()->isExposed();
    });
  }
  void click(int button, int times = 1) {
    const QPoint at = shownIcon()->mapToGlobal(shownIcon()->rect().center());
    support::Process tool({"xdotool", "mousemove", std::to_string(at.x()), std::to_string(at.y()), "click",
                           "--repeat", std::to_string(times), "--delay", "20", std::to_string(button)});
    tool.wait();
  }
  static QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

  support::Screen screen;
  support::Journal journal;
  Reports reports{journal};
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows;
  std::unique_ptr<support::Process> area;
  std::unique_ptr<desktop::TrayIcon> icon;
};

}  // namespace

TEST_F(TrayIcon, ADoubleClickIsItsMessageAndASingleOneIsAnother) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  support::ScreenShot("tray");
  click(1);
  ASSERT_TRUE(until([&] { return !journal.lines().empty(); }));
  EXPECT_FALSE(journal.has("message 515"));
  click(1, 2);
  EXPECT_TRUE(until([&] { return journal.has("message 515"); }));
}

TEST_F(TrayIcon, TheRightButtonOpensItsMenu) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  click(3);
  ASSERT_TRUE(until([&] { return journal.has("message 516") && menu() != nullptr; }));
  std::vector<std::string> items;
  for (QAction* action : menu()->actions()) items.push_back(action->text().toStdString());
  EXPECT_THAT(items, ElementsAre("&Show / Hide", "&Mute"));
  support::ScreenShot("tray-menu");
  support::Process key({"xdotool", "key", "m"});
  key.wait();
  EXPECT_TRUE(until([&] { return journal.has("mnuMute"); }));
}

TEST_F(TrayIcon, TellsItsTip) {
  icon->add("Vantorix Media Player");
  EXPECT_EQ(icon->tip(), "Vantorix Media Player");
}

TEST_F(TrayIcon, IsRefusedASecondTimeAndCantBeTakenAwayTwice) {
  icon->add("tip");
  EXPECT_EQ(FailureNumberOf([&] { icon->add("tip"); }), base::number::kInvalidArgument);
  icon->remove();
  EXPECT_EQ(FailureNumberOf([&] { icon->remove(); }), base::number::kInvalidArgument);
  icon->add("tip");
}

TEST_F(TrayIcon, WithoutAnAreaItCantBeSeen) {
  icon->add("tip");
  EXPECT_FALSE(icon->canBeSeen());
  icon->remove();
  EXPECT_FALSE(icon->canBeSeen());
}

TEST_F(TrayIcon, StandsInAnAreaThatComesLater) {
  icon->add("tip");
  startArea();
  EXPECT_TRUE(stands());
}

TEST_F(TrayIcon, AnAreaThatGoesAndComesGetsItAgain) {
  startArea();
  icon->add("tip");
  ASSERT_TRUE(stands());
  area.reset();
  EXPECT_TRUE(until([&] { return !icon->canBeSeen(); }));
  startArea();
  EXPECT_TRUE(stands());
}

TEST_F(TrayIcon, AScreenThatGoesTakesItAlong) {
  startArea();
  icon->add("tip");
  ASSERT_TRUE(stands());
  screen.end(SIGKILL);
  ASSERT_TRUE(until([&] { return windows->gone(); }));
  EXPECT_FALSE(icon->canBeSeen());
  icon->popUpMenu();
  icon->remove();
}
