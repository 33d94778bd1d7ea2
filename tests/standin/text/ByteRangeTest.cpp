#include "standin/text/ByteRange.hpp"

#include <gtest/gtest.h>

#include <string>

namespace standin {
namespace {

std::string Part(std::string_view header) {
  const std::string content = "0123456789";
  const auto part = RangeOf(header, content.size());
  return part ? content.substr(part->first, part->count) : "none";
}

TEST(AByteRange, LiesInItsContent) {
  EXPECT_EQ(Part("bytes=0-0"), "0");
  EXPECT_EQ(Part("bytes=2-4"), "234");
  EXPECT_EQ(Part("bytes=8-99"), "89");
  EXPECT_EQ(Part("bytes=9-"), "9");
  EXPECT_EQ(Part("bytes=-3"), "789");
  EXPECT_EQ(Part("bytes=-99"), "0123456789");
  EXPECT_EQ(Part("bytes=0-999999999999999999"), "0123456789");
}

TEST(AByteRange, IsNoneOutsideOfIt) {
  for (const char* header :
       {"bytes=10-", "bytes=10-11", "bytes=-0", "bytes=4-2", "bytes=1-2,3-4", "", "bytes"})
    EXPECT_EQ(Part(header), "none") << header;
  EXPECT_FALSE(RangeOf("bytes=0-", 0).has_value()) << "nothing has no first byte";
  EXPECT_FALSE(RangeOf("bytes=-5", 0).has_value());
}

}  // namespace
}  // namespace standin
