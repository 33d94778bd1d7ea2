#include "engine/decoder/MpvHandle.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

#include "base/Failure.hpp"
#include "engine/decoder/DataLimit.hpp"
#include "support/faults/InChild.hpp"

namespace {

rlim_t InUse() {
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace

TEST(ADecoder, IsRefusedWhereThereIsTooLittleMemoryForIt) {
  EXPECT_TRUE(support::InChild([] {
    // Little more than what is in use already can be had.
    const rlim_t little = InUse() + (rlim_t{64} << 20U);
    const rlimit limit{little, little};
    ASSERT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
    try {
      const engine::MpvHandle handle(engine::MpvOptions{{"ao", "null"}, {"vo", "null"}});
      ADD_FAILURE() << "it was created";
    } catch (const base::Failure& failure) {
      EXPECT_EQ(failure.number(), base::number::kCannotCreate);
      EXPECT_EQ(failure.description(), "There is too little memory for the decoder");
    }
  }));
}

TEST(ADecoder, IsRefusedWhereATitlesLimitLeavesTooLittle) {
  engine::DataLimit limit(std::size_t{64} << 20U);
  limit.begin();
  EXPECT_THROW(engine::CheckRoomForDecoder(), base::Failure);
  limit.end();
  EXPECT_NO_THROW(engine::CheckRoomForDecoder());
}

TEST(ADecoder, NamesAnOptionThatItDoesNotTake) {
  try {
    const engine::MpvHandle handle(engine::MpvOptions{{"no-such-option", "1"}});
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kCannotCreate);
    EXPECT_NE(failure.description().find("no-such-option=1"), std::string::npos);
  }
}
