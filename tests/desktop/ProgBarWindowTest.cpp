#include "desktop/ProgBarWindow.hpp"

#include <gtest/gtest.h>

#include <QtCore/QEvent>
#include <QtWidgets/QProgressBar>

#include "support/BusPeer.hpp"
#include "support/FakeHost.hpp"
#include "support/desktop/WindowUser.hpp"
#include "ui/ProgBar.hpp"

namespace {

class DayClock : public base::DayClock {
 public:
  float time = 1000;
  [[nodiscard]] float seconds() const override { return time; }
};

class Machine : public base::Platform {
 public:
  std::int32_t osMajorVersion() override { return 6; }
  void setPriorityClass(std::int32_t /*value*/) override {}
  void end() override {}
  void messageBox(base::BoxKind, const std::string& /*title*/, const std::string& /*text*/) override {}
  void emptyFile(const std::string& /*path*/) override {}
};

/// Counts the drawings of what it watches.
struct Paints : QObject {
  int count = 0;
  bool eventFilter(QObject*, QEvent* event) override {
    count += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
};

class ProgBarWindow : public ::testing::Test {
 protected:
  ProgBarWindow() {
    services.HostCallback = std::make_shared<support::FakeHost>(journal);
    services.Host = services.HostCallback;
    state.ProgressWindowAllowed = true;
  }
  /// A second and a bit of work behind its start, at 40 percent.
  void workLong() {
    bar.Disp_ProgBar("walk");
    clock.time += 1.5F;
    bar.Update_ProgBar(0.4F);
  }
  static QRect place() { return OpenWindow()->frameGeometry(); }
  static QWidget* OpenWindow() { return support::OpenWindow(); }
  /// The colour that the screen shows at a part of the bar's length.
  static QColor colourAt(float part, const std::string& shot) {
    const auto* strip = OpenWindow()->findChild<QProgressBar*>();
    const QPoint at = strip->mapToGlobal(
        QPoint(static_cast<int>(static_cast<float>(strip->width()) * part), strip->height() / 2));
    return support::ScreenShot(shot).pixelColor(at);
  }

  support::Screen screen;
  bus::PollLoop loop;
  support::Journal journal;
  plugin::HostServices services{loop};
  plugin::PluginState state;
  Machine machine;
  DayClock clock;
  std::unique_ptr<desktop::QtWindows> windows = support::OpenDesktop(loop);
  desktop::ProgBarWindow view{*windows};
  ui::ProgBar bar{view, services, state, machine, loop, clock};
};

}  // namespace

TEST_F(ProgBarWindow, ComesOnlyAfterASecondOfWork) {
  bar.Disp_ProgBar("walk");
  clock.time += 0.9F;
  bar.Update_ProgBar(0.3F);
  EXPECT_FALSE(view.visible());
  clock.time += 0.2F;
  bar.Update_ProgBar(0.4F);
  EXPECT_TRUE(view.visible());
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  EXPECT_EQ(journal.lines(), std::vector<std::string>{"forcefront(" + std::to_string(view.handle()) + ")"});
}

TEST_F(ProgBarWindow, StandsInTheMiddleOfTheScreen) {
  workLong();
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  const QPoint off = place().center() - QRect(0, 0, 1280, 800).center();
  EXPECT_LE(off.manhattanLength(), 2) << off.x() << " " << off.y();
  EXPECT_EQ(view.screenWidth(), 1280 * 15);
  EXPECT_EQ(view.screenHeight(), 800 * 15);
  EXPECT_EQ(view.width(), static_cast<float>(place().width() * 15));
}

TEST_F(ProgBarWindow, ShowsHowFarTheWorkIsThoughNothingElseRuns) {
  workLong();
  const QColor done = QApplication::palette().color(QPalette::Highlight);
  // Each step of the work gives a slow screen its time once more.
  const auto shows = [&](float share, float part) {
    return support::Eventually([&] {
      bar.Update_ProgBar(share - 0.01F);
      bar.Update_ProgBar(share);
      return OpenWindow() != nullptr && colourAt(part, "progress") == done;
    });
  };
  ASSERT_TRUE(shows(0.4F, 0.35F));
  EXPECT_EQ(OpenWindow()->findChild<QProgressBar*>()->value(), 40);
  EXPECT_NE(colourAt(0.45F, "progress"), done);
  EXPECT_TRUE(shows(0.8F, 0.75F));
}

TEST_F(ProgBarWindow, OnlyTheLastHideTakesItAway) {
  workLong();
  bar.Disp_ProgBar("inner");
  bar.Hide_ProgBar("inner");
  EXPECT_TRUE(view.visible());
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  const WId id = OpenWindow()->winId();
  bar.Hide_ProgBar("walk");
  EXPECT_FALSE(view.visible());
  loop.pump();
  support::Process look({"xwininfo", "-id", std::to_string(id)});
  EXPECT_EQ(look.wait(), 0);
  EXPECT_NE(look.output().find("Map State: IsUnMapped"), std::string::npos) << look.output();
}

TEST_F(ProgBarWindow, IsNotClosedByItsFrame) {
  workLong();
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  OpenWindow()->close();
  EXPECT_TRUE(view.visible());
}

TEST_F(ProgBarWindow, ALongWalkIsNotHeldUpByItsDrawing) {
  workLong();
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  Paints paints;
  OpenWindow()->findChild<QProgressBar*>()->installEventFilter(&paints);
  constexpr int kItems = 100'000;
  for (int item = 0; item < kItems; ++item) bar.Update_ProgBar(static_cast<float>(item) / kItems);
  EXPECT_GE(paints.count, 50);
  EXPECT_LE(paints.count, 150) << "a drawing a percent, and what the screen asks for";
}

TEST_F(ProgBarWindow, WhatNoBarCanShowIsShownAsItsEnds) {
  workLong();
  ASSERT_TRUE(support::TurnUntil(loop, [] { return OpenWindow() != nullptr; }));
  const auto* strip = OpenWindow()->findChild<QProgressBar*>();
  bar.Update_ProgBar(7);
  EXPECT_EQ(strip->value(), 100);
  bar.Update_ProgBar(-1);
  EXPECT_EQ(strip->value(), 0);
}
