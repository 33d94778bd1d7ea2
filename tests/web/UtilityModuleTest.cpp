#include "web/UtilityModule.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::ElementsAre;
using web::FilterString;

namespace {

std::string Filtered(std::string text, const std::string& set, const std::string& replacement = " ") {
  FilterString(text, set, replacement);
  return text;
}

std::string Found(std::string text, const std::string& set) { return FilterString(text, set, " "); }

base::TextListRef List(std::initializer_list<std::string> texts) {
  return std::make_shared<base::TextList>(texts);
}

}  // namespace

TEST(FilterString, NamedSetsAreFoundInAnyCase) {
  EXPECT_EQ(Filtered("a>b&c\"d<e^f~g", "html"), "a b c d e f g");
  EXPECT_EQ(Filtered("a\x01"
                     "b\x02"
                     "c\x03"
                     "d\te\rf",
                     "vX"),
            "a b c d\te\rf");
  EXPECT_EQ(Filtered("a\x01"
                     "b\tc\rd\ne",
                     "Vx+"),
            "a b c d\ne");
}

TEST(FilterString, AnyOtherTextIsItselfTheSet) {
  EXPECT_EQ(Filtered("H.T.M.L!", "!."), "H T M L ");
  EXPECT_EQ(Filtered("größer", "ö", "oe"), "groeßer");
}

TEST(FilterString, TheCharactersFoundComeInTheOrderOfTheSet) {
  EXPECT_EQ(Found("~ and > and & and > again", "HTML"), ">&~");
  EXPECT_EQ(Found("nothing", "HTML"), "");
  EXPECT_EQ(Found("é and ö", "öüé"), "öé");
}

TEST(FilterString, AnAmpersandBetweenBlanksLeavesOneBlank) {
  EXPECT_EQ(Filtered("Rock & Roll", "HTML"), "Rock Roll");
}

TEST(FilterString, AnEmptySetStillCollapsesBlanks) {
  EXPECT_EQ(Filtered("Road    Trip  ", ""), "Road Trip ");
  EXPECT_EQ(Found("Road  Trip", ""), "");
}

TEST(FilterString, AReplacementMayBeEmptyOrHoldTheCharacterItself) {
  EXPECT_EQ(Filtered("a&b&", "&", ""), "ab");
  EXPECT_EQ(Filtered("a&b", "&", "&amp;"), "a&amp;b");
  EXPECT_EQ(Filtered("a<b", "<&", "&"), "a&b");
}

TEST(SortCollection, TheOrderDisregardsCaseAndKeepsEqualTexts) {
  auto list = List({"beta", "Alpha", "ALPHA", "Gamma", "alpha", "Alpha"});
  web::SortCollection(list);
  EXPECT_THAT(*list, ElementsAre("ALPHA", "Alpha", "Alpha", "alpha", "beta", "Gamma"));
}

TEST(SortCollection, CaseIsFoldedOutsideAsciiToo) {
  auto list = List({"éa", "Éb", "ÉA"});
  web::SortCollection(list);
  EXPECT_THAT(*list, ElementsAre("ÉA", "éa", "Éb"));
}

TEST(SortCollection, TheCollectionPassedInIsLeftAsItWas) {
  const auto cached = List({"b", "a"});
  auto mine = cached;
  web::SortCollection(mine);
  EXPECT_NE(mine, cached);
  EXPECT_THAT(*cached, ElementsAre("b", "a"));
  EXPECT_THAT(*mine, ElementsAre("a", "b"));
}

TEST(ArrayDropFirst, ElementsMoveOnePlaceDown) {
  std::vector<std::string> array{"a", "b", "c"};
  web::ArrayDropFirst(array);
  EXPECT_THAT(array, ElementsAre("b", "c"));
}

TEST(ArrayDropFirst, TheLastElementLeavesAnEmptyOne) {
  std::vector<std::string> array{"a"};
  web::ArrayDropFirst(array);
  EXPECT_THAT(array, ElementsAre(""));
  array.clear();
  web::ArrayDropFirst(array);
  EXPECT_THAT(array, ElementsAre(""));
}

TEST(SetTopMost, TheFlagChoosesThePlaceInTheStack) {
  struct Stack : web::WindowStack {
    std::vector<std::vector<std::int32_t>> calls;
    void SetWindowPos(std::int32_t handle, std::int32_t insertAfter, std::int32_t x, std::int32_t y,
                      std::int32_t width, std::int32_t height, std::int32_t flags) override {
      calls.push_back({handle, insertAfter, x, y, width, height, flags});
    }
  } stack;
  web::SetTopMost(stack, 7, true, 1, 2, 3, 4);
  web::SetTopMost(stack, 7, false, 1, 2, 3, 4);
  EXPECT_THAT(stack.calls,
              ElementsAre(ElementsAre(7, -1, 1, 2, 3, 4, 83), ElementsAre(7, -2, 1, 2, 3, 4, 83)));
}
