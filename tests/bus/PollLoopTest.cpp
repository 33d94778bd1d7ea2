#include "bus/PollLoop.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "support/BusPeer.hpp"

namespace {

using base::Milliseconds;
using bus::PollLoop;
using support::TurnUntil;

/// Both ends of a pipe.
struct Pipe {
  Pipe() { EXPECT_EQ(0, ::pipe(ends.data())); }
  ~Pipe() {
    ::close(ends[0]);
    ::close(ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  Pipe(Pipe&&) = delete;
  Pipe& operator=(Pipe&&) = delete;
  void put() const { EXPECT_EQ(1, ::write(ends[1], "x", 1)); }
  void take() const {
    char c = 0;
    EXPECT_EQ(1, ::read(ends[0], &c, 1));
  }
  std::array<int, 2> ends{};
};

TEST(PollLoop, WhatIsPreparedBeforeATurnCountsInThatTurn) {
  PollLoop loop;
  int prepared = 0;
  int worked = 0;
  loop.beforeWait([&] {
    ++prepared;
    loop.post([&] { ++worked; });
  });
  loop.turn(std::chrono::seconds(30));  // does not wait
  EXPECT_EQ(prepared, 1);
  EXPECT_EQ(worked, 1);
  loop.beforeWait({});
  loop.pump();
  EXPECT_EQ(prepared, 1);
}

TEST(PollLoop, ATimerRepeatsWhileItIsEnabled) {
  PollLoop loop;
  int fired = 0;
  const auto timer = loop.makeTimer(Milliseconds(1), [&] { ++fired; });
  loop.turn(Milliseconds(5));
  EXPECT_EQ(0, fired) << "a new timer is disabled";
  timer->enabled(true);
  EXPECT_TRUE(TurnUntil(loop, [&] { return fired >= 3; }));
  timer->enabled(false);
  const int before = fired;
  for (int i = 0; i < 5; ++i) loop.turn(Milliseconds(2));
  EXPECT_EQ(before, fired);
}

TEST(PollLoop, ATimerWithIntervalZeroDoesNotFire) {
  PollLoop loop;
  int fired = 0;
  const auto timer = loop.makeTimer(Milliseconds(0), [&] { ++fired; });
  timer->enabled(true);
  for (int i = 0; i < 3; ++i) loop.turn(Milliseconds(2));
  EXPECT_EQ(0, fired);
  timer->interval(Milliseconds(1));
  EXPECT_TRUE(TurnUntil(loop, [&] { return fired == 1; }));
}

TEST(PollLoop, EnablingAnEnabledTimerKeepsItsWaitRunning) {
  auto time = std::chrono::steady_clock::time_point();
  PollLoop loop([&] { return time; });
  int fired = 0;
  const auto timer = loop.makeTimer(Milliseconds(60), [&] { ++fired; });
  timer->enabled(true);
  for (int i = 0; i < 59; ++i) {
    time += Milliseconds(1);
    timer->enabled(true);
    loop.pump();
  }
  EXPECT_EQ(0, fired);
  time += Milliseconds(1);
  loop.pump();
  EXPECT_EQ(1, fired);
}

TEST(PollLoop, ChangingTheIntervalStartsTheWaitAnew) {
  auto time = std::chrono::steady_clock::time_point();
  PollLoop loop([&] { return time; });
  int fired = 0;
  const auto timer = loop.makeTimer(Milliseconds(1), [&] { ++fired; });
  timer->enabled(true);
  timer->interval(std::chrono::hours(1));
  time += std::chrono::minutes(59);
  loop.pump();
  EXPECT_EQ(0, fired);
  time += std::chrono::minutes(1);
  loop.pump();
  EXPECT_EQ(1, fired);
}

TEST(PollLoop, ATimerNeverFiresWithinItsOwnEvent) {
  PollLoop loop;
  int depth = 0;
  int deepest = 0;
  int fired = 0;
  int other = 0;
  const auto timer = loop.makeTimer(Milliseconds(1), [&] {
    deepest = std::max(deepest, ++depth);
    const int before = other;
    EXPECT_TRUE(TurnUntil(loop, [&] { return other > before + 2; })) << "other timers do run meanwhile";
    --depth;
    ++fired;
  });
  const auto second = loop.makeTimer(Milliseconds(1), [&] { ++other; });
  timer->enabled(true);
  second->enabled(true);
  EXPECT_TRUE(TurnUntil(loop, [&] { return fired == 2; }));
  EXPECT_EQ(1, deepest);
}

TEST(PollLoop, ATimerMayDestroyItselfInItsEvent) {
  PollLoop loop;
  int fired = 0;
  std::unique_ptr<base::Timer> timer;
  const auto held = std::make_shared<int>(7);
  timer = loop.makeTimer(Milliseconds(1), [&timer, &fired, &loop, held] {
    timer.reset();
    loop.pump();
    fired += *held;
  });
  timer->enabled(true);
  EXPECT_TRUE(TurnUntil(loop, [&] { return fired == 7; }));
  for (int i = 0; i < 3; ++i) loop.turn(Milliseconds(2));
  EXPECT_EQ(7, fired);
  EXPECT_EQ(1, held.use_count()) << "what the event held has been let go";
}

TEST(PollLoop, PumpRunsTheWorkPostedSoFarAndReturns) {
  PollLoop loop;
  std::string order;
  std::function<void()> again = [&] {
    order += "r";
    loop.post(again);
  };
  loop.post([&] { order += "a"; });
  loop.post(again);
  loop.post([&] { order += "b"; });
  loop.pump();
  EXPECT_EQ("arb", order);
  loop.pump();
  EXPECT_EQ("arbr", order);
}

TEST(PollLoop, ATurnInsideAPostedWorkGoesOnWithTheNext) {
  PollLoop loop;
  std::string order;
  loop.post([&] {
    order += "(";
    loop.pump();
    order += ")";
  });
  loop.post([&] { order += "b"; });
  loop.post([&] { order += "c"; });
  loop.pump();
  EXPECT_EQ("(bc)", order);
}

TEST(PollLoop, AnotherThreadWakesTheLoopByPosting) {
  PollLoop loop;
  bool ran = false;
  std::thread poster([&] { loop.post([&] { loop.quit(ran ? 1 : 7); }); });
  EXPECT_EQ(7, loop.run());
  poster.join();
}

TEST(PollLoop, AWatchIsNotEnteredWithinItsOwnEvent) {
  PollLoop loop;
  const Pipe pipe;
  int depth = 0;
  int deepest = 0;
  int events = 0;
  const auto watch = loop.watch(pipe.ends[0], POLLIN, [&](short) {
    deepest = std::max(deepest, ++depth);
    loop.pump();  // still readable here
    pipe.take();
    --depth;
    ++events;
  });
  pipe.put();
  pipe.put();
  EXPECT_TRUE(TurnUntil(loop, [&] { return events == 2; }));
  EXPECT_EQ(1, deepest);
}

TEST(PollLoop, ReadinessThatAnInnerTurnHasHandledIsNotHandledAgain) {
  PollLoop loop;
  const Pipe first;
  const Pipe second;
  int events = 0;
  const auto one = loop.watch(first.ends[0], POLLIN, [&](short) {
    first.take();
    loop.pump();
  });
  const auto two = loop.watch(second.ends[0], POLLIN, [&](short) {
    second.take();  // would block for ever if there were nothing left
    ++events;
  });
  first.put();
  second.put();
  loop.pump();
  EXPECT_EQ(1, events);
}

TEST(PollLoop, AWatchMayDestroyItselfInItsEvent) {
  PollLoop loop;
  const Pipe pipe;
  int events = 0;
  std::unique_ptr<PollLoop::Watch> watch;
  watch = loop.watch(pipe.ends[0], POLLIN, [&](short) {
    watch.reset();
    ++events;
  });
  pipe.put();
  loop.pump();
  loop.pump();
  EXPECT_EQ(1, events);
}

TEST(PollLoop, AWatchWaitsForTheEventsLastSet) {
  PollLoop loop;
  const Pipe pipe;
  int events = 0;
  const auto watch = loop.watch(pipe.ends[1], 0, [&](short ready) {
    EXPECT_NE(0, ready & POLLOUT);
    ++events;
  });
  loop.pump();
  EXPECT_EQ(0, events);
  watch->events(POLLOUT);
  loop.pump();
  EXPECT_EQ(1, events);
}

TEST(PollLoop, ASignalBecomesAnEvent) {
  PollLoop loop;
  int signals = 0;
  const auto watch = loop.onSignal(SIGUSR1, [&] { ++signals; });
  ::raise(SIGUSR1);
  EXPECT_TRUE(TurnUntil(loop, [&] { return signals == 1; }));
}

TEST(PollLoop, AFailedEventLeavesTheTurnAndTheLoopGoesOn) {
  PollLoop loop;
  int fired = 0;
  const auto timer = loop.makeTimer(Milliseconds(1), [&] {
    if (++fired == 1) throw std::runtime_error("first");
  });
  timer->enabled(true);
  EXPECT_THROW(TurnUntil(loop, [&] { return false; }), std::runtime_error);
  EXPECT_TRUE(TurnUntil(loop, [&] { return fired == 2; }));
}

TEST(PollLoop, TheLoopIsOpenOnlyInsideWhileOpenAndNotInTheEventsThere) {
  PollLoop loop;
  bool inEvent = true;
  EXPECT_FALSE(loop.open());
  loop.whileOpen([&] {
    EXPECT_TRUE(loop.open());
    loop.post([&] { inEvent = loop.open(); });
    loop.pump();
    EXPECT_TRUE(loop.open());
  });
  EXPECT_FALSE(inEvent);
  EXPECT_FALSE(loop.open());
}

TEST(PollLoop, TimersAndWatchesMayOutliveTheLoop) {
  auto loop = std::make_unique<PollLoop>();
  const Pipe pipe;
  const auto timer = loop->makeTimer(Milliseconds(1), [] { FAIL(); });
  const auto watch = loop->watch(pipe.ends[0], POLLIN, [](short) { FAIL(); });
  timer->enabled(true);
  loop.reset();
  timer->enabled(false);
  watch->events(0);
  EXPECT_FALSE(timer->enabled());
}

}  // namespace
