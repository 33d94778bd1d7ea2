// Which fields the plug-in's messages mean.
#include "standin/dialogs/DialogMessages.hpp"

#include <gmock/gmock.h>

namespace {

using standin::DialogValues;
using standin::FieldsMeant;
using testing::ElementsAre;
using testing::IsEmpty;

/// The numbers of the fields meant, in a dialog where these are filled in.
std::vector<std::int32_t> Meant(const std::string& message, const DialogValues& filled = {}) {
  DialogValues values{{2, "Stop"}, {4, ""}, {6, ""}, {8, ""}, {10, ""}, {12, ""}, {14, ""}, {16, ""}};
  for (const auto& [number, value] : filled) values[number] = value;
  std::vector<std::int32_t> numbers;
  for (const auto& [number, text] : FieldsMeant(message, values)) {
    EXPECT_EQ(text, message);
    numbers.push_back(number);
  }
  return numbers;
}

}  // namespace

TEST(FieldsMeant, ThatMustBeBlankAreThoseThatAreNot) {
  const DialogValues all{{4, "a"}, {6, "a"}, {8, "a"}, {10, "a"}, {12, "a"}, {14, "a"}};
  EXPECT_THAT(Meant("Albums, Artists, and Genres must be blank when playing a playlist!", all),
              ElementsAre(6, 8, 10));
  EXPECT_THAT(Meant("Albums, PlayLists, and Genres must be blank when playing an artist!", all),
              ElementsAre(4, 6, 10));
  EXPECT_THAT(Meant("PlayLists, Artists, and Genres must be blank when playing an album!", all),
              ElementsAre(4, 8, 10));
  EXPECT_THAT(Meant("Albums, Artists, and PlayLists must be blank when playing a genre!", all),
              ElementsAre(4, 6, 8));
  EXPECT_THAT(Meant("Albums, Artists, and Genres must be blank when playing a playlist!", {{8, "x"}}),
              ElementsAre(8));
}

TEST(FieldsMeant, ThatAreToBeSelectedAreThoseOfTheirGroup) {
  EXPECT_THAT(Meant("Please select a playlist to play!"), ElementsAre(4));
  EXPECT_THAT(Meant("Please select an Album to play!"), ElementsAre(6));
  EXPECT_THAT(Meant("Please select an Artist to play!"), ElementsAre(8));
  EXPECT_THAT(Meant("Please select a Genre to play!"), ElementsAre(10));
}

TEST(FieldsMeant, OfAnActionWithTypedTextLeaveItsPromptAlone) {
  const std::string message =
      "Albums, Artists, Genres, PlayLists, and Titles must be blank when playing a URL or Media Library "
      "file!";
  EXPECT_THAT(Meant(message, {{10, "Jazz"}, {12, "Please enter URL below..."}, {14, "x"}}), ElementsAre(10));
  EXPECT_THAT(Meant(message, {{12, "(Play entire list)"}}), ElementsAre(12));
}

TEST(FieldsMeant, OfAControlActionAreAllThatIsFilledIn) {
  const std::string message =
      "Albums, Artists, Genres, PlayLists, and Titles must be blank when specifying control actions!";
  EXPECT_THAT(Meant(message, {{12, "Please enter URL below..."}, {14, "x"}}), ElementsAre(12, 14));
}

TEST(FieldsMeant, OfTheOtherMessagesAreOneEach) {
  EXPECT_THAT(Meant("Error: Multiple lines found in Title or URL"), ElementsAre(14));
  EXPECT_THAT(Meant("Action must be 'Change Mode only' to change only the Mode!"), ElementsAre(2));
  EXPECT_THAT(Meant("Refresh then verify Titles"), ElementsAre(12));
}

TEST(FieldsMeant, OfAnUnknownMessageAreNone) {
  EXPECT_THAT(Meant("Something new"), IsEmpty());
  EXPECT_THAT(Meant(""), IsEmpty());
  EXPECT_THAT(FieldsMeant("Please select an Album to play!", {{2, "x"}}), IsEmpty());
}
