#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <future>
#include <thread>
#include <utility>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Milliseconds;
using base::ObjectRef;
using support::BusPeer;
using support::FailureNumberOf;
using support::ObjectOf;
using support::TableOf;

/// An operation with an argument that may be left out.
template <class Answer>
Member Call(std::string name, Answer answer) {
  return Operation(std::move(name), {Any("argument", Value())}, Type::kAny, std::move(answer));
}

/// An object that counts down together with a partner that has the same operation.
ObjectRef Half(
    bus::Connection& connection, std::string partner, std::function<void()> atTheBottom = [] {}) {
  return ObjectOf(
      "Half",
      {Call("Down", [&connection, partner = std::move(partner), bottom = std::move(atTheBottom)](Args& args) {
        const auto left = base::ToInt32(args[0]);
        if (left == 0) {
          bottom();
          return Value(0);
        }
        const Value below = connection.proxy(partner, "/half")->invoke("Down", left - 1);
        return Value(base::ToInt32(below) + 1);
      })});
}

class Reentry : public testing::Test {
 protected:
  std::unique_ptr<BusPeer> half(const std::string& name, const std::string& partner) {
    return std::make_unique<BusPeer>(daemon.address(), [=](bus::Connection& own, bus::PollLoop&) {
      own.claimName(name);
      own.exportObject("/half", Half(own, partner));
    });
  }
  /// A peer whose operation "Sleep" blocks its whole thread for some milliseconds.
  std::unique_ptr<BusPeer> sleeper() {
    return std::make_unique<BusPeer>(daemon.address(), [](bus::Connection& own, bus::PollLoop&) {
      own.exportObject("/sleeper",
                       ObjectOf("Sleeper", {Call("Sleep", [](Args& args) {
                                  std::this_thread::sleep_for(Milliseconds(base::ToInt32(args[0])));
                                  return Value("slept");
                                })}));
    });
  }

  /// A peer whose operation "Wait" answers as soon as it may.
  std::unique_ptr<BusPeer> waiter(std::promise<void>& mayAnswer) {
    return std::make_unique<BusPeer>(
        daemon.address(), [may = mayAnswer.get_future().share()](bus::Connection& own, bus::PollLoop&) {
          own.exportObject("/waiter", ObjectOf("Waiter", {Call("Wait", [may](Args&) {
                                                 may.wait();
                                                 return Value("waited");
                                               })}));
        });
  }

  support::BusDaemon daemon;
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
};

/// Two processes that call each other, one of them the test's own.
class Circle : public Reentry {
 protected:
  void SetUp() override {
    connection.claimName("org.example.Left");
    connection.exportObject("/half", Half(connection, "org.example.Right", [this] { atTheBottom(); }));
  }
  std::function<void()> atTheBottom = [] {};
  Value down(int steps) { return other->invoke("Down", steps); }
  std::unique_ptr<BusPeer> right = half("org.example.Right", "org.example.Left");
  ObjectRef other = connection.proxy("org.example.Right", "/half");
};

TEST_F(Circle, TwoProcessesMayCallEachOtherToADepthOf200Each) { EXPECT_EQ(Value(399), down(399)); }

TEST_F(Circle, ACallThatIsDeeperIsRefusedAndHarmsNobody) {
  for (const int steps : {400, 100000})
    EXPECT_EQ(base::number::kOutOfStackSpace, FailureNumberOf([&] { down(steps); })) << steps;
  EXPECT_EQ(Value(399), down(399)) << "the way back has given every step free";
}

TEST_F(Circle, IsEndedWhileOtherCallsComeAndNoneOfThoseIsLost) {
  int hits = 0;
  right->run([&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/target", ObjectOf("Target", {Call("Hit", [&] { ++hits; })}));
  });
  constexpr int kOthers = 300;
  std::atomic<int> refused = 0;
  std::vector<std::thread> others;
  for (int i = 0; i < 3; ++i) {
    others.emplace_back([&] {
      bus::PollLoop ownLoop;
      bus::Connection own(ownLoop, daemon.address());
      const auto target = own.proxy("org.example.Right", "/target");
      for (int hit = 0; hit < kOthers; ++hit) {
        if (FailureNumberOf([&] { target->invoke("Hit"); }) != 0) ++refused;
      }
    });
  }
  EXPECT_EQ(base::number::kOutOfStackSpace, FailureNumberOf([&] { down(100000); }));
  for (auto& other : others) other.join();
  EXPECT_EQ(0, refused);
  right->stop();
  EXPECT_EQ(3 * kOthers, hits);
}

