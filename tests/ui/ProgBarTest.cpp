#include "ui/ProgBar.hpp"

#include "support/House.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class FakeProgBarView : public ui::ProgBarView {
 public:
  explicit FakeProgBarView(support::Journal& journal) : journal_(journal) {}
  bool isVisible = false;
  float percent = -1;
  int refreshes = 0;

  [[nodiscard]] bool visible() const override { return isVisible; }
  void show() override {
    journal_.add("show ProgBar");
    isVisible = true;
  }
  void hide() override {
    journal_.add("hide ProgBar");
    isVisible = false;
  }
  void value(float value) override { percent = value; }
  void refresh() override { ++refreshes; }
  [[nodiscard]] float width() const override { return 4000; }
  [[nodiscard]] float height() const override { return 1000; }
  [[nodiscard]] float screenWidth() const override { return 20000; }
  [[nodiscard]] float screenHeight() const override { return 10000; }
  void place(float top, float left) override {
    journal_.add("place " + std::to_string(int(top)) + " " + std::to_string(int(left)));
  }
  [[nodiscard]] std::int32_t handle() const override { return 77; }

 private:
  support::Journal& journal_;
};

class ProgBar : public support::House {
 protected:
  void SetUp() override { start(); }
  void pass(int milliseconds) { loop.advance(base::Milliseconds(milliseconds)); }

  FakeProgBarView view{journal};
  ui::ProgBar bar{view, plugin.host, plugin.state, platform, loop, plugin.clock};
};

}  // namespace

TEST_F(ProgBar, WorkUnderASecondShowsNoWindow) {
  bar.Disp_ProgBar("walk");
  pass(900);
  bar.Update_ProgBar(0.5F);
  EXPECT_FLOAT_EQ(view.percent, 50);
  EXPECT_EQ(view.refreshes, 1);
  bar.Hide_ProgBar("walk");
  EXPECT_THAT(journal.with("show"), IsEmpty());
}

TEST_F(ProgBar, LongerWorkShowsTheWindowOnceInTheMiddleAndInFront) {
  bar.Disp_ProgBar("walk");
  pass(1100);
  const int pumps = loop.pumps;
  bar.Update_ProgBar(0.5F);
  EXPECT_EQ(loop.pumps, pumps + 1);
  bar.Update_ProgBar(0.6F);
  EXPECT_THAT(journal.with("show"), ElementsAre("show ProgBar"));
  EXPECT_TRUE(journal.has("place 4500 8000"));
  EXPECT_TRUE(journal.has("forcefront(77)"));
  bar.Hide_ProgBar("walk");
  EXPECT_FALSE(view.isVisible);
}

TEST_F(ProgBar, NestedWorkKeepsOneWindowToTheLastHide) {
  bar.Disp_ProgBar("outer");
  pass(1500);
  bar.Disp_ProgBar("inner");
  EXPECT_TRUE(view.isVisible);
  EXPECT_EQ(view.percent, 0);
  bar.Hide_ProgBar("inner");
  EXPECT_TRUE(view.isVisible);
  EXPECT_EQ(bar.ProgressUsers(), 1);
  bar.Hide_ProgBar("outer");
  EXPECT_FALSE(view.isVisible);
  EXPECT_EQ(bar.ProgressStart(), 0);
}

TEST_F(ProgBar, StartUpShowsNoWindow) {
  plugin.state.ProgressWindowAllowed = false;
  bar.Disp_ProgBar("walk");
  pass(5000);
  bar.Update_ProgBar(0.5F);
  EXPECT_EQ(view.percent, 0);
  EXPECT_THAT(journal.with("show"), IsEmpty());
  bar.Hide_ProgBar("walk");
  EXPECT_THAT(journal.lines(), ElementsAre("priority 32", "hide ProgBar"));
}

TEST_F(ProgBar, ThePriorityIsLoweredForTheWalkAndRaisedBehindIt) {
  bar.Disp_ProgBar("walk");
  bar.Hide_ProgBar("walk");
  EXPECT_THAT(journal.with("priority"), ElementsAre("priority 32", "priority 32768"));
  journal.clear();
  plugin.state.OsMajorVersion = 4;
  bar.Disp_ProgBar("walk");
  bar.Hide_ProgBar("walk");
  EXPECT_THAT(journal.with("priority"), ElementsAre("priority 32", "priority 128"));
  journal.clear();
  plugin.state.RaisePriority = false;
  bar.Disp_ProgBar("walk");
  bar.Hide_ProgBar("walk");
  EXPECT_THAT(journal.with("priority"), IsEmpty());
}

TEST_F(ProgBar, AWalkAllowedOnItsWayBeginsItsSecondThere) {
  plugin.state.ProgressWindowAllowed = false;
  bar.Disp_ProgBar("walk");
  pass(5000);
  plugin.state.ProgressWindowAllowed = true;
  bar.Update_ProgBar(0.1F);
  EXPECT_FALSE(view.isVisible);
  pass(1100);
  bar.Update_ProgBar(0.2F);
  EXPECT_TRUE(view.isVisible);
}

TEST_F(ProgBar, AReadingThatPassesMidnightOnlyDelaysTheWindow) {
  struct Clock : base::DayClock {
    float now = 86399;
    [[nodiscard]] float seconds() const override { return now; }
  } clock;
  ui::ProgBar late(view, plugin.host, plugin.state, platform, loop, clock);
  late.Disp_ProgBar("walk");
  clock.now = 30;
  late.Update_ProgBar(0.5F);
  EXPECT_FALSE(view.isVisible);
  EXPECT_EQ(view.percent, 50);
  late.Hide_ProgBar("walk");
  late.Disp_ProgBar("walk");
  clock.now = 31.5F;
  late.Update_ProgBar(0.1F);
  EXPECT_TRUE(view.isVisible) << "the next walk begins a second of its own";
}

TEST_F(ProgBar, AWalkThatHasLastedShowsTheWindowAtItsNextBeginning) {
  bar.Disp_ProgBar("outer");
  pass(900);
  bar.Disp_ProgBar("inner");
  EXPECT_FALSE(view.isVisible);
  bar.Hide_ProgBar("inner");
  EXPECT_GT(bar.ProgressStart(), 0) << "the outer walk goes on";
  pass(200);
  bar.Disp_ProgBar("inner");
  EXPECT_TRUE(view.isVisible);
}

TEST_F(ProgBar, AHostThatFailsLeavesTheWindow) {
  host->failing = {"forcefront"};
  bar.Disp_ProgBar("walk");
  pass(1100);
  bar.Update_ProgBar(0.5F);
  EXPECT_TRUE(view.isVisible);
}

TEST_F(ProgBar, WithoutADisplayThereIsNoWindowForTheFront) {
  ui::WindowlessProgBar nowhere;
  ui::ProgBar unseen(nowhere, plugin.host, plugin.state, platform, loop, plugin.clock);
  unseen.Disp_ProgBar("walk");
  pass(1100);
  unseen.Update_ProgBar(0.5F);
  EXPECT_TRUE(nowhere.visible());
  EXPECT_THAT(journal.with("forcefront"), IsEmpty());
}
