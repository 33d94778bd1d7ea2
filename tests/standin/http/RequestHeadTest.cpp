#include "standin/http/RequestHead.hpp"

#include <gtest/gtest.h>

#include <string>

#include "standin/http/HostileHeads.hpp"

namespace standin {
namespace {

/// The status that a head is refused with; 0 for one that is passed on.
int StatusOf(const std::string& head) {
  const auto read = ReadHead(head);
  const auto* refusal = std::get_if<HeadRefusal>(&read);
  return refusal == nullptr ? 0 : refusal->status;
}

RequestHead Passed(const std::string& head) {
  const auto read = ReadHead(head);
  EXPECT_TRUE(std::holds_alternative<RequestHead>(read)) << head;
  const auto* passed = std::get_if<RequestHead>(&read);
  return passed == nullptr ? RequestHead{} : *passed;
}

TEST(ARequestsHead, TellsWhereItsBodyEnds) {
  EXPECT_EQ(Passed("GET / HTTP/1.1\r\nHost: a\r\n\r\n").length, 0U);
  EXPECT_FALSE(Passed("GET / HTTP/1.1\r\nHost: a\r\n\r\n").chunked);
  EXPECT_EQ(Passed("POST / HTTP/1.1\r\nHOST:a\r\ncontent-LENGTH: \t12 \r\n\r\n").length, 12U);
  EXPECT_TRUE(Passed("POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: Chunked\r\n\r\n").chunked);
  EXPECT_EQ(Passed("GET / HTTP/1.0\r\n\r\n").length, 0U);
  EXPECT_EQ(Passed("HEAD /a?b=%20c HTTP/1.1\r\nHost: a\r\nContent-Length: 0\r\nX:\r\n\r\n").length, 0U);
  EXPECT_EQ(Passed("PUT / HTTP/1.1\r\nHost: a\r\n\r\n").length, 0U);
}

TEST(ARequestsHead, IsRefusedWhereItCouldBeUnderstoodInTwoWays) {
  for (const std::string& head : testing::HeadsOfTwoMeanings()) EXPECT_EQ(StatusOf(head), 400) << head;
}

TEST(ARequestsHead, IsRefusedWhenItIsNoneOrNotAllOfOne) {
  const std::string head = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
  EXPECT_EQ(StatusOf(""), 400);
  EXPECT_EQ(StatusOf("\r\n"), 400);
  EXPECT_EQ(StatusOf("\r\n" + head), 400);
  for (std::size_t size = 1; size < head.size(); ++size)
    EXPECT_EQ(StatusOf(head.substr(0, size)), 400) << size;
  EXPECT_EQ(StatusOf(head + "x"), 400);
  EXPECT_EQ(StatusOf("POST / HTTP/1.1\r\nHost: a\r\n\r\n"), 411) << "a body that ends with the connection";
}

TEST(ARequestsHead, IsRefusedForAPackedBody) {
  const std::string head = "POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 1\r\n";
  for (const char* packing : {"gzip", "deflate", "br", "x-gzip", "identity, gzip", ""})
    EXPECT_EQ(StatusOf(head + "Content-Encoding: " + packing + "\r\n\r\n"), 415) << packing;
  EXPECT_EQ(StatusOf(head + "Content-Encoding: identity\r\nContent-Encoding: gzip\r\n\r\n"), 415);
  EXPECT_EQ(StatusOf(head + "Content-Encoding: Identity\r\n\r\n"), 0);
}

TEST(ARequestsHead, IsRefusedForMoreThanOneRange) {
  const std::string head = "GET / HTTP/1.1\r\nHost: a\r\nRange: ";
  for (const char* range :
       {"bytes=0-1,3-4", "bytes=0-1, ", "bytes=-", "bytes=", "bytes=2-1", "bytes=a-b", "items=0-1",
        "bytes = 0-1", "bytes=--1", "bytes=0-%31", "bytes=0-1234567890123456789012345", ""})
    EXPECT_EQ(StatusOf(head + range + "\r\n\r\n"), 416) << range;
  EXPECT_EQ(StatusOf(head + "bytes=0-1\r\nRange: bytes=0-1\r\n\r\n"), 416);
  for (const char* range : {"bytes=0-1", "bytes=7-", "bytes=-5"})
    EXPECT_EQ(StatusOf(head + range + "\r\n\r\n"), 0) << range;
}

}  // namespace
}  // namespace standin
