#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using support::BusPeer;
using support::FailureNumberOf;
using support::ObjectOf;
using support::TurnUntil;

constexpr const char* kActivated = "org.example.Activated";

class Loss : public testing::Test {
 protected:
  support::BusDaemon daemon{{{kActivated, BUS_TEST_SERVICE}, {"org.example.Useless", "/bin/false"}}};
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
  base::ObjectRef service = connection.proxy(kActivated, "/service");
};

TEST_F(Loss, AServiceIsStartedFromItsFile) {
  EXPECT_FALSE(connection.hasOwner(kActivated));
  connection.startService(kActivated);
  EXPECT_TRUE(connection.hasOwner(kActivated));
  EXPECT_NE(0U, connection.processOf(kActivated));
  EXPECT_EQ(Value("Hello, you"), service->invoke("Greet"));
  connection.startService(kActivated);  // it runs already
  service->invoke("Quit");
}

TEST_F(Loss, ACallDoesNotStartAService) {
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { service->invoke("Greet"); }));
  EXPECT_FALSE(connection.hasOwner(kActivated));
}

TEST_F(Loss, AServiceThatCannotBeStartedIsFailure429WithTheReason) {
  EXPECT_EQ(base::number::kCannotCreate,
            FailureNumberOf([&] { connection.startService("org.example.Useless"); }));
  try {
    connection.startService("org.example.Unheard");
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(base::number::kCannotCreate, failure.number());
    EXPECT_THAT(failure.description(), testing::HasSubstr("org.example.Unheard"));
  }
}

TEST_F(Loss, AnotherProcessMayAskBackWhileItIsCalled) {
  connection.startService(kActivated);
  const auto asker = ObjectOf("Asker", {Constant("Answer", Type::kInt32, 42)});
  EXPECT_EQ(Value(42), service->invoke("AskBack", asker));
  service->invoke("Quit");
}

TEST_F(Loss, AProcessThatDiesInTheMiddleOfACallIsFailure462) {
  connection.startService(kActivated);
  bool gone = false;
  connection.onNameLost(kActivated, [&] { gone = true; });
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { service->invoke("Die"); }));
  EXPECT_TRUE(TurnUntil(loop, [&] { return gone; }));
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { service->invoke("Greet"); }));
}

TEST_F(Loss, TheLossOfANameIsToldEachTime) {
  int lost = 0;
  connection.onNameLost("org.example.Coming", [&] { ++lost; });
  for (int round = 1; round <= 2; ++round) {
    BusPeer peer(daemon.address(),
                 [](bus::Connection& own, bus::PollLoop&) { own.claimName("org.example.Coming"); });
    EXPECT_EQ(round - 1, lost);
    peer.stop();
    EXPECT_TRUE(TurnUntil(loop, [&] { return lost == round; }));
  }
}

TEST_F(Loss, ABusThatDiesInTheMiddleOfACallIsFailure462AndIsTold) {
  bool gone = false;
  connection.onDisconnect([&] { gone = true; });
  BusPeer peer(daemon.address(), [this](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/killer", ObjectOf("Killer", {Command("Kill", {}, [this] { daemon.kill(); })}));
  });
  const auto killer = connection.proxy(peer.uniqueName(), "/killer");
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { killer->invoke("Kill"); }));
  EXPECT_FALSE(gone) << "it is told on a turn of the loop";
  EXPECT_TRUE(TurnUntil(loop, [&] { return gone; }));
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { killer->invoke("Kill"); }));
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { connection.startService(kActivated); }));
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { connection.hasOwner(kActivated); }));
}

TEST_F(Loss, ABusThatDiesWhileTheLoopTurnsIsTold) {
  bool gone = false;
  connection.onDisconnect([&] { gone = true; });
  daemon.kill();
  EXPECT_TRUE(TurnUntil(loop, [&] { return gone; }));
}

TEST_F(Loss, ABusThatDiesInAnOpenWaitEndsTheWait) {
  BusPeer peer(daemon.address(), [this](bus::Connection& own, bus::PollLoop&) {
    own.exportObject("/killer", ObjectOf("Killer", {Command("Kill", {}, [this] { daemon.kill(); })}));
  });
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] {
              loop.whileOpen([&] { connection.proxy(peer.uniqueName(), "/killer")->invoke("Kill"); });
            }));
}

TEST_F(Loss, ProxiesFailOnceTheirConnectionHasGone) {
  base::ObjectRef orphan;
  {
    bus::Connection brief(loop, daemon.address());
    orphan = brief.proxy(kActivated, "/service");
  }
  EXPECT_EQ(base::number::kHostGone, FailureNumberOf([&] { orphan->invoke("Greet"); }));
}

TEST(NoBus, ConnectingWithoutABusIsFailure462) {
  bus::PollLoop loop;
  EXPECT_EQ(base::number::kHostGone,
            FailureNumberOf([&] { const bus::Connection none(loop, "unix:path=/nowhere/at/all"); }));
  EXPECT_EQ(base::number::kHostGone,
            FailureNumberOf([&] { const bus::Connection none(loop, "no address"); }));
}

}  // namespace
