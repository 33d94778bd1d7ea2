#include "standin/covers/DrawnCover.hpp"

#include <gmock/gmock.h>

namespace {

using standin::DrawnCover;
using standin::InitialsOf;
using testing::HasSubstr;
using testing::Not;

TEST(ADrawnCover, BearsUpToTwoInitials) {
  EXPECT_EQ(InitialsOf("Blue"), "B");
  EXPECT_EQ(InitialsOf("kind of blue"), "KO");
  EXPECT_EQ(InitialsOf("  (what's) the story "), "WT");
  EXPECT_EQ(InitialsOf("ärger im Paradies"), "ÄI");
  EXPECT_EQ(InitialsOf("1984"), "1");
  EXPECT_EQ(InitialsOf("日本 音楽"), "日音");
  EXPECT_EQ(InitialsOf("!?"), "");
  EXPECT_EQ(InitialsOf(""), "");
  EXPECT_EQ(InitialsOf("\xFF\xFE"), "");
  EXPECT_THAT(DrawnCover("kind of blue"), HasSubstr(">KO</text>"));
}

TEST(ADrawnCover, HasColoursThatStayWithTheName) {
  EXPECT_EQ(DrawnCover("Blue"), DrawnCover("blue"));
  EXPECT_NE(DrawnCover("Blue"), DrawnCover("Green"));
  EXPECT_NE(DrawnCover("Blue"), DrawnCover("Blue Train"));
}

TEST(ADrawnCover, ShowsNothingOfANameThatIsMarkup) {
  const std::string drawn = DrawnCover("<script>alert(1)</script> & \"more\"");
  EXPECT_THAT(drawn, Not(HasSubstr("script")));
  EXPECT_THAT(drawn, Not(HasSubstr("&")));
  EXPECT_THAT(drawn, HasSubstr(">SS</text>"));
}

TEST(ADrawnCover, WithoutANameIsARecord) {
  EXPECT_THAT(DrawnCover(""), HasSubstr("<circle"));
  EXPECT_THAT(DrawnCover("***"), Not(HasSubstr("<text")));
}

}  // namespace
