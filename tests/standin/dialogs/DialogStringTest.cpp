// What the house stores for a filled-in dialog.
#include "standin/dialogs/DialogString.hpp"

#include <gmock/gmock.h>

#include "standin/dialogs/DialogForm.hpp"
#include "standin/dialogs/PluginTexts.hpp"

namespace {

using standin::Composed;
using standin::DialogForm;
using standin::DialogString;
using standin::ReadDialogString;
using standin::ReadDialogText;
using testing::ElementsAre;

/// The stored string of a form that is filled in by numbers, with "|" for the separator.
std::string Filled(const std::string& text, const standin::DialogValues& values) {
  DialogForm form(ReadDialogText(text), nullptr);
  form.fill(values);
  std::string stored = Composed({"Media Player", form.title(), form.values()});
  std::replace(stored.begin(), stored.end(), '\x02', '|');
  return stored;
}

}  // namespace

TEST(DialogString, OfAFreshActionHasElevenFieldsWithEmptyLinesEmpty) {
  EXPECT_EQ(Filled(support::ActionText(), {}),
            "Media Player|Media Player Actions|No Action|||||||No Action|");
}

TEST(DialogString, HoldsTheValuesInTheOrderOfTheRows) {
  EXPECT_EQ(Filled(support::ActionText(),
                   {{2, "Play: Album"}, {6, "Blue"}, {12, "River"}, {14, "typed"}, {16, "Loop Only"}}),
            "Media Player|Media Player Actions|Play: Album||Blue|||River|typed|Loop Only|");
}

TEST(DialogString, OfATriggerHasItsWordBehindTheTitle) {
  EXPECT_EQ(Filled(support::TriggerText(), {{2, "Playback Ended"}}),
            "Media Player|Media Player Triggers|Playback Ended");
}

TEST(DialogString, OfAConditionHasBothItsWords) {
  EXPECT_EQ(Filled(support::ConditionText(), {{2, "Paused"}, {4, "No"}}),
            "Media Player|Media Player Status|Paused|No");
}

TEST(DialogString, GoesBackIntoTheControls) {
  DialogForm form(ReadDialogText(support::ActionText()), nullptr);
  const std::string stored = Composed({"Media Player",
                                       "Media Player Actions",
                                       {"Play: Album", "", "Blue", "", "", "River", "", "Loop Only", ""}});
  form.fill(ReadDialogString(stored).values);
  EXPECT_EQ(Composed({"Media Player", form.title(), form.values()}), stored);
}

TEST(DialogString, KeepsAValueThatTheListsNoLongerHave) {
  DialogForm form(ReadDialogText(support::ActionText()), nullptr);
  form.fill(std::vector<std::string>{"Play: Album", "", "A lost album"});
  EXPECT_EQ(form.values()[2], "A lost album");
  EXPECT_FALSE(form.json("")["fields"][2]["listed"]);
}

TEST(DialogString, OfAnyNumberOfFieldsIsRead) {
  EXPECT_EQ(ReadDialogString(""), DialogString());
  EXPECT_EQ(ReadDialogString("a"), (DialogString{"a", "", {}}));
  EXPECT_EQ(ReadDialogString("a\x02"), (DialogString{"a", "", {}}));
  std::string many;
  for (int i = 0; i < 20; ++i) many += "\x02";
  DialogForm form(ReadDialogText(support::ActionText()), nullptr);
  form.fill(ReadDialogString(many).values);
  EXPECT_THAT(form.values(), ElementsAre("", "", "", "", "", "", "", "", ""));
}

TEST(DialogString, TakesNoCharacterThatWouldNotComeBack) {
  EXPECT_TRUE(standin::MayBeStored("a\tb\r\nc, <b>é</b>"));
  EXPECT_FALSE(
      standin::MayBeStored("a\x02"
                           "b"));
  EXPECT_FALSE(standin::MayBeStored(std::string_view("a\0b", 3)));
}
