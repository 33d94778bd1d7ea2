// Programs on the bus that wait while the plug-in does.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "base/Failure.hpp"
#include "standin/fakes/FakeVoice.hpp"
#include "standin/hostobjects/HostWaits.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/SkippingClock.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

constexpr const char* kPlugin = "org.example.Plugin";

/// A program that asks the host for one wait.
class Waiter {
 public:
  Waiter(const std::string& bus, std::string host, std::int16_t seconds, const char* name = nullptr)
      : host_(std::move(host)), seconds_(seconds), peer_(bus, [name](bus::Connection& own, bus::PollLoop&) {
          if (name != nullptr) own.claimName(name);
        }) {}
  ~Waiter() {
    if (thread_.joinable()) thread_.join();
  }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;
  Waiter(Waiter&&) = delete;
  Waiter& operator=(Waiter&&) = delete;

  void begin() {
    thread_ = std::thread([this] {
      peer_.run([this](bus::Connection& own, bus::PollLoop&) {
        const auto host = own.proxy(host_, "/host");
        failure_ = support::FailureNumberOf([&] { host->invoke("WaitSecs", seconds_); });
        ended_ = true;
      });
    });
  }
  [[nodiscard]] bool begun() const { return thread_.joinable(); }
  [[nodiscard]] bool ended() const { return ended_; }
  /// The number of the failure that the wait ended in, 0 without one.
  [[nodiscard]] int failure() const { return failure_; }

 private:
  std::string host_;
  std::int16_t seconds_;
  std::atomic<bool> ended_ = false;
  std::atomic<int> failure_ = 0;
  support::BusPeer peer_;
  std::thread thread_;
};

class HostStrangers : public testing::Test {
 protected:
  HostStrangers() {
    connection.waitLongFor(kPlugin);
    connection.exportObject(
        "/host", support::ObjectOf("Host", {Command("WaitSecs", {Short("seconds")}, [this](base::Args& args) {
                                     waits.seconds(ShortAt(args, 0));
                                   })}));
  }

  support::BusDaemon daemon;
  support::SkippingClock clock;
  support::TempFolder folder;
  bus::PollLoop loop{clock.reader()};
  bus::Connection connection{loop, daemon.address()};
  House house{folder.path()};
  support::FakeVoice voice;
  Speech speech{loop, house, voice};
  LoopWaits waits{loop, speech, LoopWaits::kFetchLimit, [this] { return connection.servesStranger(); }};
};

TEST_F(HostStrangers, DoNotHoldUpTheWaitOfThePlugIn) {
  Waiter plugin(daemon.address(), connection.uniqueName(), 1, kPlugin);
  Waiter stranger(daemon.address(), connection.uniqueName(), 3600);
  int seconds = 0;
  const auto within = loop.makeTimer(base::Milliseconds(1), [&] {
    const int waiting = loop.depth() - 1;
    if (waiting < 1) return;
    if (!stranger.begun()) stranger.begin();
    if (!stranger.ended() && waiting < 2) return;  // until it has been answered, or waits too
    clock.skip(std::chrono::seconds(1));
    ++seconds;
  });
  within->enabled(true);
  plugin.begin();
  EXPECT_TRUE(support::TurnUntil(
      loop, [&] { return plugin.ended() && stranger.ended(); }, std::chrono::hours(24)));
  EXPECT_EQ(plugin.failure(), 0);
  EXPECT_EQ(stranger.failure(), base::number::kInternal);
  EXPECT_LT(seconds, 60);
}

TEST_F(HostStrangers, MayWaitForSeconds) {
  Waiter stranger(daemon.address(), connection.uniqueName(), 5);
  const auto within = loop.makeTimer(base::Milliseconds(1), [&] { clock.skip(std::chrono::seconds(1)); });
  within->enabled(true);
  stranger.begin();
  EXPECT_TRUE(support::TurnUntil(
      loop, [&] { return stranger.ended(); }, std::chrono::hours(24)));
  EXPECT_EQ(stranger.failure(), 0);
}

}  // namespace
}  // namespace standin
