#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {

class StateQueue : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
  std::vector<std::int32_t> handled;
  std::function<void(std::int32_t)> worker = [this](std::int32_t state) { handled.push_back(state); };
  player::StateQueue queue{loop, plugin.host, plugin.loggers, [this](std::int32_t state) { worker(state); }};
  void run() { loop.advance(base::Milliseconds(2)); }
};

}  // namespace

TEST_F(StateQueue, HandlesNothingInsideThePlayersEvent) {
  queue.wmp9_PlayStateChange(9);
  EXPECT_TRUE(handled.empty());
  EXPECT_TRUE(queue.PlayStateChangeTimer().enabled());
  run();
  EXPECT_THAT(handled, ElementsAre(9));
}

TEST_F(StateQueue, IsFirstInFirstOut) {
  for (const int state : {9, 3, 8}) queue.PushStack(state);
  EXPECT_EQ(queue.PopStack(), 9);
  EXPECT_EQ(queue.PopStack(), 3);
  EXPECT_EQ(queue.PopStack(), 8);
  EXPECT_EQ(queue.PopStack(), std::nullopt);
}

TEST_F(StateQueue, StatesThatArriveDuringADrainAreTakenInTheSameDrain) {
  bool inside = false;
  worker = [&](std::int32_t state) {
    EXPECT_FALSE(inside) << "the worker was entered twice";
    inside = true;
    handled.push_back(state);
    if (state == 1) {
      EXPECT_EQ(queue.PlayStateChangeTimer().interval().count(), 0);
      queue.wmp9_PlayStateChange(9);
      queue.wmp9_PlayStateChange(3);
      EXPECT_FALSE(queue.PlayStateChangeTimer().enabled());
      loop.advance(base::Milliseconds(5));  // a host call lets events in
    }
    inside = false;
  };
  queue.PushStack(1);
  queue.PushStack(2);
  run();
  EXPECT_THAT(handled, ElementsAre(1, 2, 9, 3));
}

TEST_F(StateQueue, RestsDisabledWithItsIntervalBackAfterADrain) {
  queue.PushStack(3);
  run();
  EXPECT_EQ(queue.PlayStateChangeTimer().interval().count(), 1);
  EXPECT_FALSE(queue.PlayStateChangeTimer().enabled());
  queue.PushStack(8);
  EXPECT_TRUE(queue.PlayStateChangeTimer().enabled());
}

TEST_F(StateQueue, AFailureInADrainStopsItForGood) {
  worker = [&](std::int32_t state) {
    handled.push_back(state);
    throw base::Failure(base::number::kOverflow);
  };
  queue.PushStack(3);
  queue.PushStack(8);
  run();
  EXPECT_THAT(handled, ElementsAre(3));
  EXPECT_TRUE(logged("Error", "Media Player Error# 6: Overflow"));
  EXPECT_EQ(queue.PlayStateChangeTimer().interval().count(), 0);
  queue.wmp9_PlayStateChange(9);
  EXPECT_FALSE(queue.PlayStateChangeTimer().enabled());
  run();
  EXPECT_THAT(handled, ElementsAre(3));
}

TEST_F(StateQueue, AFailureOfAStateThatIsHandledAtOnceEndsNothing) {
  worker = [&](std::int32_t state) {
    if (state == 1) throw base::Failure(base::number::kOverflow);
    handled.push_back(state);
  };
  queue.handleNow(1);
  EXPECT_EQ(queue.PlayStateChangeTimer().interval().count(), 1);
  queue.PushStack(8);
  run();
  EXPECT_THAT(handled, ElementsAre(8));
}

TEST_F(StateQueue, LeavesItsStatesAloneOnceTheHostIsGone) {
  queue.PushStack(3);
  plugin.host.Host.reset();
  run();
  EXPECT_TRUE(handled.empty());
  EXPECT_EQ(queue.PlayStateChangeTimer().interval().count(), 0);
}
