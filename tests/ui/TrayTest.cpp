#include "support/PopupHouse.hpp"
#include "ui/SysTrayForm.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class FakeTray : public ui::TrayView {
 public:
  explicit FakeTray(support::Journal& journal) : journal_(journal) {}
  ui::TrayEvents* events = nullptr;
  bool there = false;
  bool refuses = false;

  void serve(ui::TrayEvents* to) override { events = to; }
  void add(const std::string& tip) override {
    journal_.add("tray: add " + tip);
    if (there || refuses) throw base::Failure(base::number::kInvalidArgument);
    there = true;
  }
  void remove() override {
    journal_.add("tray: delete");
    if (!there) throw base::Failure(base::number::kInvalidArgument);
    there = false;
  }
  void popUpMenu() override { journal_.add("tray: pop up mnuPopup"); }

 private:
  support::Journal& journal_;
};

class Tray : public support::House {
 protected:
  void SetUp() override { start(); }
  std::vector<std::string> calls() { return journal.with("tray: "); }

  FakeTray view{journal};
  ui::SysTrayForm form{view, plugin.calls};
};

constexpr const char* kAdd = "tray: add Vantorix Media Player";
constexpr const char* kArmed = "popup: Visibility enabled";

}  // namespace

TEST_F(Tray, ToldNotToShowItIsNotLoaded) {
  form.ShowTrayIcon(false);
  EXPECT_FALSE(form.loaded());
  EXPECT_THAT(journal.with("tray: add"), IsEmpty());
}

TEST_F(Tray, TheFirstCallAddsTheIconTwiceAndTheSecondAddIsIgnored) {
  form.ShowTrayIcon(true);
  EXPECT_THAT(calls(), ElementsAre(kAdd, kAdd));
  EXPECT_TRUE(view.there);
  EXPECT_TRUE(form.loaded());
}

TEST_F(Tray, LaterCallsAddItOnce) {
  form.ShowTrayIcon(true);
  journal.clear();
  form.ShowTrayIcon(true);
  EXPECT_THAT(calls(), ElementsAre(kAdd));
}

TEST_F(Tray, AnIconThatTheDesktopLostComesBack) {
  form.ShowTrayIcon(true);
  view.there = false;
  form.ShowTrayIcon(true);
  EXPECT_TRUE(view.there);
}

TEST_F(Tray, HidingItUnloadsTheForm) {
  form.ShowTrayIcon(true);
  journal.clear();
  form.ShowTrayIcon(false);
  EXPECT_THAT(calls(), ElementsAre("tray: delete"));
  EXPECT_FALSE(view.there);
  EXPECT_FALSE(form.loaded());
  journal.clear();
  form.ShowTrayIcon(true);
  EXPECT_THAT(calls(), ElementsAre(kAdd, kAdd)) << "it is loaded anew";
}

TEST_F(Tray, UnloadingTwiceDeletesTwiceAndTheSecondIsIgnored) {
  form.ShowTrayIcon(true);
  journal.clear();
  form.unload();
  form.unload();
  EXPECT_THAT(calls(), ElementsAre("tray: delete", "tray: delete"));
}

TEST_F(Tray, ARefusedIconIsNoneAndNothingIsTold) {
  view.refuses = true;
  form.ShowTrayIcon(true);
  EXPECT_FALSE(view.there);
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
  EXPECT_THAT(journal.with("ShowTimedMessage"), IsEmpty());
}

TEST_F(Tray, ADoubleClickShowsOrHidesTheControls) {
  ASSERT_TRUE(plugin.state.DisplayControlsShown);
  view.events->Form_MouseMove(ui::TrayEvents::kLeftDoubleClick);
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  view.events->Form_MouseMove(515);
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
  EXPECT_THAT(journal.lines(), ElementsAre(kArmed, kArmed));
}

TEST_F(Tray, TheRightButtonOpensTheMenu) {
  view.events->Form_MouseMove(516);
  EXPECT_THAT(journal.lines(), ElementsAre("tray: pop up mnuPopup"));
}

TEST_F(Tray, ASingleLeftClickAndAllElseDoNothing) {
  for (const std::int32_t message :
       {ui::TrayEvents::kLeftDown, ui::TrayEvents::kLeftUp, 512, 517, 518, 0, -1})
    view.events->Form_MouseMove(message);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Tray, ItsMenuShowsHidesAndMutes) {
  EXPECT_STREQ(ui::TrayView::kShowHide, "&Show / Hide");
  EXPECT_STREQ(ui::TrayView::kMute, "&Mute");
  view.events->mnuShowHide_Click();
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  view.events->mnuMute_Click();
  EXPECT_TRUE(wmp9->muted);
  view.events->mnuMute_Click();
  EXPECT_FALSE(wmp9->muted);
}

TEST_F(Tray, WithoutADisplayNothingIsRefusedAndNothingShown) {
  ui::WindowlessTray none;
  ui::SysTrayForm silent(none, plugin.calls);
  silent.ShowTrayIcon(true);
  EXPECT_TRUE(silent.loaded());
  silent.unload();
  EXPECT_THAT(journal.lines(), IsEmpty());
}

namespace {
class TrayAtTheStart : public support::House {};
}  // namespace

TEST_F(TrayAtTheStart, IsAskedForWhereTheSettingSaysSo) {
  connect();
  initIO();
  loop.advance(base::Milliseconds(2));
  EXPECT_TRUE(journal.has("ShowTrayIcon"));
}

TEST_F(TrayAtTheStart, IsNeverLoadedWithoutTheSetting) {
  host->settings["trayicon"] = "False";
  connect();
  initIO();
  loop.advance(base::Milliseconds(2));
  ASSERT_TRUE(plugin.state.Initialized);
  EXPECT_FALSE(journal.has("ShowTrayIcon"));
}
