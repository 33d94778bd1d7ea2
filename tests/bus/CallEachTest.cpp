#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "base/CallEach.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/ForeignProgram.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Calls of one object that go together.
class ManyCalls : public testing::Test {
 protected:
  static std::vector<base::Call> keeping(const std::vector<std::string>& texts) {
    std::vector<base::Call> calls;
    for (const std::string& text : texts) calls.push_back({"Keep", {text}});
    return calls;
  }
  /// What the keeper has kept; asked for behind everything that was sent before.
  std::vector<std::string> keptSoFar() {
    keeper->invoke("Look");
    return kept;
  }
  std::vector<base::FailedCall> send(std::vector<base::Call> calls) {
    return base::CallEach(*keeper, std::move(calls));
  }

  support::BusDaemon daemon;
  std::vector<std::string> kept;  // the peer's own until it has answered
  support::BusPeer peer{daemon.address(), [this](bus::Connection& own, bus::PollLoop&) {
                          own.exportObject(
                              "/keeper",
                              support::ObjectOf("Keeper", {Command("Keep", {Text("text")},
                                                                   [this](Args& args) {
                                                                     const std::string text = TextAt(args, 0);
                                                                     if (text == "bad")
                                                                       throw base::Failure(
                                                                           base::number::kDiskFull, "Full!");
                                                                     kept.push_back(text);
                                                                   }),
                                                           Command("Look", {}, [](Args&) {})}));
                        }};
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
  base::ObjectRef keeper = connection.proxy(peer.uniqueName(), "/keeper");
};

}  // namespace

TEST_F(ManyCalls, RunInTheirOrderBeforeWhateverIsAskedNext) {
  EXPECT_THAT(send(keeping({"one", "two", "three"})), IsEmpty());
  EXPECT_THAT(kept, ElementsAre("one", "two", "three")) << "all had ended when it returned";
  keeper->invoke("Keep", "four");
  EXPECT_THAT(send(keeping({"five", "six"})), IsEmpty());
  EXPECT_THAT(keptSoFar(), ElementsAre("one", "two", "three", "four", "five", "six"));
}

TEST_F(ManyCalls, AFailedOneStopsNoneAndIsToldWithItsPlace) {
  std::vector<base::Call> calls = keeping({"one", "bad", "two", "bad"});
  calls.push_back({"NoSuchThing", {}});
  calls.push_back({"Keep", {}});
  const auto failed = send(std::move(calls));
  EXPECT_THAT(keptSoFar(), ElementsAre("one", "two"));
  ASSERT_THAT(failed, SizeIs(4));
  EXPECT_EQ(failed[0].place, 1U);
  EXPECT_EQ(failed[0].failure.number(), base::number::kDiskFull);
  EXPECT_EQ(failed[0].failure.description(), "Full!");
  EXPECT_EQ(failed[1].place, 3U);
  EXPECT_EQ(failed[2].place, 4U);
  EXPECT_EQ(failed[2].failure.number(), base::number::kNoSuchMember);
  EXPECT_EQ(failed[3].place, 5U);
}

TEST_F(ManyCalls, ArgumentsOfAllKindsArriveAsInACallAlone) {
  std::vector<Value> seen;
  const auto all = support::ObjectOf(
      "All", {Command("Take", {Any("a"), Any("b"), Any("c"), Any("d")}, [&](Args& args) { seen = args; })});
  support::BusPeer other(daemon.address(),
                         [&](bus::Connection& own, bus::PollLoop&) { own.exportObject("/all", all); });
  const base::ObjectRef remote = connection.proxy(other.uniqueName(), "/all");
  const Args args{true, std::int16_t{7}, std::string("code 1\x01 and no text \xFF"),
                  base::Array{std::int32_t{1}, "two"}};
  EXPECT_THAT(base::CallEach(*remote, {{"Take", {1, 2, 3, 4}}, {"Take", args}}), IsEmpty());
  EXPECT_EQ(seen, args);
}

TEST_F(ManyCalls, AHostThatDoesntKnowThemGetsThemOneByOne) {
  support::ForeignProgram stranger(daemon.address());
  std::atomic<bool> over = false;
  std::thread answers([&] { stranger.serveWhile([&] { return !over; }); });
  const base::ObjectRef remote = connection.proxy(stranger.name(), "/any");
  EXPECT_THAT(base::CallEach(*remote, keeping({"one", "two", "three"})), IsEmpty());
  over = true;
  answers.join();
  EXPECT_EQ(stranger.asked, 4) << "once for its description, which is none, and for each call";
}

TEST_F(ManyCalls, WhatIsTooLargeTogetherGoesOneByOne) {
  const std::string large(std::size_t{40} << 20U, 'x');
  EXPECT_THAT(send(keeping({large, large})), IsEmpty());
  ASSERT_THAT(keptSoFar(), SizeIs(2));
  EXPECT_EQ(kept[1].size(), large.size());
}

TEST_F(ManyCalls, OfAPeerThatHasGoneHaveAllFailed) {
  EXPECT_THAT(send(keeping({"one", "two"})), IsEmpty());
  peer.stop();
  const auto failed = send(keeping({"three", "four"}));
  ASSERT_THAT(failed, SizeIs(2));
  for (const base::FailedCall& each : failed) EXPECT_EQ(each.failure.number(), base::number::kHostGone);
}

TEST_F(ManyCalls, AMessageThatIsNotMadeOfCallsMakesNone) {
  support::ForeignProgram stranger(daemon.address());
  stranger.interface = "org.vantorix.Calls";
  const auto sent = [&](auto... message) {
    stranger.answers.clear();
    stranger.send(peer.uniqueName(), "/keeper", "CallEach", message...);
    stranger.serveWhile([&] { return stranger.answers.empty(); });
    return stranger.answers.front();
  };
  EXPECT_EQ(sent("av", 2, "as", 2, "Keep", "one", "s", "Keep"), "org.vantorix.Failure.N13")
      << "the second is none";
  EXPECT_NE(sent("av", 1, "as", 0), "") << "no name";
  EXPECT_NE(sent("s", "Keep"), "");
  EXPECT_NE(sent(""), "");
  EXPECT_THAT(keptSoFar(), IsEmpty());
  EXPECT_EQ(sent("av", 1, "as", 2, "Keep", "one"), "");
  EXPECT_THAT(keptSoFar(), ElementsAre("one"));
}
