#include "base/Text.hpp"

#include <gtest/gtest.h>

TEST(LowerCase, FoldsOutsideAsciiToo) {
  EXPECT_EQ(base::LowerCase("ÉLAN Straße ΩMEGA Я"), "élan straße ωmega я");
  EXPECT_EQ(base::LowerCase("AZaz09"), "azaz09");
}

TEST(LowerCase, KeepsBytesThatAreNoText) {
  EXPECT_EQ(base::LowerCase("A\xFF\xC3"), "a\xFF\xC3");
  EXPECT_EQ(base::LowerCase("\xE2\x82"), "\xE2\x82");
}

TEST(SameText, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(base::SameText("Älbum", "älBUM"));
  EXPECT_FALSE(base::SameText("Album", "Albums"));
}

TEST(Split, GivesThePiecesBetweenSeparators) {
  EXPECT_EQ(base::Split("a.b..c", '.'), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(base::Split("", '.'), std::vector<std::string>{});
  EXPECT_EQ(base::Split(".", '.'), (std::vector<std::string>{"", ""}));
}

TEST(TrimBlanks, TakesBlanksOnly) {
  EXPECT_EQ(base::TrimBlanks("  a b "), "a b");
  EXPECT_EQ(base::TrimBlanks("\ta"), "\ta");
  EXPECT_EQ(base::TrimBlanks("   "), "");
}

TEST(CountCharacters, CountsCodePoints) {
  EXPECT_EQ(base::CountCharacters("Élan"), 4U);
  EXPECT_EQ(base::CountCharacters("\xF0\x9F\x8E\xB5"), 1U);
  EXPECT_EQ(base::CountCharacters("\xFF\xFE"), 2U);
}

TEST(IsPlainUtf8, RefusesIllFormedTextAndCodeZero) {
  EXPECT_TRUE(base::IsPlainUtf8("Élan \xF0\x9F\x8E\xB5"));
  EXPECT_FALSE(base::IsPlainUtf8(std::string("a\0b", 3)));
  EXPECT_FALSE(base::IsPlainUtf8("\xC0\x80"));          // overlong
  EXPECT_FALSE(base::IsPlainUtf8("\xED\xA0\x80"));      // surrogate
  EXPECT_FALSE(base::IsPlainUtf8("\xF4\x90\x80\x80"));  // past the last code point
  EXPECT_FALSE(base::IsPlainUtf8("\xE2\x82"));          // cut off
}

TEST(RepairUtf8, PutsTheReplacementCharacterForEachBadByte) {
  EXPECT_EQ(base::RepairUtf8("a\xFF"
                             "b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(base::RepairUtf8("Élan"), "Élan");
}

TEST(FirstCharacter, GivesTheCodeAndBack) {
  EXPECT_EQ(base::FirstCharacter("Q7"), 'Q');
  EXPECT_EQ(base::FirstCharacter(""), -1);
  EXPECT_EQ(base::CharacterOf(base::FirstCharacter("Élan")), "É");
}
