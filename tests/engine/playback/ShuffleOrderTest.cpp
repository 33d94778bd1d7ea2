#include "engine/playback/ShuffleOrder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>
#include <vector>

namespace engine {
namespace {

/// What comes behind the present place in its round.
std::vector<int> RestOf(ShuffleOrder& order) {
  std::vector<int> rest;
  while (const auto next = order.following(false)) {
    rest.push_back(*next);
    order.moveTo(*next);
  }
  return rest;
}

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
    const std::vector<int> rest = RestOf(order);
    EXPECT_EQ(rest.front(), now == 1 ? 2 : 1);
    EXPECT_EQ(rest[1], now == 1 || now == 2 ? rest[1] : 2);
    EXPECT_EQ(std::set<int>(rest.begin(), rest.end()).size(), rest.size());
  }
}

TEST(ShuffleOrder, NewNumbersComeLaterInTheRound) {
  ShuffleOrder order(9);
  order.restart(2, 0);
  order.renumber({0, 1}, 6);
  std::vector<int> seen = RestOf(order);
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST(ShuffleOrder, ManyNewNumbersLieEvenlyAmongTheOldOnesWhichKeepTheirOrder) {
  constexpr int kOld = 4000;
  constexpr int kNew = 1000;
  ShuffleOrder one(9);
  ShuffleOrder other(9);
  for (ShuffleOrder* order : {&one, &other}) order->restart(kOld, 0);
  std::vector<int> same(kOld);
  std::iota(same.begin(), same.end(), 0);
  one.renumber(same, kOld + kNew);
  EXPECT_EQ(one.current(), 0);
  const std::vector<int> with = RestOf(one);
  ASSERT_EQ(with.size(), std::size_t{kOld + kNew - 1});
  std::vector<int> old;
  std::copy_if(with.begin(), with.end(), std::back_inserter(old), [](int number) { return number < kOld; });
  EXPECT_EQ(old, RestOf(other));
  const auto middle = with.begin() + static_cast<std::ptrdiff_t>(with.size() / 2);
  const auto early = std::count_if(with.begin(), middle, [](int number) { return number >= kOld; });
  EXPECT_NEAR(static_cast<double>(early), kNew / 2.0, kNew / 10.0);
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
  std::vector<int> seen = RestOf(order);
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2}));
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