TEST_F(Circle, AReferenceIsTakenBackAtAnyDepth) {
  BusPeer taker(daemon.address(), [](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/taker", ObjectOf("Taker", {Call("Take", [] {})}));
  });
  std::weak_ptr<TableOf> sent;
  bool givenBack = false;
  atTheBottom = [&] {
    auto held = ObjectOf("Held");
    sent = held;
    const auto other = connection.proxy(taker.uniqueName(), "/taker");
    other->invoke("Take", ObjectRef(std::move(held)));
    // It is given back before the reply but served behind it where both come at once: within a further call.
    constexpr int kMostCalls = 1000;
    for (int calls = 0; calls < kMostCalls && !sent.expired(); ++calls) other->invoke("Take");
    givenBack = sent.expired();
  };
  EXPECT_EQ(Value(399), down(399));
  EXPECT_TRUE(givenBack);
}

TEST_F(Reentry, HandlersOfBothProcessesMayBeTheFirstToCall) {
  const auto left = half("org.example.Left", "org.example.Right");
  const auto right = half("org.example.Right", "org.example.Left");
  auto other = std::async(std::launch::async, [&] {
    bus::PollLoop ownLoop;
    bus::Connection own(ownLoop, daemon.address());
    Value last;
    for (int i = 0; i < 5; ++i) last = own.proxy("org.example.Right", "/half")->invoke("Down", 50);
    return last;
  });
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(Value(50), connection.proxy("org.example.Left", "/half")->invoke("Down", 50));
  EXPECT_EQ(Value(50), other.get());
}

TEST_F(Reentry, AReplyThatComesDuringAnInnerCallIsKeptForTheOuterOne) {
  std::promise<void> outerHasBegun;
  std::promise<void> outerMayReply;
  std::promise<void> outerHasReplied;
  BusPeer outer(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/object", ObjectOf("Outer", {Call("Wait", [&] {
                                           outerHasBegun.set_value();
                                           outerMayReply.get_future().get();
                                           return Value("outer");
                                         })}));
  });
  BusPeer inner(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/object", ObjectOf("Inner", {Call("Wait", [&] {
                                           outerHasReplied.get_future().get();
                                           return Value("inner");
                                         })}));
  });
  Value innerResult;
  connection.exportObject(
      "/own", ObjectOf("Own", {Call("Enter", [&] {
                         outerMayReply.set_value();
                         innerResult = connection.proxy(inner.uniqueName(), "/object")->invoke("Wait");
                       })}));
  std::thread caller([&] {
    bus::PollLoop ownLoop;
    bus::Connection own(ownLoop, daemon.address());
    own.proxy(connection.uniqueName(), "/own")->invoke("Enter");
  });
  std::thread watcher([&] {
    outerHasBegun.get_future().get();
    outer.run([](bus::Connection&, bus::PollLoop&) {});  // runs when the outer call has been replied to
    outerHasReplied.set_value();
  });
  const Value outerResult = connection.proxy(outer.uniqueName(), "/object")->invoke("Wait");
  watcher.join();
  support::TurnUntil(loop, [&] { return !innerResult.empty(); });
  caller.join();
  EXPECT_EQ(Value("outer"), outerResult);
  EXPECT_EQ(Value("inner"), innerResult);
}

TEST_F(Reentry, ASignalIsHandledInAPlainWaitToo) {
  std::promise<void> stopped;
  int signals = 0;
  // Before the other thread starts, which takes the blocked signal after its maker.
  const auto onSignal = loop.onSignal(SIGUSR1, [&] {
    ++signals;
    stopped.set_value();
  });
  BusPeer hanging(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/hanging", ObjectOf("Hanging", {Call("Hang", [&] {
                                            ::kill(::getpid(), SIGUSR1);
                                            stopped.get_future().get();
                                            return Value("at last");
                                          })}));
  });
  EXPECT_EQ(Value("at last"), connection.proxy(hanging.uniqueName(), "/hanging")->invoke("Hang"));
  EXPECT_EQ(1, signals);
}

