#include "web/Concatenate.hpp"

#include <gtest/gtest.h>

using web::ConcatAdd;
using web::ConcatInit;
using web::ConcatResult;

TEST(Concatenate, TheLastElementIsAlwaysAFreeSlot) {
  web::StringAccumulator text;
  ConcatInit(text);
  EXPECT_EQ(text.size(), 2U);
  ConcatAdd(text, "a");
  ConcatAdd(text, "b");
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(text[1], "a");
  EXPECT_EQ(text[2], "b");
  EXPECT_EQ(text.back(), "");
}

TEST(Concatenate, UnusedSlotsAddNothing) {
  web::StringAccumulator text;
  ConcatInit(text);
  EXPECT_EQ(ConcatResult(text), "");
  for (const char* piece : {"one ", "", "two"}) ConcatAdd(text, piece);
  EXPECT_EQ(ConcatResult(text), "one two");
}

TEST(Concatenate, AnArrayBegunAnewIsEmpty) {
  web::StringAccumulator text;
  ConcatInit(text);
  ConcatAdd(text, "gone");
  ConcatInit(text);
  EXPECT_EQ(ConcatResult(text), "");
  EXPECT_LE(text.capacity(), 2U);
}

TEST(Concatenate, AnArrayThatWasNeverInitialisedTakesNothing) {
  web::StringAccumulator text;
  ConcatAdd(text, "lost");
  EXPECT_EQ(ConcatResult(text), "");
}
