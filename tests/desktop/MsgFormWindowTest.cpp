#include "desktop/MsgFormWindow.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/FakeHost.hpp"
#include "support/SkippingClock.hpp"
#include "support/desktop/WindowUser.hpp"
#include "ui/myMsgForm.hpp"

using ::testing::ElementsAre;

namespace {

/// The real loop with shorter seconds.
class QuickSeconds : public base::Loop {
 public:
  static constexpr int kTimesFaster = 20;
  explicit QuickSeconds(bus::PollLoop& loop) : loop_(loop) {}
  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds interval, std::function<void()> event) override {
    return loop_.makeTimer(interval / kTimesFaster, std::move(event));
  }
  void post(std::function<void()> work) override { loop_.post(std::move(work)); }
  void pump() override { loop_.pump(); }
  void whileOpen(const std::function<void()>& body) override { loop_.whileOpen(body); }
  [[nodiscard]] base::Milliseconds now() const override { return loop_.now(); }

 private:
  bus::PollLoop& loop_;
};

class MsgFormWindow : public ::testing::Test {
 protected:
  static constexpr const char* kText =
      "This plug-in requires Windows Media Player version 9 or higher.  You have version: 8.0";

  MsgFormWindow() {
    services.HostCallback = std::make_shared<support::FakeHost>(journal);
    services.Host = services.HostCallback;
  }
  std::int16_t show(std::int16_t seconds) { return form.ShowTimedMessage("Error!", kText, seconds); }
  static QString timeLabel(QWidget& window) { return window.findChild<QLabel*>("TimeLabel")->text(); }

  support::Screen screen;
  support::SkippingClock clock;
  bus::PollLoop loop{clock.reader()};
  QuickSeconds quick{loop};
  support::Journal journal;
  plugin::HostServices services{loop};
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop);
  desktop::MsgFormWindow view{*windows};
  /// Older than the message's own timer, so that it fires before that in each turn.
  std::function<void()> look = [] {};
  std::unique_ptr<base::Timer> eyes = loop.makeTimer(base::Milliseconds(1), [this] { look(); });
  ui::myMsgForm form{view, services, quick};
  support::User user{loop};
};

constexpr std::int16_t kLong = 30000;

}  // namespace

TEST_F(MsgFormWindow, CountsDownBeforeTheReadersEyesAndCloses) {
  std::vector<std::string> labels;
  look = [&] {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (!window->isVisible()) continue;
      const std::string label = timeLabel(*window).toStdString();
      if (labels.empty() || labels.back() != label) labels.push_back(label);
    }
  };
  eyes->enabled(true);
  EXPECT_EQ(show(15), 2);
  std::vector<std::string> expected;
  for (int left = 15; left > 0; --left) expected.push_back("Time remaining: " + std::to_string(left));
  if (!labels.empty() && labels.front().empty()) labels.erase(labels.begin());  // the first second
  EXPECT_EQ(labels, expected);
}

TEST_F(MsgFormWindow, ShowsItsTextAndAsksTheHostToTheFront) {
  std::string title;
  std::string text;
  std::int32_t handle = 0;
  std::string known;  // to the window manager
  user.act([&](QWidget& window) {
        title = window.windowTitle().toStdString();
        text = window.findChild<QLabel*>("MessageText")->text().toStdString();
        handle = static_cast<std::int32_t>(window.winId());
        support::Process look({"xprop", "-id", std::to_string(handle), "-notype", "_NET_WM_NAME", "WM_NAME"});
        look.wait();
        known = look.output();
      })
      .when(
          [](QWidget& window) {
            const int left = timeLabel(window).section(' ', -1).toInt();
            return left > 0 && left <= 29990;
          },
          [](QWidget&) { support::ScreenShot("message"); })
      .click("&OK");
  EXPECT_EQ(show(kLong), 1);
  EXPECT_EQ(title, "Error!");
  EXPECT_EQ(known, "_NET_WM_NAME = \"Error!\"\nWM_NAME = \"Error!\"\n");
  EXPECT_EQ(text, kText);
  EXPECT_THAT(journal.lines(), ElementsAre("forcefront(" + std::to_string(handle) + ")"));
}

TEST_F(MsgFormWindow, AClickOnOkIsOne) {
  user.click("&OK");
  EXPECT_EQ(show(kLong), 1);
}

TEST_F(MsgFormWindow, AClickOnCancelIsTwo) {
  user.click("&Cancel");
  EXPECT_EQ(show(kLong), 2);
}

