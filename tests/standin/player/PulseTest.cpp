#include "standin/player/Pulse.hpp"

#include <gtest/gtest.h>

#include "support/VirtualLoop.hpp"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class APluginsPulse : public testing::Test {
 protected:
  support::VirtualLoop loop;
  int asked = 0;
  int changes = 0;
  bool wanted = true;
  bool answers = true;
  standin::Pulse pulse{loop,
                       {.ask =
                            [this] {
                              ++asked;
                              pulse.begins();
                              if (answers) pulse.ends();
                            },
                        .wanted = [this] { return wanted; },
                        .changed = [this] { ++changes; }}};
};

TEST_F(APluginsPulse, IsTakenOnceASecondWhileSomebodyLooks) {
  loop.advance(seconds(5));
  EXPECT_EQ(asked, 0);
  pulse.start();
  loop.advance(seconds(5));
  EXPECT_EQ(asked, 5);
  wanted = false;
  loop.advance(seconds(60));
  EXPECT_EQ(asked, 5);
  EXPECT_FALSE(pulse.silent());
  EXPECT_EQ(changes, 0);
}

TEST_F(APluginsPulse, IsMissedWithinThreeSecondsOfWheneverThePluginHangs) {
  pulse.start();
  for (int i = 0; i < 20; ++i) {
    loop.advance(milliseconds(1000 + 50 * i));
    answers = false;
    loop.advance(seconds(3));
    EXPECT_TRUE(pulse.silent()) << i;
    answers = true;
    pulse.ends();
    EXPECT_FALSE(pulse.silent()) << i;
  }
  EXPECT_EQ(changes, 40);
}

TEST_F(APluginsPulse, IsMissedInACommandToo) {
  pulse.start();
  pulse.begins();
  loop.advance(milliseconds(1999));
  EXPECT_FALSE(pulse.silent());
  loop.advance(milliseconds(1));
  EXPECT_TRUE(pulse.silent());
  EXPECT_EQ(asked, 0);  // it is asked for nothing more meanwhile
  loop.advance(seconds(60));
  EXPECT_EQ(changes, 1);
  pulse.ends();
  EXPECT_EQ(changes, 2);
}

TEST_F(APluginsPulse, IsNotMissedInShortCommandsOneAfterTheOther) {
  pulse.start();
  for (int i = 0; i < 100; ++i) {
    pulse.begins();
    loop.advance(milliseconds(1500));
    pulse.ends();
  }
  EXPECT_EQ(changes, 0);
}

TEST_F(APluginsPulse, IsNotMissedWhenThePluginHasGone) {
  pulse.start();
  answers = false;
  loop.advance(seconds(10));
  EXPECT_TRUE(pulse.silent());
  pulse.stop();
  EXPECT_FALSE(pulse.silent());
  loop.advance(seconds(10));
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(changes, 2);
}

}  // namespace
