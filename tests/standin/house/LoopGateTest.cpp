#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "base/Failure.hpp"
#include "bus/PollLoop.hpp"
#include "standin/house/LoopGate.hpp"

namespace standin {
namespace {

TEST(LoopGate, WorkRunsOnTheLoopAndItsFailureComesBack) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::seconds(20));
  const auto home = std::this_thread::get_id();
  std::thread web([&] {
    std::thread::id ran;
    const auto outcome = gate.run([&](const auto& done) {
      ran = std::this_thread::get_id();
      done();
    });
    EXPECT_EQ(outcome, LoopGate::Outcome::kDone);
    EXPECT_EQ(ran, home);
    EXPECT_THROW(gate.run([](const auto&) { throw base::Failure(61); }), base::Failure);
    loop.post([&] { loop.quit(0); });
  });
  loop.run();
  web.join();
}

TEST(LoopGate, WorkThatComesTooLateIsNeverBegun) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::milliseconds(20));
  bool begun = false;
  EXPECT_EQ(gate.run([&](const auto&) { begun = true; }), LoopGate::Outcome::kTooLate);
  loop.pump();
  EXPECT_FALSE(begun);
}

TEST(LoopGate, AClosedGateAnswersAtOnce) {
  bus::PollLoop loop;
  LoopGate gate(loop, std::chrono::minutes(5));
  std::atomic<bool> done = false;
  std::thread web([&] {
    EXPECT_EQ(gate.run([](const auto&) {}), LoopGate::Outcome::kClosed);
    done = true;
  });
  gate.close();
  web.join();
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace standin
