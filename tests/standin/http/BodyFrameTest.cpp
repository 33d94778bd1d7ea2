#include "standin/http/BodyFrame.hpp"

#include <gtest/gtest.h>

#include <string>

namespace standin {
namespace {

constexpr std::size_t kMost = 1000;

/// How much of the bytes belongs to a body in chunks, byte by byte and at once; "broken" behind what breaks
/// it.
std::string Taken(const std::string& bytes) {
  BodyFrame once({.chunked = true}, kMost);
  const std::size_t count = once.take(bytes);
  BodyFrame slowly({.chunked = true}, kMost);
  std::size_t slow = 0;
  while (slow < bytes.size() && slowly.take(std::string_view(bytes).substr(slow, 1)) == 1) ++slow;
  EXPECT_EQ(slow, count) << bytes;
  EXPECT_EQ(slowly.ended(), once.ended()) << bytes;
  return bytes.substr(0, count) + (once.broken() ? "broken" : once.ended() ? "" : "open");
}

TEST(ABodysFrame, EndsAfterItsLength) {
  BodyFrame none({}, kMost);
  EXPECT_TRUE(none.ended());
  EXPECT_EQ(none.take("GET"), 0U);
  BodyFrame five({.length = 5}, kMost);
  EXPECT_EQ(five.take("abc"), 3U);
  EXPECT_FALSE(five.ended());
  EXPECT_EQ(five.take("deGET / "), 2U);
  EXPECT_TRUE(five.ended());
  EXPECT_EQ(five.take("GET"), 0U);
}

TEST(ABodysFrame, EndsWithItsLastChunk) {
  for (const char* body :
       {"0\r\n\r\n", "3\r\nabc\r\n0\r\n\r\n", "00A\r\n0123456789\r\n1\r\n\n\r\n000\r\n\r\n"})
    EXPECT_EQ(Taken(std::string(body) + "GET / HTTP/1.1\r\n"), body);
  EXPECT_EQ(Taken("3\r\nab"), "3\r\nabopen");
}

TEST(ABodysFrame, IsBrokenByChunksThatCouldBeReadInTwoWays) {
  for (const auto& [body, taken] : std::initializer_list<std::pair<std::string, std::string>>{
           {"0x3\r\nabc\r\n0\r\n\r\n", "0"},
           {"-1\r\n", ""},
           {" 3\r\nabc", ""},
           {"3 \r\nabc", "3"},
           {"3;a=b\r\nabc", "3"},
           {"3\nabc", "3"},
           {"\r\nabc", ""},
           {"123456789\r\n", "12345678"},
           {"3\r\nabcd\r\n", "3\r\nabc"},
           {"3\r\nabc\n0\r\n\r\n", "3\r\nabc"},
           {"0\r\nTrailer: x\r\n\r\n", "0\r\n"},
       }) {
    EXPECT_EQ(Taken(body), taken + "broken");
  }
}

TEST(ABodysFrame, IsBrokenByMoreThanItMayTake) {
  BodyFrame long_({.length = kMost + 1}, kMost);
  EXPECT_EQ(long_.take(std::string(2 * kMost, 'x')), kMost);
  EXPECT_TRUE(long_.broken());
  BodyFrame full({.length = kMost}, kMost);
  EXPECT_EQ(full.take(std::string(2 * kMost, 'x')), kMost);
  EXPECT_TRUE(full.ended());
  std::string crumbs;
  for (int i = 0; i < 1000; ++i) crumbs += "1\r\nx\r\n";
  BodyFrame chunks({.chunked = true}, kMost);
  EXPECT_EQ(chunks.take(crumbs), kMost) << "their own lines count";
  EXPECT_TRUE(chunks.broken());
}

}  // namespace
}  // namespace standin
