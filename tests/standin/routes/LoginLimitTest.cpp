#include "standin/routes/LoginLimit.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "standin/routes/Turns.hpp"

namespace standin {
namespace {

TEST(LoginLimit, GuessingGetsSlower) {
  LoginLimit limit;
  LoginLimit::Time now{};
  for (int i = 0; i < 4; ++i) limit.failed(now);
  EXPECT_TRUE(limit.mayTry(now));
  limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now));
  now += std::chrono::seconds(1);
  EXPECT_TRUE(limit.mayTry(now));
  for (int i = 0; i < 100; ++i) limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now + std::chrono::seconds(63)));
  EXPECT_TRUE(limit.mayTry(now + std::chrono::seconds(64)));
  limit.succeeded();
  EXPECT_TRUE(limit.mayTry(now));
}

TEST(LoginLimit, ForgetsAfterAnHour) {
  LoginLimit limit;
  LoginLimit::Time now{};
  for (int i = 0; i < 10; ++i) limit.failed(now);
  now += std::chrono::hours(1);
  for (int i = 0; i < 4; ++i) limit.failed(now);
  EXPECT_TRUE(limit.mayTry(now));
  limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now));
}

TEST(LoginLimit, ForgetsNothingBeforeThat) {
  LoginLimit limit;
  LoginLimit::Time now{};
  for (int i = 0; i < 4; ++i) limit.failed(now);
  now += std::chrono::minutes(59);
  limit.failed(now);
  EXPECT_FALSE(limit.mayTry(now));
}

TEST(LoginLimits, SlowManyAddressesDownTogetherButNoOwnerWhoHasASession) {
  LoginLimits limits;
  const LoginLimit::Time now{};
  for (int i = 0; i < 59; ++i) limits.failed("owner", {.address = "10.0.0." + std::to_string(i)}, now);
  EXPECT_TRUE(limits.mayTry("owner", {.address = "10.0.1.1"}, now));
  limits.failed("owner", {.address = "10.0.1.2"}, now);
  EXPECT_FALSE(limits.mayTry("owner", {.address = "10.0.1.1"}, now));
  EXPECT_TRUE(limits.mayTry("owner", {.address = "10.0.1.2", .owner = true}, now));
  EXPECT_TRUE(limits.mayTry("owner", {.address = "10.0.1.1"}, now + std::chrono::seconds(1)));
  for (int i = 0; i < 100; ++i) limits.failed("owner", {.address = "10.0.2." + std::to_string(i)}, now);
  EXPECT_FALSE(limits.mayTry("owner", {.address = "10.0.1.1"}, now + std::chrono::seconds(15)));
  EXPECT_TRUE(limits.mayTry("owner", {.address = "10.0.1.1"}, now + std::chrono::seconds(16))) << "at most";
}

TEST(LoginLimits, AnOwnerWithASessionIsCountedByHimself) {
  LoginLimits limits;
  const LoginLimit::Time now{};
  const Guesser session{.address = "10.0.0.1", .owner = true};
  for (int i = 0; i < 100; ++i) limits.failed("owner", {.address = "10.0.0.1"}, now);
  EXPECT_TRUE(limits.mayTry("owner", session, now)) << "behind the same proxy, say";
  for (int i = 0; i < 5; ++i) limits.failed("owner", session, now);
  EXPECT_FALSE(limits.mayTry("owner", session, now)) << "a session that was stolen guesses no faster";
}

TEST(LoginLimits, NamesThatNobodyHasLeaveNothingBehind) {
  LoginLimits limits;
  const LoginLimit::Time now{};
  const Guesser session{.address = "10.0.0.1", .owner = true};  // whom the limit of all doesn't concern
  for (int i = 0; i < 5; ++i) limits.failed("owner", session, now);
  const LoginLimit::Time later = now + std::chrono::seconds(20);
  for (int i = 0; i < 6000; ++i) {
    const Guesser other{.address = "address " + std::to_string(i)};
    EXPECT_TRUE(limits.mayTry("name " + std::to_string(i), other, later + std::chrono::seconds(16 * i)));
    limits.failed({}, other, later + std::chrono::seconds(16 * i));
  }
  EXPECT_TRUE(limits.mayTry("owner", session, later));
  limits.failed("owner", session, later);
  EXPECT_FALSE(limits.mayTry("owner", session, later)) << "still counted";
}

TEST(KeyedLimits, ForgetTheOldestAlone) {
  KeyedLimits limits(1, 3);
  const LoginLimit::Time now{};
  const auto at = [&](int second) { return now + std::chrono::seconds(second); };
  limits.failed("a", at(1));
  limits.failed("b", at(2));
  limits.failed("c", at(3));
  limits.failed("a", at(4));
  limits.failed("d", at(5));
  EXPECT_EQ(limits.size(), 3U);
  EXPECT_TRUE(limits.mayTry("b", at(2))) << "forgotten";
  EXPECT_FALSE(limits.mayTry("c", at(3)));
  EXPECT_FALSE(limits.mayTry("a", at(5)));
  EXPECT_FALSE(limits.mayTry("d", at(5)));
}

TEST(LoginLimits, LetSoManyGuestsInFromOnePlace) {
  LoginLimits limits;
  const LoginLimit::Time now{};
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(limits.letsIn({.address = "10.0.0.1"}, now)) << i;
  EXPECT_FALSE(limits.letsIn({.address = "10.0.0.1"}, now));
  EXPECT_TRUE(limits.letsIn({.address = "10.0.0.2"}, now));
  EXPECT_TRUE(limits.letsIn({.address = "10.0.0.1", .owner = true}, now));
  EXPECT_TRUE(limits.letsIn({.address = "10.0.0.1"}, now + std::chrono::seconds(1)));
}

TEST(LoginLimits, AnAddressStandsForItsNetwork) {
  EXPECT_EQ(NetworkOf("2001:db8:1:2:3:4:5:6"), NetworkOf("2001:db8:1:2::1"));
  EXPECT_NE(NetworkOf("2001:db8:1:2::1"), NetworkOf("2001:db8:1:3::1"));
  EXPECT_EQ(NetworkOf("fe80::1%eth0"), NetworkOf("fe80::2%eth0"));
  EXPECT_NE(NetworkOf("10.0.0.1"), NetworkOf("10.0.0.2"));
  EXPECT_NE(NetworkOf("::ffff:10.0.0.1"), NetworkOf("::ffff:10.0.0.2"));
  EXPECT_EQ(NetworkOf("by way of 127.0.0.1"), "by way of 127.0.0.1");
}

TEST(Turns, AreRefusedAtOnceWhereEnoughWait) {
  Turns turns(2);
  std::atomic<int> given = 0;
  std::vector<std::thread> waiting;
  {
    const Turns::Turn first(turns);
    ASSERT_TRUE(first.given());
    for (int i = 0; i < 2; ++i) {
      waiting.emplace_back([&] {
        const Turns::Turn turn(turns);
        given += turn.given() ? 1 : 0;
      });
    }
    while (turns.free() > 0) std::this_thread::yield();
    EXPECT_FALSE(Turns::Turn(turns).given());
    EXPECT_EQ(given, 0);
  }
  for (std::thread& each : waiting) each.join();
  EXPECT_EQ(given, 2);
  EXPECT_TRUE(Turns::Turn(turns).given());
}

}  // namespace
}  // namespace standin
