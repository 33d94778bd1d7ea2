#include "engine/decoder/DataLimit.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>

namespace engine::testing {
namespace {

constexpr std::size_t kRoom = std::size_t{64} << 20U;

/// Whether the process gets so many bytes, which it gives back.
bool Gets(std::size_t bytes) {
  void* const got = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (got == MAP_FAILED) return false;
  ::munmap(got, bytes);
  return true;
}

rlim_t Limit() {
  rlimit limit{};
  ::getrlimit(RLIMIT_DATA, &limit);
  return limit.rlim_cur;
}

TEST(ADataLimit, LeavesTheProcessSoMuchMoreAsLongAsItIsSet) {
  const rlim_t before = Limit();
  DataLimit limit(kRoom);
  EXPECT_TRUE(Gets(4 * kRoom));
  limit.begin();
  EXPECT_TRUE(Gets(kRoom / 2));
  EXPECT_FALSE(Gets(4 * kRoom));
  limit.end();
  EXPECT_TRUE(Gets(4 * kRoom));
  EXPECT_EQ(Limit(), before);
  limit.end();
  EXPECT_EQ(Limit(), before);
}

TEST(ADataLimit, CountsAnewFromWhatIsTakenByThen) {
  DataLimit limit(kRoom);
  limit.begin();
  limit.end();
  void* const held = ::mmap(nullptr, 2 * kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(held, MAP_FAILED);
  limit.begin();
  EXPECT_TRUE(Gets(kRoom / 2));
  ::munmap(held, 2 * kRoom);
  EXPECT_TRUE(Gets(2 * kRoom));
  limit.begin();
  EXPECT_FALSE(Gets(2 * kRoom));
}

TEST(ADataLimit, HoldsUntilTheLastThatIsSetHasEnded) {
  const rlim_t before = Limit();
  DataLimit first(kRoom);
  first.begin();
  {
    DataLimit second(kRoom);
    second.begin();
    first.end();
    EXPECT_FALSE(Gets(4 * kRoom));
  }
  EXPECT_EQ(Limit(), before);
}

TEST(ADataLimit, NeverWidensOneThatIsThereAlready) {
  DataLimit narrow(kRoom);
  narrow.begin();
  const rlim_t theirs = Limit();
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_DATA, &limit), 0);
  narrow.end();
  const rlim_t before = Limit();
  limit.rlim_cur = theirs;
  ASSERT_EQ(::setrlimit(RLIMIT_DATA, &limit), 0);
  DataLimit wide(64 * kRoom);
  wide.begin();
  EXPECT_EQ(Limit(), theirs);
  wide.end();
  EXPECT_EQ(Limit(), theirs);
  limit.rlim_cur = before;
  ASSERT_EQ(::setrlimit(RLIMIT_DATA, &limit), 0);
}

}  // namespace
}  // namespace engine::testing
