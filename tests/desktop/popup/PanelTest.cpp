// The icon in a panel that takes icons over the session bus.
#include <gmock/gmock.h>

#include <QtWidgets/QApplication>

#include <cstdlib>

#include "desktop/popup/TrayIcon.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/Journal.hpp"
#include "support/desktop/Panel.hpp"
#include "support/desktop/WindowUser.hpp"

using ::testing::ElementsAre;

namespace {

class Reports : public ui::TrayEvents {
 public:
  explicit Reports(support::Journal& journal) : journal_(journal) {}
  void Form_MouseMove(std::int32_t x) override { journal_.add("message " + std::to_string(x)); }
  void mnuShowHide_Click() override { journal_.add("mnuShowHide"); }
  void mnuMute_Click() override { journal_.add("mnuMute"); }

 private:
  support::Journal& journal_;
};

class IconInAPanel : public ::testing::Test {
 protected:
  IconInAPanel() {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    windows = support::OpenDesktop(loop);
    icon = std::make_unique<desktop::TrayIcon>(*windows);
    icon->serve(&reports);
  }
  void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

  bool until(const std::function<bool()>& done) { return support::TurnUntil(loop, done); }
  void startPanel() { panel = std::make_unique<support::Panel>(bus.address()); }
  bool stands() {
    return until([&] { return icon->canBeSeen() && !panel->icons().empty(); });
  }
  /// The panel's user presses it.
  void press(const std::string& how) {
    support::Process tool({"dbus-send", "--bus=" + bus.address(), "--type=method_call",
                           "--dest=" + panel->icons().back(), "/StatusNotifierItem",
                           "org.kde.StatusNotifierItem." + how, "int32:0", "int32:0"});
    ASSERT_EQ(tool.wait(), 0) << tool.output();
  }

  support::Screen screen;
  support::BusDaemon bus;
  support::Journal journal;
  Reports reports{journal};
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows;
  std::unique_ptr<support::Panel> panel;
  std::unique_ptr<desktop::TrayIcon> icon;
};

}  // namespace

TEST_F(IconInAPanel, StandsThereAndTellsOfItsClicks) {
  startPanel();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  press("Activate");
  ASSERT_TRUE(until([&] { return !journal.lines().empty(); }));
  EXPECT_THAT(journal.lines(), ElementsAre("message 514"));
  press("ContextMenu");
  EXPECT_TRUE(until([&] { return journal.has("message 516"); }));
}

TEST_F(IconInAPanel, TwoClicksAreADoubleClickAndTheThirdIsOneOfItsOwn) {
  QApplication::setDoubleClickInterval(10 * 60 * 1000);
  startPanel();
  icon->add("Vantorix Media Player");
  ASSERT_TRUE(stands());
  for (std::size_t clicks = 1; clicks <= 3; ++clicks) {
    press("Activate");
    ASSERT_TRUE(until([&] { return journal.lines().size() == clicks; }));
  }
  EXPECT_THAT(journal.lines(), ElementsAre("message 514", "message 515", "message 514"));
}

TEST_F(IconInAPanel, StandsInAPanelThatStartsLater) {
  bool told = false;
  icon->onSight([&] { told = icon->canBeSeen(); });
  icon->add("tip");
  EXPECT_FALSE(icon->canBeSeen());
  startPanel();
  EXPECT_TRUE(stands());
  EXPECT_TRUE(until([&] { return told; }));
}

TEST_F(IconInAPanel, APanelThatDiesShowsItNoMoreAndThatIsTold) {
  startPanel();
  icon->add("tip");
  ASSERT_TRUE(stands());
  bool told = false;
  icon->onSight([&] { told = !icon->canBeSeen(); });
  panel.reset();
  EXPECT_TRUE(until([&] { return told; }));
  EXPECT_FALSE(icon->canBeSeen());
}

TEST_F(IconInAPanel, ThePanelThatComesBackGetsItAgain) {
  startPanel();
  icon->add("tip");
  ASSERT_TRUE(stands());
  panel.reset();
  ASSERT_TRUE(until([&] { return !icon->canBeSeen(); }));
  startPanel();
  EXPECT_TRUE(stands());
}

TEST_F(IconInAPanel, AWatcherWithoutAPanelShowsNothing) {
  startPanel();
  icon->add("tip");
  ASSERT_TRUE(stands());
  panel->shows(false);
  EXPECT_TRUE(until([&] { return !icon->canBeSeen(); }));
  panel->shows(true);
  EXPECT_TRUE(until([&] { return icon->canBeSeen(); }));
}

TEST_F(IconInAPanel, ABusThatGoesTakesItsPanelAlong) {
  startPanel();
  icon->add("tip");
  ASSERT_TRUE(stands());
  bus.kill();
  EXPECT_TRUE(until([&] { return !icon->canBeSeen(); }));
}
