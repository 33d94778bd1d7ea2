// What searches take for the same text.
#include "standin/text/Folding.hpp"

#include <gtest/gtest.h>

namespace {

using standin::Folded;
using standin::SoughtWords;
using Words = std::vector<std::string>;

TEST(Folding, LeavesOutCaseAndAccents) {
  EXPECT_EQ(Folded("Björk"), "bjork");
  EXPECT_EQ(Folded("Bjo\u0308rk"), "bjork") << "with the accent as a character of its own";
  EXPECT_EQ(Folded("ÉLAN Čajkovskij Dvořák"), "elan cajkovskij dvorak");
  EXPECT_EQ(Folded("Ångström \u212B"), "angstrom a");
  EXPECT_EQ(Folded("Việt"), "viet");
}

TEST(Folding, WritesSpecialLettersAsTheyAreTyped) {
  EXPECT_EQ(Folded("Øya Røyksopp"), "oya royksopp");
  EXPECT_EQ(Folded("Straße STRASSE ẞ"), "strasse strasse ss");
  EXPECT_EQ(Folded("Łódź Đorđe Ħal"), "lodz dorde hal");
  EXPECT_EQ(Folded("Æon Œuvre Þór Ðe"), "aeon oeuvre thor de");
  EXPECT_EQ(Folded("\uFB01nal \uFB03x"), "final ffix") << "ligatures";
  EXPECT_EQ(Folded("İstanbul Isık ı"), "istanbul isik i");
  EXPECT_EQ(Folded("\uFF21\uFF22\uFF23\u3000\uFF11"), "abc 1") << "full width";
}

TEST(Folding, FoldsTheCaseOfOtherScripts) {
  EXPECT_EQ(Folded("КИНО Ёлка"), Folded("кино елка"));
  EXPECT_EQ(Folded("ΟΔΥΣΣΈΑΣ"), Folded("οδυσσεας")) << "with its last sigma";
  EXPECT_NE(Folded("кино"), Folded("кина"));
}

TEST(Folding, KeepsMarksThatMakeOtherWords) {
  EXPECT_NE(Folded("かき"), Folded("がき"));
  EXPECT_NE(Folded("कि"), Folded("का"));
  EXPECT_EQ(Folded("が"), Folded("か\u3099")) << "in either form";
}

TEST(Folding, EvensOutWhatIsTypedInManyWays) {
  EXPECT_EQ(Folded("Don’t"), "dont");
  EXPECT_EQ(Folded("Don't"), "dont");
  EXPECT_EQ(Folded("Jay\u2013Z"), "jay-z");
  EXPECT_EQ(Folded("a\tb\nc\u00A0d"), "a b c d");
  EXPECT_EQ(Folded("zero\u200Bwidth\u00AD"), "zerowidth");
}

TEST(Folding, TakesAnyBytes) {
  EXPECT_EQ(Folded("A\xFF\xC3"), "a\xFF\xC3");
  EXPECT_EQ(Folded(std::string("A\0B", 3)), "a b");
  EXPECT_EQ(Folded("\xEF\xBF\xBE"), Folded("\xEF\xBF\xBE")) << "a noncharacter";
  EXPECT_EQ(Folded(std::string(1U << 20U, '\xC3')).size(), 1U << 20U);
}

TEST(Folding, CutsWhatIsSoughtIntoWords) {
  EXPECT_EQ(SoughtWords("  Cohen \u3000 ANNA "), (Words{"cohen", "anna"}));
  EXPECT_EQ(SoughtWords(" \t"), Words{});
  EXPECT_EQ(SoughtWords("’"), Words{});
}

}  // namespace