TEST_F(Reentry, RepliesOfAHangingProcessAreGivenUpWhenTimeIsLimited) {
  std::promise<void> stopped;
  int reached = 0;
  BusPeer hanging(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject(
        "/hanging", ObjectOf("Hanging", {Call("Hang", [&] { stopped.get_future().get(); }), Call("Save", [&] {
                                           ++reached;
                                           return Value("saved");
                                         })}));
  });
  const auto remote = connection.proxy(hanging.uniqueName(), "/hanging");
  loop.post([&] { connection.replyWithin(Milliseconds(1)); });
  EXPECT_EQ(base::number::kHostGone,
            FailureNumberOf([&] { loop.whileOpen([&] { remote->invoke("Hang"); }); }));
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { remote->invoke("Save"); }));
  connection.replyWithin(std::nullopt);
  stopped.set_value();
  EXPECT_EQ(Value("saved"), remote->invoke("Save"));
  hanging.stop();
  EXPECT_EQ(2, reached) << "what was given up had been sent";
}

TEST_F(Reentry, APlainWaitServesCallsAndRunsNoTimers) {
  int served = 0;
  int fired = 0;
  connection.exportObject("/own", ObjectOf("Own", {Call("Hit", [&] { ++served; })}));
  BusPeer caller(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/object", ObjectOf("Caller", {Call("Go", [&] {
                                           for (int i = 0; i < 3; ++i) {
                                             own.proxy(connection.uniqueName(), "/own")->invoke("Hit");
                                             std::this_thread::sleep_for(Milliseconds(5));
                                           }
                                         })}));
  });
  const auto timer = loop.makeTimer(Milliseconds(1), [&] { ++fired; });
  timer->enabled(true);
  loop.post([&] { ++fired; });
  connection.proxy(caller.uniqueName(), "/object")->invoke("Go");
  EXPECT_EQ(3, served);
  EXPECT_EQ(0, fired);
}

TEST_F(Reentry, AnOpenWaitRunsTimersAndPostedWorkToo) {
  std::promise<void> both;
  const auto peer = waiter(both);
  int fired = 0;
  bool posted = false;
  bool waits = true;
  const auto timer = loop.makeTimer(Milliseconds(1), [&] {
    if (++fired >= 2 && posted && std::exchange(waits, false)) both.set_value();
  });
  timer->enabled(true);
  loop.post([&] { posted = true; });
  loop.whileOpen(
      [&] { EXPECT_EQ(Value("waited"), connection.proxy(peer->uniqueName(), "/waiter")->invoke("Wait")); });
  EXPECT_GE(fired, 2);
}

TEST_F(Reentry, ACallMadeByAnEventInsideAnOpenWaitWaitsPlainly) {
  const auto quick = sleeper();
  std::promise<void> mayAnswer;
  const auto slow = waiter(mayAnswer);
  int ticks = 0;
  int during = -1;
  const auto ticker = loop.makeTimer(Milliseconds(1), [&] { ++ticks; });
  std::unique_ptr<base::Timer> once;
  once = loop.makeTimer(Milliseconds(1), [&] {
    once->enabled(false);
    const int before = ticks;
    connection.proxy(quick->uniqueName(), "/sleeper")->invoke("Sleep", 30);
    during = ticks - before;
    mayAnswer.set_value();
  });
  ticker->enabled(true);
  once->enabled(true);
  loop.whileOpen([&] { connection.proxy(slow->uniqueName(), "/waiter")->invoke("Wait"); });
  EXPECT_EQ(0, during);
  EXPECT_GE(ticks, 1);
}

TEST_F(Reentry, ACallThatComesInWhilePumpingIsServed) {
  int served = 0;
  connection.exportObject("/own", ObjectOf("Own", {Call("Hit", [&] { ++served; })}));
  auto caller = std::async(std::launch::async, [&] {
    bus::PollLoop ownLoop;
    bus::Connection own(ownLoop, daemon.address());
    own.proxy(connection.uniqueName(), "/own")->invoke("Hit");
  });
  while (served == 0) loop.pump();
  caller.get();
  EXPECT_EQ(1, served);
}

TEST_F(Reentry, AFailedEventLeavesTheOpenWaitAndCallsGoOn) {
  std::promise<void> mayAnswer;
  const auto peer = waiter(mayAnswer);
  const auto remote = connection.proxy(peer->uniqueName(), "/waiter");
  loop.post([] { throw base::Failure(5); });
  EXPECT_EQ(5, support::FailureNumberOf([&] { loop.whileOpen([&] { remote->invoke("Wait"); }); }));
  mayAnswer.set_value();
  EXPECT_EQ(Value("waited"), remote->invoke("Wait"));
}

}  // namespace
