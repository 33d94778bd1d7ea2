// A dialog as pages see it.
#include "standin/dialogs/DialogForm.hpp"

#include <gmock/gmock.h>

#include "standin/dialogs/PluginTexts.hpp"

namespace {

using nlohmann::json;
using standin::DialogForm;
using standin::ReadDialogText;
using testing::ElementsAre;
using testing::IsEmpty;

std::string ManyNames(int count) {
  std::string text = "T\t1\t0\tAlbums\t";
  for (int i = 0; i < count; ++i) text += "\tDas Schöne Nr. " + std::to_string(i);
  return text;
}

}  // namespace

TEST(DialogForm, TellsOfEachFieldWhatAPageNeeds) {
  const DialogForm form(ReadDialogText(support::ActionText()), nullptr);
  const json told = form.json("Media Player");
  EXPECT_EQ(told["title"], "Media Player Actions");
  EXPECT_EQ(told["help"], "Click 'Submit' below, to refresh the list of titles or save actions");
  EXPECT_EQ(told["interface"], "Media Player");
  std::vector<int> numbers;
  for (const json& field : told["fields"]) numbers.push_back(field["number"]);
  EXPECT_THAT(numbers, ElementsAre(2, 4, 6, 8, 10, 12, 14, 16, 17));
  const json& albums = told["fields"][2];
  EXPECT_EQ(albums["kind"], "list");
  EXPECT_EQ(albums["label"], "Albums");
  EXPECT_EQ(albums["value"], "");
  EXPECT_EQ(albums["count"], 3);
  EXPECT_EQ(albums["options"], json({"", "Blue", "Clouds"}));
  EXPECT_TRUE(albums["listed"]);
  EXPECT_EQ(albums["error"], "");
  const json& button = told["fields"][8];
  EXPECT_EQ(button["kind"], "button");
  EXPECT_EQ(button["label"], "Refresh Titles");
  EXPECT_FALSE(button.contains("options"));
}

TEST(DialogForm, StandsInAColumn) {
  const DialogForm form(ReadDialogText(support::ActionText()), nullptr);
  const json fields = form.json("")["fields"];
  for (std::size_t i = 1; i < fields.size(); ++i) {
    EXPECT_GT(fields[i]["top"], fields[i - 1]["top"]);
    EXPECT_EQ(fields[i]["left"], fields[0]["left"]);
  }
}

TEST(DialogForm, NumbersTheControlsOfAnyDialogInTheSameWay) {
  const auto numbers = [](const std::string& text) {
    std::vector<int> all;
    const json told = DialogForm(ReadDialogText(text), nullptr).json("");
    for (const json& field : told["fields"]) all.push_back(field["number"]);
    return all;
  };
  EXPECT_THAT(numbers(support::TriggerText()), ElementsAre(2));
  EXPECT_THAT(numbers(support::ConditionText()), ElementsAre(2, 4));
  EXPECT_THAT(numbers(""), IsEmpty());
}

TEST(DialogForm, GivesTheFirstOptionsOfAHundredThousandAndTheOthersOnDemand) {
  const DialogForm form(ReadDialogText(ManyNames(100'000)), nullptr);
  const json field = form.json("")["fields"][0];
  EXPECT_EQ(field["count"], 100'001);
  EXPECT_EQ(field["options"].size(), 200U);
  EXPECT_THAT(form.options(2, 99'999, 10, "")->lines,
              ElementsAre("Das Schöne Nr. 99998", "Das Schöne Nr. 99999"));
  EXPECT_THAT(form.options(2, 200'000, 10, "")->lines, IsEmpty());
}

TEST(DialogForm, FindsOptionsByTheirWordsInAnyOrder) {
  const DialogForm form(ReadDialogText(ManyNames(1000)), nullptr);
  const auto found = form.options(2, 1, 2, " 99  SCHONE ");
  EXPECT_EQ(found->count, 19U);  // 99, 199 … 999, 990 … 998
  EXPECT_THAT(found->lines, ElementsAre("Das Schöne Nr. 199", "Das Schöne Nr. 299"));
  EXPECT_FALSE(form.options(3, 0, 10, "").has_value());
}

TEST(DialogForm, OptionsOfAnyLengthMakeAPageOfABoundedSize) {
  std::string text = "T\t1\t0\tA";
  for (int i = 0; i < 200; ++i) text += "\t" + std::string(16'000, 'x');
  const DialogForm form(ReadDialogText(text), nullptr);
  EXPECT_EQ(form.json("")["fields"][0]["count"], 200);
  EXPECT_LT(form.json("").dump().size(), 600'000U);
}
