#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <thread>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/ForeignProgram.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using support::ForeignProgram;

constexpr int kBurst = 5000;

class Burst : public testing::Test {
 protected:
  void work(bus::Connection& own, const Args& args) {
    begun.push_back(NumberAt(args, 0));
    EXPECT_EQ(Value("answer"), own.proxy(server.name(), "/any")->invoke("Ask"));
    ++ended;
  }
  void send(ForeignProgram& client) {
    for (int i = 0; i < kBurst; ++i) client.send(worker.uniqueName(), "/object", "Work", "i", i);
  }
  void expectAllIn(const ForeignProgram& client) {
    std::vector<int> inOrder(kBurst);
    std::iota(inOrder.begin(), inOrder.end(), 0);
    EXPECT_EQ(std::vector<std::string>(kBurst), client.answers) << "no failure among them";
    EXPECT_EQ(inOrder, begun);
    EXPECT_EQ(kBurst, ended);
  }

  support::BusDaemon daemon;
  ForeignProgram server{daemon.address()};
  std::vector<int> begun;  // the worker's own until it is stopped
  int ended = 0;
  /// Has an object that asks the server back each time before its work is done.
  support::BusPeer worker{
      daemon.address(), [this](bus::Connection& own, bus::PollLoop&) {
        own.exportObject(
            "/object", support::ObjectOf("Worker", {Command("Work", {Number("number")},
                                                            [this, &own](Args& args) { work(own, args); })}));
      }};
};

TEST_F(Burst, OfTheServerThatIsAskedBackLosesNothingAndBeginsInOrder) {
  send(server);
  server.serveWhile([&] { return server.answers.size() < kBurst; });
  worker.stop();
  expectAllIn(server);
}

TEST_F(Burst, OfAThirdPartyLosesNothingAndBeginsInOrder) {
  ForeignProgram stranger(daemon.address());
  std::atomic<bool> over = false;
  std::thread asked([&] { server.serveWhile([&] { return !over; }); });
  send(stranger);
  stranger.serveWhile([&] { return stranger.answers.size() < kBurst; });
  over = true;
  asked.join();
  worker.stop();
  expectAllIn(stranger);
}

}  // namespace
