#include "engine/playback/ShuffleOrder.hpp"

#include <gtest/gtest.h>

#include <set>

namespace engine {
namespace {

TEST(ShuffleOrder, ARoundHoldsEveryNumberOnce) {
  ShuffleOrder order(3);
  order.restart(50, 20);
  std::set<int> seen{order.current()};
  EXPECT_EQ(order.current(), 20);
  while (const auto next = order.following(false)) {
    EXPECT_TRUE(seen.insert(*next).second);
    order.moveTo(*next);
  }
  EXPECT_EQ(seen.size(), 50U);
}

TEST(ShuffleOrder, ANewRoundDoesNotBeginWithTheLastOfTheOld) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    ShuffleOrder order(seed);
    order.restart(3);
    for (int i = 0; i < 30; ++i) {
      const int before = order.current();
      const auto next = order.following(true);
      ASSERT_TRUE(next);
      ASSERT_NE(*next, before);
      order.moveTo(*next);
      ASSERT_EQ(order.current(), *next);
    }
  }
}

TEST(ShuffleOrder, OneNumberAloneRepeats) {
  ShuffleOrder order(1);
  order.restart(1);
  EXPECT_FALSE(order.following(false));
  EXPECT_EQ(order.following(true), 0);
}

TEST(ShuffleOrder, TheWayBackIsTheWayThatWasGone) {
  ShuffleOrder order(5);
  order.restart(10);
  const int first = order.current();
  EXPECT_FALSE(order.preceding());
  order.moveTo(*order.following(false));
  EXPECT_EQ(order.preceding(), first);
}

TEST(ShuffleOrder, WhatIsToComeNextDoesAlsoAfterItHasHadItsTurn) {
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    ShuffleOrder order(seed);
    order.restart(6, 1);
    for (int turn = 0; turn < 3; ++turn) order.moveTo(*order.following(false));
    const int now = order.current();
    order.comeNext(1, 2);
    EXPECT_EQ(order.current(), now);
    std::vector<int> rest;
    while (const auto next = order.following(false)) {
      rest.push_back(*next);
      order.moveTo(*next);
    }
    EXPECT_EQ(rest.front(), now == 1 ? 2 : 1);
    EXPECT_EQ(rest[1], now == 1 || now == 2 ? rest[1] : 2);
    EXPECT_EQ(std::set<int>(rest.begin(), rest.end()).size(), rest.size());
  }
}

TEST(ShuffleOrder, NewNumbersComeLaterInTheRound) {
  ShuffleOrder order(9);
  order.restart(2, 0);
  order.renumber({0, 1}, 6);
  std::set<int> seen{order.current()};
  while (const auto next = order.following(false)) {
    seen.insert(*next);
    order.moveTo(*next);
  }
  EXPECT_EQ(seen.size(), 6U);
}

TEST(ShuffleOrder, AShrunkenRoundKeepsItsPlace) {
  ShuffleOrder order(9);
  order.restart(6, 1);
  order.renumber({0, 1, -1, -1, -1, -1}, 2);
  EXPECT_EQ(order.current(), 1);
  EXPECT_EQ(order.following(false), 0);
  order.renumber({-1, -1}, 0);
  EXPECT_EQ(order.current(), -1);
  EXPECT_FALSE(order.following(true));
  order.renumber({}, 3);
  EXPECT_TRUE(order.following(false));
}

TEST(ShuffleOrder, WhatCameAfterANumberThatHasGoneIsNotPassedOver) {
  ShuffleOrder order(9);
  order.restart(4, 2);
  order.renumber({0, 1, -1, 2}, 3);
  EXPECT_EQ(order.current(), -1);
  std::set<int> seen;
  while (const auto next = order.following(false)) {
    seen.insert(*next);
    order.moveTo(*next);
  }
  EXPECT_EQ(seen, (std::set<int>{0, 1, 2}));
}

TEST(ShuffleOrder, ARoundGoesOnUnderOtherNumbers) {
  ShuffleOrder order(9);
  order.restart(3, 0);
  const int next = *order.following(false);
  order.renumber({2, 1, 0}, 3);
  EXPECT_EQ(order.current(), 2);
  EXPECT_EQ(order.following(false), 2 - next);
}

}  // namespace
}  // namespace engine
