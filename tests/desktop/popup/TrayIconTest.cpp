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
  std::function<void()> onMute = [] {};
  void mnuShowHide_Click() override { journal_.add("mnuShowHide"); }
  void mnuMute_Click() override {
    journal_.add("mnuMute");
    onMute();
  }

 private:
  support::Journal& journal_;
};

class TrayIcon : public ::testing::Test {
 protected:
  explicit TrayIcon(int dots = 96) : screen({"-dpi", std::to_string(dots)}) {
    support::TellDots(dots);
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
      if (!icon->canBeSeen() || shown == nullptr || shown->windowHandle() == nullptr ||
          !shown->windowHandle()->isExposed())
        return false;
      // Its area may still move it: it stands where its own colour is seen.
      constexpr QRgb kGround = 0xff2f55e0;
      const QRect at(shown->mapToGlobal(QPoint(0, 0)), shown->size());
      const QImage seen = support::ScreenShot("tray").copy(at);
      for (int x = 0; x < seen.width(); ++x)
        if (seen.pixel(x, seen.height() / 2) == kGround) return true;
      return false;
    });
  }
  void click(int button, int times = 1) {
    const QPoint at = shownIcon()->mapToGlobal(shownIcon()->rect().center());
    support::Process tool({"xdotool", "mousemove", std::to_string(at.x()), std::to_string(at.y()), "click",
                           "--repeat", std::to_string(times), "--delay", "20", std::to_string(button)});
    tool.wait();
  }
  /// Whether an item of the open menu is seen clearly.
  bool readable(const std::string& shot, QAction& action) {
    return until([&] {
      return support::Drawn(support::ScreenShot(shot), *menu(), menu()->actionGeometry(&action)).readable();
    });
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

TEST_F(TrayIcon, ASingleClickIsAMessageOfItsOwn) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  click(1);
  EXPECT_TRUE(until([&] { return !journal.lines().empty(); }));
  EXPECT_THAT(journal.lines(), ElementsAre("message 514"));
}

TEST_F(TrayIcon, ADoubleClickIsOneMessage) {
  QApplication::setDoubleClickInterval(10 * 60 * 1000);  // a slow machine lets both clicks be far apart
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  click(1, 2);
  ASSERT_TRUE(until([&] { return journal.has("message 515"); }));
  // What is clicked last is heard last: two of them would show the controls and hide them again.
  click(3);
  ASSERT_TRUE(until([&] { return journal.has("message 516"); }));
  EXPECT_EQ(journal.count("message 515"), 1U);
}

TEST_F(TrayIcon, ItsAreaMayDieInTheMiddleOfItsClick) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  reports.onRightButton = [this] {
    area.reset();
    icon->popUpMenu();
  };
  click(3);
  ASSERT_TRUE(until([&] { return journal.has("message 516") && !icon->canBeSeen(); }));
  reports.onRightButton = [] {};
  ASSERT_TRUE(until([&] {
    if (menu() != nullptr) menu()->close();
    return menu() == nullptr;
  }));
  startArea();
  ASSERT_TRUE(stands());
  // The new area may still be moving its icons.
  EXPECT_TRUE(until([&] {
    click(3);
    return journal.count("message 516") >= 2;
  }));
}

TEST_F(TrayIcon, MayBeTakenAwayInTheMiddleOfItsClick) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  reports.onMute = [this] {
    icon->remove();
    loop.pump();
  };
  click(3);
  ASSERT_TRUE(until([] { return menu() != nullptr; }));
  const QRect mute = menu()->actionGeometry(menu()->actions().back());
  const QPoint at = menu()->mapToGlobal(mute.center());
  support::Process tool(
      {"xdotool", "mousemove", std::to_string(at.x()), std::to_string(at.y()), "click", "1"});
  tool.wait();
  ASSERT_TRUE(until([&] { return journal.has("mnuMute"); }));
  EXPECT_TRUE(until([&] { return shownIcon() == nullptr && menu() == nullptr; }));
  EXPECT_FALSE(icon->canBeSeen());
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
  for (QAction* action : menu()->actions())
    EXPECT_TRUE(readable("tray-menu", *action)) << action->text().toStdString();
  support::Process key({"xdotool", "key", "m"});
  key.wait();
  EXPECT_TRUE(until([&] { return journal.has("mnuMute"); }));
}

namespace {

class TrayIconOfFineDots : public TrayIcon {
 protected:
  TrayIconOfFineDots() : TrayIcon(192) {}
};

}  // namespace

TEST_F(TrayIconOfFineDots, HasAMenuThatCanBeRead) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(until([&] { return icon->canBeSeen(); }));
  icon->popUpMenu();
  ASSERT_TRUE(until([] { return menu() != nullptr && menu()->windowHandle()->isExposed(); }));
  EXPECT_GE(menu()->fontMetrics().height() * menu()->devicePixelRatioF() / 192 * 25.4, 3) << "millimetres";
  for (QAction* action : menu()->actions())
    EXPECT_TRUE(readable("tray-menu-192", *action)) << action->text().toStdString();
  menu()->close();
}

TEST_F(TrayIcon, TellsItsTip) {
  startArea();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  EXPECT_EQ(shownIcon()->toolTip(), "Vantorix Media Player");
}

TEST_F(TrayIcon, TellsWhenItCanBeSeenAndWhenNot) {
  std::vector<bool> seen;
  icon->onSight([&] { seen.push_back(icon->canBeSeen()); });
  const auto becomes = [&](bool value) {
    return until([&] { return !seen.empty() && seen.back() == value; });
  };
  icon->add("tip");
  EXPECT_TRUE(becomes(false));
  startArea();
  EXPECT_TRUE(becomes(true));
  area.reset();
  EXPECT_TRUE(becomes(false));
  startArea();
  EXPECT_TRUE(becomes(true));
  icon->remove();
  EXPECT_TRUE(becomes(false));
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
