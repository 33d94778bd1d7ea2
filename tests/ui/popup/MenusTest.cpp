// The popup window's menus as a model.
#include "ui/popup/PopupMenus.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FailureNumber.hpp"

using support::FailureNumberOf;
using ::testing::ElementsAre;

namespace {

std::vector<std::string> Below(const std::string& parent) {
  std::vector<std::string> captions;
  for (const ui::PopupMenuItem& item : ui::PopupMenus::items())
    if (parent == item.parent) captions.emplace_back(item.separator() ? "---" : item.caption);
  return captions;
}

}  // namespace

TEST(PopupMenus, StandAsTheUserKnowsThem) {
  EXPECT_THAT(Below(""), ElementsAre("&Play...", "&Settings", "A&bout Vantorix Media Player"));
  EXPECT_THAT(Below("Play"), ElementsAre("Album", "Artist", "Genre", "PlayList"));
  EXPECT_THAT(Below("Settings"), ElementsAre("Show Cover &Art", "Show &Visualizations (CPU Intensive)",
                                             "Show Full &Screen Video", "---", "&Loop Mode", "&Shuffle Mode",
                                             "&Eject", "---", "Always &On Top"));
}

TEST(PopupMenus, HoldTheElementsOfTheirDesign) {
  const ui::PopupMenus menus;
  for (const char* category : {"Album", "Artist", "Genre", "PlayList"}) {
    EXPECT_EQ(menus.list(category).upperBound(), 0) << category;
    EXPECT_EQ(menus.list(category).caption(0), "(none)") << category;
  }
  const ui::ElementArray& media = menus.list(ui::PopupMenus::kMedia);
  EXPECT_EQ(media.upperBound(), 3);
  EXPECT_EQ(media.caption(0), "Type");
  EXPECT_EQ(media.caption(1), "Name");
  EXPECT_EQ(media.caption(2), "Heading");
  EXPECT_EQ(media.caption(3), "Play All");
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(menus.list("Composer")); }),
            base::number::kInvalidArgument);
}

TEST(PopupMenus, ElementsComeAndGoByTheirNumbers) {
  ui::PopupMenus menus;
  EXPECT_EQ(FailureNumberOf([&] { menus.load("Album", 0); }), ui::kElementExists);
  EXPECT_EQ(FailureNumberOf([&] { menus.caption("Album", 1, "Blue"); }), ui::kNoSuchElement);
  menus.load("Album", 1);
  menus.caption("Album", 1, "Blue & Green");
  EXPECT_EQ(menus.list("Album").caption(1), "Blue & Green");
  EXPECT_EQ(FailureNumberOf([&] { menus.load("Album", 1); }), ui::kElementExists);
  EXPECT_EQ(FailureNumberOf([&] { menus.load("Album", -1); }), base::number::kIndex);
  EXPECT_EQ(menus.list("Artist").upperBound(), 0) << "each category has its own";
}

TEST(PopupMenus, ThereMayBeGaps) {
  ui::ElementArray array({"(none)"});
  array.load(5);
  EXPECT_EQ(array.upperBound(), 5);
  EXPECT_FALSE(array.has(3));
  array.load(3);
  array.unload(5);
  EXPECT_EQ(array.upperBound(), 3);
  array.unload(3);
  EXPECT_EQ(array.upperBound(), 0);
  EXPECT_EQ(FailureNumberOf([&] { array.unload(3); }), ui::kNoSuchElement);
  EXPECT_EQ(FailureNumberOf([&] { array.unload(0); }), ui::kElementOfDesign);
}

TEST(PopupMenus, TheLastElementIsTheLastOfSixteenBits) {
  ui::ElementArray array({"(none)"});
  array.load(32767);
  EXPECT_EQ(array.upperBound(), 32767);
  EXPECT_TRUE(array.has(32767));
  EXPECT_FALSE(array.has(32768));
  EXPECT_FALSE(array.has(-1));
}

TEST(PopupMenus, CheckMarksAreForWhatCanBeOnAndOff) {
  ui::PopupMenus menus;
  menus.check("LoopMode", true);
  EXPECT_TRUE(menus.checked("LoopMode"));
  menus.check("LoopMode", false);
  EXPECT_FALSE(menus.checked("LoopMode"));
  EXPECT_EQ(FailureNumberOf([&] { menus.check("Eject", true); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { menus.check("Loop", true); }), base::number::kInvalidArgument);
}
