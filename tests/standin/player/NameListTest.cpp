// How names are found among many.
#include "standin/player/NameList.hpp"

#include <gtest/gtest.h>

namespace {

using standin::NameList;
using Names = std::vector<std::string>;

Names Found(const NameList& list, const std::string& sought) { return list.page(sought, 0, 100).names; }

TEST(NameList, FindsAmongManyNames) {
  Names names;
  for (int i = 0; i < 100000; ++i) names.push_back("Album " + std::to_string(i));
  const NameList list(std::move(names));
  const auto page = list.page("aLBUM 9999", 9, 3);
  EXPECT_EQ(page.total, 19U);  // 9999, 19999 … 89999 and 99990 to 99999
  EXPECT_EQ(page.names, (Names{"Album 99990", "Album 99991", "Album 99992"}));
  EXPECT_EQ(page.places, (std::vector<std::size_t>{99990, 99991, 99992}));
}

TEST(NameList, FindsAllWordsInAnyOrder) {
  const NameList list({"Anna Cohen", "Leonard Cohen", "Anna", "Cohen, Anna"});
  EXPECT_EQ(Found(list, "cohen anna"), (Names{"Anna Cohen", "Cohen, Anna"}));
  EXPECT_EQ(Found(list, "anna an"), (Names{"Anna Cohen", "Anna", "Cohen, Anna"}));
  EXPECT_EQ(Found(list, "anna cohen leonard"), Names{});
}

TEST(NameList, FindsNamesHoweverTheirLettersAreTyped) {
  const NameList list({"Björk", "Sigur Rós", "Motörhead", "Bjorn Again"});
  EXPECT_EQ(Found(list, "bjork"), Names{"Björk"});
  EXPECT_EQ(Found(list, "BJÖR"), (Names{"Björk", "Bjorn Again"}));
  EXPECT_EQ(Found(list, "ros"), Names{"Sigur Rós"});
}

TEST(NameList, KeepsANameWhoseTextReachesAcrossLinesForItself) {
  const NameList list({"One\nTwo", "Two\nThree", ""});
  EXPECT_EQ(Found(list, "one three"), Names{});
  EXPECT_EQ(Found(list, "one two"), Names{"One\nTwo"});
  EXPECT_EQ(Found(list, "").size(), 3U);
}

TEST(NameList, AnswersNothingBeyondItsEnd) {
  const NameList list({"One", "Two"});
  const auto page = list.page("", 9, 5);
  EXPECT_EQ(page.total, 2U);
  EXPECT_TRUE(page.names.empty());
  EXPECT_EQ(NameList({}).page("a", 0, 5).total, 0U);
}

}  // namespace
