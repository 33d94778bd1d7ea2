// The plug-in's dialogs, read from its texts.
#include "standin/dialogs/DialogText.hpp"

#include <gmock/gmock.h>

#include "standin/dialogs/PluginTexts.hpp"

namespace {

using standin::DialogText;
using standin::FieldKind;
using standin::ReadDialogText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> Labels(const DialogText& text) {
  std::vector<std::string> labels;
  for (const auto& row : text.rows) labels.push_back(NameOf(row.kind) + " " + row.label);
  return labels;
}

}  // namespace

TEST(DialogText, OfAnActionHasATitleItsHelpAndNineRows) {
  const DialogText text = ReadDialogText(support::ActionText());
  EXPECT_EQ(text.title, "Media Player Actions");
  EXPECT_EQ(text.help, "Click 'Submit' below, to refresh the list of titles or save actions");
  EXPECT_THAT(Labels(text),
              ElementsAre("list Action", "list PlayLists", "list Albums", "list Artists", "list Genres",
                          "list Titles", "text URL or Title", "list Mode", "button Refresh Titles"));
  EXPECT_THAT(text.strange, IsEmpty());
  EXPECT_THAT(text.notes, IsEmpty());
}

TEST(DialogText, ListsBeginWithTheEmptyLineWhereTheTextHasOne) {
  const DialogText text = ReadDialogText(support::ActionText());
  EXPECT_THAT(text.rows[1].options, ElementsAre("", "Party"));
  EXPECT_THAT(text.rows[2].options, ElementsAre("", "Blue", "Clouds"));
  EXPECT_THAT(text.rows[5].options, ElementsAre("", "(Play entire list)", "River"));
  EXPECT_THAT(text.rows[7].options, ElementsAre("No Action", "No Shuffle and No Loop", "Loop Only",
                                                "Shuffle Only", "Shuffle and Loop"));
}

TEST(DialogText, OfTriggersAndConditionsHaveTheirFirstRowBehindTheTitle) {
  const DialogText trigger = ReadDialogText(support::TriggerText());
  EXPECT_EQ(trigger.title, "Media Player Triggers");
  ASSERT_EQ(trigger.rows.size(), 1U);
  EXPECT_EQ(trigger.rows[0].label, "Trigger:");
  EXPECT_THAT(trigger.rows[0].options,
              ElementsAre("Playback Started", "Playback Ended", "Transitioning", "Initialization Completed"));
  const DialogText condition = ReadDialogText(support::ConditionText());
  EXPECT_EQ(condition.title, "Media Player Status");
  EXPECT_THAT(Labels(condition), ElementsAre("list Status ", "list Condition:"));
  EXPECT_THAT(condition.rows[1].options, ElementsAre("Yes", "No"));
}

TEST(DialogText, RowsOfAnUnknownKindAreTextsToShow) {
  const DialogText text = ReadDialogText("T\t1\t0\tA\tx\r\t\t9\t0\tSlide me\tmore\r\t\tone\r\t\t1\t0\tB\ty");
  EXPECT_THAT(Labels(text), ElementsAre("list A", "list B"));
  EXPECT_THAT(text.notes, ElementsAre("Slide me"));
  EXPECT_THAT(text.strange, ElementsAre("row 2 is of an unknown kind and is shown as a text",
                                        "row 3 has too few fields and is left out"));
}

TEST(DialogText, RowsThatDontBeginAsRowsDoAreTextsToShow) {
  const DialogText text = ReadDialogText("T\t1\t0\tA\tx\r<b>Bold</b>\tand\x01more");
  EXPECT_THAT(text.notes, ElementsAre("<b>Bold</b> and more"));
  EXPECT_EQ(text.rows.size(), 1U);
}

TEST(DialogText, NothingAndATitleAloneAreADialogWithoutRows) {
  for (const char* nothing : {"", "\r", "\r\r\r", "Title", "\t", "Title\t1", "Title\t1\t0"}) {
    const DialogText text = ReadDialogText(nothing);
    EXPECT_THAT(text.rows, IsEmpty()) << nothing;
    EXPECT_THAT(text.strange, Not(IsEmpty())) << nothing;
  }
}

TEST(DialogText, LinesThatWouldBreakTheStoredStringAreLeftOut) {
  const DialogText text = ReadDialogText(
      "T\t1\t0\tA\tgood\tb\x02"
      "ad\talso good");
  EXPECT_THAT(text.rows[0].options, ElementsAre("good", "also good"));
  EXPECT_THAT(text.strange, ElementsAre("row 1 has 1 lines that can't be kept"));
}

TEST(DialogText, ARowOfAMebibyteIsCutAndTold) {
  const std::string mebibyte(std::size_t{1} << 20U, 'x');
  const DialogText label = ReadDialogText("T\t1\t0\t" + mebibyte + "\ta");
  EXPECT_EQ(label.rows[0].label.size(), 1000U);
  EXPECT_THAT(label.strange, ElementsAre(HasSubstr("long label")));
  const DialogText option = ReadDialogText("T\t1\t0\tA\tb\t" + mebibyte);
  EXPECT_THAT(option.rows[0].options, ElementsAre("b"));
  const DialogText odd = ReadDialogText("T\t1\t0\tA\tb\r" + mebibyte);
  EXPECT_EQ(odd.notes[0].size(), 1000U);
  EXPECT_EQ(ReadDialogText(mebibyte).title.size(), 1000U);
}

TEST(DialogText, AMillionRowsAreBounded) {
  std::string many = "T";
  for (int i = 0; i < 100'000; ++i) many += "\r\t\t7\t0\tx";
  for (int i = 0; i < 100'000; ++i) many += "\r\t\t2\t0\tx";
  const DialogText text = ReadDialogText(many);
  EXPECT_EQ(text.rows.size(), 200U);
  EXPECT_LE(text.notes.size(), 20U);
  EXPECT_LE(text.strange.size(), 21U);
}

TEST(DialogText, ALineFeedBehindACarriageReturnBelongsToIt) {
  EXPECT_EQ(Labels(ReadDialogText("T\t1\t0\tA\tx\r\n\t\t2\t0\tB\r\n")),
            (std::vector<std::string>{"list A", "text B"}));
}

TEST(ShownText, IsCutBetweenCharacters) {
  EXPECT_EQ(standin::ShownText("aé", 3), "aé");
  EXPECT_EQ(standin::ShownText("aéb", 2), "a");
  EXPECT_EQ(standin::ShownText("a€b", 3), "a");
  EXPECT_EQ(standin::ShownText("a\xFF\nb", 9), "a\xEF\xBF\xBD b");
}