TEST_F(MsgFormWindow, OkHasTheFocusAtTheStart) {
  std::string focused;
  user.when([](QWidget& window) { return window.isActiveWindow() && window.focusWidget() != nullptr; },
            [&](QWidget& window) {
              focused = qobject_cast<QPushButton*>(window.focusWidget())->text().toStdString();
            })
      .key("Return");
  EXPECT_EQ(show(kLong), 1);
  EXPECT_EQ(focused, "&OK");
}

TEST_F(MsgFormWindow, EscapeIsCancel) {
  user.key("Escape");
  EXPECT_EQ(show(kLong), 2);
}

TEST_F(MsgFormWindow, ClosingTheFrameIsCancel) {
  user.act([](QWidget& window) { window.close(); });
  EXPECT_EQ(show(kLong), 2);
}

TEST_F(MsgFormWindow, EveryButtonHasAKey) {
  user.key("alt+c");
  EXPECT_EQ(show(kLong), 2);
  user.key("alt+o");
  EXPECT_EQ(show(kLong), 1);
  user.key("alt+s").when([&](QWidget&) { return !form.Timer1().enabled(); }, [](QWidget&) {}).key("alt+o");
  EXPECT_EQ(show(kLong), 1);
}

TEST_F(MsgFormWindow, StopKeepsItOpenBeyondItsTime) {
  // So many that none ends by itself before the button is found and clicked.
  constexpr std::int16_t kSeconds = 600;
  int looks = 0;
  user.click("&Stop Timer")
      .when([&](QWidget&) { return !form.Timer1().enabled(); }, [](QWidget&) {})
      .when(
          [&](QWidget&) {
            clock.skip(std::chrono::seconds(1));
            return ++looks > kSeconds;
          },
          [](QWidget&) { support::ScreenShot("stopped"); })
      .click("&OK");
  EXPECT_EQ(show(kSeconds), 1);
  EXPECT_TRUE(user.finished());
}

TEST_F(MsgFormWindow, WithoutSecondsNothingCounts) {
  int looks = 0;
  user.act([&](QWidget&) { clock.skip(std::chrono::minutes(1)); })
      .when([&](QWidget&) { return ++looks > 3; }, [&](QWidget& window) { EXPECT_EQ(timeLabel(window), ""); })
      .click("&OK");
  EXPECT_EQ(show(0), 1);
}

TEST_F(MsgFormWindow, ALongTextScrollsInsteadOfLeavingTheScreen) {
  std::string text;
  for (int line = 1; line <= 200; ++line) text += "Line " + std::to_string(line) + " of a very long story\n";
  QSize size;
  user.act([&](QWidget& window) {
        size = window.size();
        support::ScreenShot("long");
      })
      .click("&OK");
  EXPECT_EQ(form.ShowTimedMessage("Story", text, kLong), 1);
  EXPECT_GT(size.height(), 300);
  EXPECT_LT(size.height(), 800);
}

TEST_F(MsgFormWindow, OpenedFromAnotherWindowsEventItIsServedToo) {
  std::int16_t result = 0;
  QTimer::singleShot(0, [&] {  // an event of Qt's own, as a menu's or a button's
    user.click("&OK");
    result = show(kLong);
  });
  EXPECT_TRUE(support::TurnUntil(loop, [&] { return result != 0; }));
  EXPECT_EQ(result, 1);
}

TEST_F(MsgFormWindow, TheHouseIsServedWhileItIsOpen) {
  const support::BusDaemon daemon;
  bus::Connection connection(loop, daemon.address());
  int pings = 0;
  connection.exportObject(
      "/plugin",
      std::make_shared<support::TableOf>(
          "Plugin", std::vector<base::Member>{
                        {"Ask",
                         base::MemberKind::kOperation,
                         {},
                         base::Type::kInt16,
                         [&](base::Args&) { return base::Value(show(kLong)); }},
                        {"Ping", base::MemberKind::kOperation, {}, base::Type::kInt32, [&](base::Args&) {
                           return base::Value(std::int32_t{++pings});
                         }}}));
  const std::string name = connection.uniqueName();
  const auto ask = [&](const char* member) {
    return std::async(std::launch::async, [&, member] {
      base::Value answer;
      support::BusPeer(daemon.address(), [&](bus::Connection& peer, bus::PollLoop&) {
        answer = peer.proxy(name, "/plugin")->invoke(member);
      });
      return base::ToInt32(answer);
    });
  };
  auto asked = ask("Ask");
  std::future<std::int32_t> pinged;
  user.act([&](QWidget&) { pinged = ask("Ping"); })
      .when([&](QWidget&) { return pings == 1; }, [](QWidget&) {})
      .click("&OK");
  EXPECT_TRUE(support::TurnUntil(
      loop, [&] { return asked.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
  EXPECT_EQ(asked.get(), 1);
  EXPECT_EQ(pinged.get(), 1);
  EXPECT_TRUE(user.finished());
}
