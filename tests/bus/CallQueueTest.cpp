#include "bus/CallQueue.hpp"

#include <gtest/gtest.h>

#include "bus/Paths.hpp"
#include "support/BusDaemon.hpp"
#include "support/VirtualLoop.hpp"

namespace {

using bus::CallQueue;
using bus::Message;

constexpr const char* kHost = ":1.1";
constexpr const char* kStranger = ":1.2";

/// Calls in virtual time. What is served at the depth of the limit waits for the host.
class Queue : public testing::Test {
 protected:
  Queue() {
    sd_bus* raw = nullptr;
    EXPECT_LE(0, sd_bus_new(&raw));
    bus.reset(raw);
    EXPECT_LE(0, sd_bus_set_address(raw, daemon.address().c_str()));
    EXPECT_LE(0, sd_bus_start(raw));
  }
  void come(const char* sender, const char* member, const char* interface = "any.text") {
    sd_bus_message* raw = nullptr;
    ASSERT_LE(
        0, sd_bus_message_new_method_call(bus.get(), &raw, "org.example.Own", "/object", interface, member));
    Message message(raw);
    ASSERT_LE(0, sd_bus_message_set_sender(raw, sender));
    queue.add(std::move(message));
  }
  static std::string nameOf(const Message& call) {
    return call ? sd_bus_message_get_member(call.get()) : "nothing";
  }
  std::string taken() { return nameOf(queue.take()); }
  std::string givenUp() {
    return nameOf(queue.takeStuck([](const std::string& sender) { return sender == kHost; }));
  }
  /// Runs `body` within as many calls.
  void at(int depth, const std::function<void()>& body) {
    if (depth == 0) return body();
    queue.within([&] { at(depth - 1, body); });
  }
  void atTheLimit(const std::function<void()>& body) { at(CallQueue::kDeepest, body); }

  support::BusDaemon daemon;
  bus::Bus bus;
  support::VirtualLoop loop;
  CallQueue queue{loop};
};

TEST_F(Queue, ServesCallsInTheOrderInWhichTheyCame) {
  for (const char* name : {"First", "Second", "Third"}) come(kHost, name);
  EXPECT_EQ("First", taken());
  at(CallQueue::kDeepest - 1, [&] { EXPECT_EQ("Second", taken()) << "within others too"; });
  EXPECT_EQ("Third", taken());
  EXPECT_EQ("nothing", taken());
}

TEST_F(Queue, HoldsCallsBeyondTheLimitUntilOneHasEnded) {
  come(kHost, "Held");
  at(CallQueue::kDeepest - 1, [&] {
    queue.within([&] {
      EXPECT_EQ(CallQueue::kDeepest, queue.depth());
      EXPECT_TRUE(queue.held());
      EXPECT_EQ("nothing", taken());
    });
    EXPECT_FALSE(queue.held());
    EXPECT_EQ("Held", taken());
  });
}

TEST_F(Queue, ServesWhatLeadsToNoFurtherCallsAtAnyDepthButNotBeforeWhatItsSenderSentEarlier) {
  atTheLimit([&] {
    come(kHost, "Held");
    come(kHost, "Release", bus::kReferences);
    come(kStranger, "Introspect", bus::kIntrospectable);
    come(kStranger, "Also");
    EXPECT_EQ("Introspect", taken());
    EXPECT_EQ("nothing", taken());
  });
  EXPECT_EQ("Held", taken());
  EXPECT_EQ("Release", taken());
}

TEST_F(Queue, GivesUpACallOfTheAwaitedProcessWhenNothingMovesForFiveSeconds) {
  atTheLimit([&] {
    come(kStranger, "Strange");
    come(kHost, "Circle");
    come(kHost, "Next");
    loop.advance(CallQueue::kPatience - base::Milliseconds(1));
    EXPECT_EQ("nothing", givenUp());
    loop.advance(base::Milliseconds(1));
    EXPECT_EQ("Circle", givenUp());
    EXPECT_EQ("nothing", givenUp()) << "its failure lets others go on";
    loop.advance(CallQueue::kPatience);
    EXPECT_EQ("Next", givenUp());
  });
  EXPECT_EQ("Strange", taken());
}

TEST_F(Queue, GivesNothingUpWhileSomethingMoves) {
  atTheLimit([&] {
    come(kHost, "Held");
    for (int round = 0; round < 100; ++round) {
      loop.advance(CallQueue::kPatience - base::Milliseconds(1));
      EXPECT_EQ("nothing", givenUp());
      queue.moved();
    }
  });
  EXPECT_EQ("Held", taken());
}

TEST_F(Queue, GivesNothingUpBelowTheLimit) {
  at(CallQueue::kDeepest - 1, [&] {
    come(kHost, "Waiting");
    loop.advance(2 * CallQueue::kLongPatience);
    EXPECT_EQ("nothing", givenUp());
  });
}

TEST_F(Queue, GivesACallItsTimeHoweverLongNothingMovedBefore) {
  atTheLimit([&] {
    come(kStranger, "Early");
    loop.advance(2 * CallQueue::kPatience);
    come(kHost, "Late");
    EXPECT_EQ("nothing", givenUp());
    loop.advance(CallQueue::kPatience);
    EXPECT_EQ("Late", givenUp());
  });
}

TEST_F(Queue, GivesUpACallOfAnyOtherProcessAfterHalfAMinute) {
  atTheLimit([&] {
    come(kStranger, "Third");
    loop.advance(CallQueue::kLongPatience - base::Milliseconds(1));
    EXPECT_EQ("nothing", givenUp());
    loop.advance(base::Milliseconds(1));
    EXPECT_EQ("Third", givenUp());
  });
}

}  // namespace
