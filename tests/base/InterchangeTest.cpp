#include "base/Interchange.hpp"

#include <gtest/gtest.h>

#include "base/Text.hpp"

TEST(InterchangeUtf8, RefusesAndReplacesNoncharacters) {
  for (const char* bad : {"\xEF\xB7\x90", "\xEF\xB7\xAF", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xF0\x9F\xBF\xBE",
                          "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(base::IsPlainUtf8(bad));
    EXPECT_FALSE(base::IsInterchangeUtf8(std::string("a") + bad));
    EXPECT_EQ(base::InterchangeUtf8(std::string("a") + bad + "b"), "a\uFFFDb");
  }
  for (const char* good :
       {"", "\xEF\xB7\x8F", "\xEF\xB7\xB0", "\uFFFD", "\xF0\x9F\x8E\xB5", "\xF0\x9F\xBF\xBD"}) {
    EXPECT_TRUE(base::IsInterchangeUtf8(good));
    EXPECT_EQ(base::InterchangeUtf8(good), good);
  }
}

TEST(InterchangeUtf8, RefusesAndReplacesWhatIsNoPlainText) {
  EXPECT_FALSE(base::IsInterchangeUtf8("\xFF"));
  EXPECT_FALSE(base::IsInterchangeUtf8(std::string("a\0b", 3)));
  EXPECT_EQ(base::InterchangeUtf8(std::string("\xFF\0b", 3)), "\uFFFD b");
}

TEST(OffsetOfCharacter, CountsCodePoints) {
  EXPECT_EQ(base::OffsetOfCharacter("Élan", 0), 0U);
  EXPECT_EQ(base::OffsetOfCharacter("Élan", 1), 2U);
  EXPECT_EQ(base::OffsetOfCharacter("Élan", 4), 5U);
  EXPECT_EQ(base::OffsetOfCharacter("Élan", 9), 5U);
  EXPECT_EQ(base::OffsetOfCharacter("\xF0\x9F\x8E\xB5\xE2\x82\xAC", 1), 4U);
  EXPECT_EQ(base::OffsetOfCharacter("\xFF\xFE", 1), 1U);
  EXPECT_EQ(base::OffsetOfCharacter("\xC3", 1), 1U);
}
