#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <utility>
#include <vector>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/SkippingClock.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Milliseconds;
using support::BusPeer;
using support::FailureNumberOf;
using support::ObjectOf;

constexpr const char* kVouched = "org.example.Vouched";

/// A process that waits long for one other, and one on the bus that answers nothing until it is let.
class AProgramThatDoesNotAnswer : public testing::Test {
 protected:
  AProgramThatDoesNotAnswer() { connection.waitLongFor(kVouched); }
  ~AProgramThatDoesNotAnswer() override { letAnswer(); }
  AProgramThatDoesNotAnswer(const AProgramThatDoesNotAnswer&) = delete;
  AProgramThatDoesNotAnswer& operator=(const AProgramThatDoesNotAnswer&) = delete;
  AProgramThatDoesNotAnswer(AProgramThatDoesNotAnswer&&) = delete;
  AProgramThatDoesNotAnswer& operator=(AProgramThatDoesNotAnswer&&) = delete;

  void letAnswer() {
    if (!std::exchange(let_, true)) mayAnswer_.set_value();
  }
  void setUp(bus::Connection& own) const {
    own.exportObject("/mute", ObjectOf("Mute", {ReadField("Field", Type::kInt32,
                                                          [may = may_] {
                                                            may.wait();
                                                            return 1;
                                                          }),
                                                Operation("Ask", {}, Type::kInt32, [may = may_] {
                                                  may.wait();
                                                  return 1;
                                                })}));
  }
  /// A second passes at each turn of the loop that runs its timers.
  std::unique_ptr<base::Timer> secondsPass(const std::function<void(int second)>& event) {
    return loop.makeTimer(Milliseconds(1), [this, event] {
      clock.skip(std::chrono::seconds(1));
      event(++seconds);
    });
  }

  support::BusDaemon daemon;
  support::SkippingClock clock;
  bus::PollLoop loop{clock.reader()};
  bus::Connection connection{loop, daemon.address()};
  int seconds = 0;

 private:
  std::promise<void> mayAnswer_;
  std::shared_future<void> may_ = mayAnswer_.get_future().share();
  bool let_ = false;

 protected:
  BusPeer stranger{daemon.address(), [this](bus::Connection& own, bus::PollLoop&) { setUp(own); }};
  base::ObjectRef mute = connection.proxy(stranger.uniqueName(), "/mute");
};

TEST_F(AProgramThatDoesNotAnswer, IsGivenUpInSecondsAndTheLoopGoesOnMeanwhile) {
  const auto timer = secondsPass([](int) {});
  timer->enabled(true);
  const Milliseconds begin = loop.now();
  EXPECT_EQ(FailureNumberOf([&] { mute->get("Field"); }), base::number::kHostGone);
  EXPECT_EQ(FailureNumberOf([&] { mute->invoke("Ask"); }), base::number::kHostGone);
  EXPECT_EQ(FailureNumberOf([&] { connection.introspect(stranger.uniqueName(), "/mute"); }),
            base::number::kHostGone);
  EXPECT_GE(seconds, 3 * 4);
  EXPECT_LT(loop.now() - begin, std::chrono::minutes(5));
}

TEST_F(AProgramThatDoesNotAnswer, IsWaitedForNoLongerThanUntilTheEnd) {
  const auto timer = loop.makeTimer(Milliseconds(1), [&] { loop.quit(0); });
  timer->enabled(true);
  const Milliseconds begin = loop.now();
  EXPECT_EQ(FailureNumberOf([&] { mute->invoke("Ask"); }), base::number::kHostGone);
  EXPECT_EQ(FailureNumberOf([&] { mute->invoke("Ask"); }), base::number::kHostGone);
  EXPECT_TRUE(loop.quitting());
  EXPECT_LT(loop.now() - begin, std::chrono::seconds(8)) << "a stranger alone has five, each time";
}

TEST_F(AProgramThatDoesNotAnswer, IsAskedByFewAtOnce) {
  int under = 0;
  int deepest = 0;
  int refusedAtOnce = 0;
  const std::function<void()> ask = [&] {
    const Milliseconds begin = loop.now();
    deepest = std::max(deepest, ++under);
    EXPECT_EQ(FailureNumberOf([&] { mute->invoke("Ask"); }), base::number::kHostGone);
    --under;
    if (loop.now() - begin < Milliseconds(900)) ++refusedAtOnce;
  };
  for (int i = 0; i < 10; ++i) loop.post(ask);
  const auto timer = secondsPass([](int) {});
  timer->enabled(true);
  ask();
  EXPECT_LE(deepest, 5);
  EXPECT_GT(refusedAtOnce, 0);
}

TEST_F(AProgramThatDoesNotAnswer, MayTakeLongWhenItIsTheOneThatIsVouchedFor) {
  BusPeer vouched(daemon.address(), [this](bus::Connection& own, bus::PollLoop&) {
    own.claimName(kVouched);
    setUp(own);
  });
  const auto timer = secondsPass([this](int second) {
    if (second == 600) letAnswer();
  });
  timer->enabled(true);
  const auto own = connection.proxy(vouched.uniqueName(), "/mute");  // as what it has sent
  loop.whileOpen([&] { EXPECT_EQ(FailureNumberOf([&] { own->get("Field"); }), base::number::kHostGone); });
  EXPECT_GE(seconds, 9);
  EXPECT_LT(seconds, 100) << "a field is answered at once";
  loop.whileOpen([&] { EXPECT_EQ(own->invoke("Ask"), Value(1)); });
  EXPECT_GE(seconds, 600);
  vouched.stop();
}

TEST_F(AProgramThatDoesNotAnswer, IsToldFromTheVouchedOneAndFromWhatTheLoopDoesByItself) {
  std::vector<bool> asked;
  connection.exportObject("/own", ObjectOf("Own", {Command("Ask", {}, [&] {
                                             asked.push_back(connection.servesStranger());
                                             loop.post([&] { asked.push_back(connection.servesStranger()); });
                                             loop.whileOpen([&] { loop.pump(); });
                                             asked.push_back(connection.servesStranger());
                                           })}));
  const auto askedBy = [&](BusPeer& peer) {
    std::atomic<bool> ended = false;
    std::thread thread([&] {
      peer.run([&](bus::Connection& its, bus::PollLoop&) {
        its.proxy(connection.uniqueName(), "/own")->invoke("Ask");
      });
      ended = true;
    });
    EXPECT_TRUE(support::TurnUntil(loop, [&] { return ended.load(); }));
    thread.join();
    return std::exchange(asked, {});
  };
  BusPeer vouched(daemon.address(), [](bus::Connection& own, bus::PollLoop&) { own.claimName(kVouched); });
  EXPECT_EQ(askedBy(stranger), (std::vector<bool>{true, false, true}));
  EXPECT_EQ(askedBy(vouched), (std::vector<bool>{false, false, false}));
  EXPECT_FALSE(connection.servesStranger());
}

}  // namespace
