#include "support/House.hpp"
#include "ui/WindowlessMsgForm.hpp"
#include "ui/myMsgForm.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A window in virtual time: while it is shown, the test's `user` acts at each second.
class FakeMsgView : public ui::MsgFormView {
 public:
  FakeMsgView(support::Journal& journal, support::VirtualLoop& loop) : journal_(journal), loop_(loop) {}
  std::function<void(ui::MsgFormEvents&, int second)> user = [](ui::MsgFormEvents&, int) {};
  std::vector<std::string> labels;
  int secondsShown = 0;
  static constexpr int kPatience = 100;

  void caption(const std::string& text) override { journal_.add("caption " + text); }
  void MessageText(const std::string& text) override { journal_.add("text " + text); }
  void TimeLabel(const std::string& text) override { labels.push_back(text); }
  void focusOk() override { journal_.add("focus OK_button"); }
  [[nodiscard]] std::int32_t handle() const override { return 99; }
  void showModal(ui::MsgFormEvents& events) override {
    events.Form_Load();
    shown_ = true;
    for (secondsShown = 0; shown_ && secondsShown < kPatience;) {
      user(events, secondsShown);
      if (!shown_) break;
      loop_.advance(base::Milliseconds(1000));
      ++secondsShown;
    }
    shown_ = false;
  }
  void hide() override { shown_ = false; }
  void unload() override { journal_.add("unload"); }

 private:
  support::Journal& journal_;
  support::VirtualLoop& loop_;
  bool shown_ = false;
};

class MsgForm : public support::House {
 protected:
  void SetUp() override { start(); }
  FakeMsgView view{journal, loop};
  ui::myMsgForm form{view, plugin.host, loop};
};

}  // namespace

TEST_F(MsgForm, ItCountsDownAndClosesASecondBehindZero) {
  EXPECT_EQ(form.ShowTimedMessage("Error!", "What happened", 15), 2);
  std::vector<std::string> expected;
  for (int left = 15; left >= 0; --left) expected.push_back("Time remaining: " + std::to_string(left));
  EXPECT_EQ(view.labels, expected);
  EXPECT_EQ(view.secondsShown, 16);
  EXPECT_FALSE(form.Timer1().enabled());
  EXPECT_THAT(journal.lines(), ElementsAre("caption Error!", "text What happened", "forcefront(99)",
                                           "focus OK_button", "unload"));
}

TEST_F(MsgForm, AButtonAnswersAtOnce) {
  view.user = [](ui::MsgFormEvents& events, int second) {
    if (second == 3) events.OK_button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", 15), 1);
  EXPECT_EQ(view.secondsShown, 3);
  view.user = [](ui::MsgFormEvents& events, int) { events.Cancel_Button_Click(); };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", 15), 2);
  loop.advance(base::Milliseconds(20000));
  EXPECT_EQ(view.labels.size(), 3U);
}

TEST_F(MsgForm, WithoutSecondsItWaitsForAButton) {
  view.user = [](ui::MsgFormEvents& events, int second) {
    if (second == 60) events.OK_button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", 0), 1);
  EXPECT_THAT(view.labels, IsEmpty());
}

TEST_F(MsgForm, AStoppedTimerWaitsForAButton) {
  view.user = [](ui::MsgFormEvents& events, int second) {
    if (second == 2) events.Stop_Button_Click();
    if (second == 60) events.OK_button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", 15), 1);
  EXPECT_THAT(view.labels, ElementsAre("Time remaining: 15", "Time remaining: 14"));
}

TEST_F(MsgForm, AMessageWhileOneIsOpenDoesNotDisturbIt) {
  std::int16_t inner = 0;
  view.user = [&](ui::MsgFormEvents& events, int second) {
    if (second == 1) inner = form.ShowTimedMessage("inner", "y", 5);
    if (second == 4) events.OK_button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("outer", "x", 15), 1);
  EXPECT_EQ(inner, 2);
  EXPECT_THAT(journal.with("caption"), ElementsAre("caption outer"));
  EXPECT_THAT(view.labels, ElementsAre("Time remaining: 15", "Time remaining: 14", "Time remaining: 13",
                                       "Time remaining: 12"));
}

TEST_F(MsgForm, AMessageWhileOneIsOpenIsLeftInTheLog) {
  view.user = [&](ui::MsgFormEvents& events, int second) {
    if (second == 1) form.ShowTimedMessage("Error!", "What else happened", 5);
    if (second == 2) events.OK_button_Click();
  };
  form.ShowTimedMessage("outer", "x", 15);
  EXPECT_TRUE(logged("Warning", "Media Player: Error! What else happened"));
  host->failing = {"WriteLog"};
  EXPECT_EQ(form.ShowTimedMessage("outer", "x", 15), 1);
}

TEST_F(MsgForm, AMessageThatCantBeShownIsLeftInTheLogAndItsTimeIsUp) {
  view.user = [](ui::MsgFormEvents&, int) { throw base::Failure(base::number::kWindowNotShown); };
  EXPECT_EQ(form.ShowTimedMessage("Error!", "What happened", 15), 2);
  EXPECT_TRUE(logged("Warning", "Media Player: Error! What happened"));
  EXPECT_FALSE(form.Timer1().enabled());
  EXPECT_TRUE(journal.has("unload"));
  view.user = [](ui::MsgFormEvents& events, int) { events.OK_button_Click(); };
  EXPECT_EQ(form.ShowTimedMessage("Error!", "The next one is shown again", 15), 1);
}

TEST_F(MsgForm, ATimeBelowZeroWaitsForAButton) {
  view.user = [](ui::MsgFormEvents& events, int second) {
    if (second == 60) events.Cancel_Button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", -5), 2);
  EXPECT_EQ(view.secondsShown, 60);
}

TEST_F(MsgForm, AHostThatFailsLeavesTheMessage) {
  host->failing = {"forcefront"};
  view.user = [](ui::MsgFormEvents& events, int second) {
    if (second == 2) events.OK_button_Click();
  };
  EXPECT_EQ(form.ShowTimedMessage("t", "x", 15), 1);
  EXPECT_TRUE(journal.has("focus OK_button"));
}

TEST_F(MsgForm, WithoutADisplayTheTimeIsUpAtOnceAndTheTextIsLeft) {
  std::FILE* out = std::tmpfile();
  ASSERT_NE(out, nullptr);
  ui::WindowlessMsgForm windowless(out);
  ui::myMsgForm silent(windowless, plugin.host, loop);
  EXPECT_EQ(silent.ShowTimedMessage("Error!", "What happened", 15), 2);
  std::rewind(out);
  char line[64] = {};
  EXPECT_NE(std::fgets(line, sizeof line, out), nullptr);
  EXPECT_STREQ(line, "Error! What happened\n");
  EXPECT_FALSE(journal.has("forcefront(0)"));
  std::fclose(out);
}
