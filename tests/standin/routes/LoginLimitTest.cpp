#include <gtest/gtest.h>

#include "standin/routes/LoginLimit.hpp"

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

}  // namespace
}  // namespace standin
