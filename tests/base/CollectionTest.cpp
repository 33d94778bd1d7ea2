#include "base/Collection.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using base::Collection;
using base::TextList;
using ::testing::ElementsAre;

namespace {

template <class Statement>
std::int32_t NumberOf(Statement&& statement) {
  try {
    statement();
  } catch (const base::Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace

TEST(Collection, PositionsCountFromOne) {
  const TextList list{"a", "b"};
  EXPECT_EQ(list.item(1), "a");
  EXPECT_EQ(list.item(2), "b");
  EXPECT_EQ(NumberOf([&] { (void)list.item(0); }), base::number::kIndex);
  EXPECT_EQ(NumberOf([&] { (void)list.item(3); }), base::number::kIndex);
}

TEST(Collection, AKeyIsFoundWithoutRegardToCase) {
  TextList list;
  list.add("x");
  list.add("blue", "Album");
  EXPECT_EQ(list.item("ALBUM"), "blue");
  EXPECT_TRUE(list.contains("album"));
  EXPECT_EQ(NumberOf([&] { (void)list.item("Artist"); }), base::number::kInvalidArgument);
}

TEST(Collection, AKeyInUseTurnsTheItemAway) {
  TextList list;
  list.add("one", "K");
  EXPECT_EQ(NumberOf([&] { list.add("two", "k"); }), base::number::kKeyInUse);
  EXPECT_THAT(list, ElementsAre("one"));
}

TEST(Collection, KeysFollowTheirItemsWhenOneIsRemoved) {
  TextList list;
  list.add("1", "a");
  list.add("2", "b");
  list.add("3", "c");
  list.remove("A");
  EXPECT_EQ(list.item("b"), "2");
  EXPECT_EQ(list.item("c"), "3");
  EXPECT_FALSE(list.contains("a"));
  list.remove(1);
  EXPECT_THAT(list, ElementsAre("3"));
  EXPECT_EQ(NumberOf([&] { list.remove("b"); }), base::number::kInvalidArgument);
  list.add("4", "A");
  EXPECT_EQ(list.item("a"), "4");
}
