// The controls of an open dialog, as the plug-in changes them by name.
#include <gmock/gmock.h>

#include <limits>

#include "base/Failure.hpp"
#include "standin/dialogs/DialogForm.hpp"
#include "standin/dialogs/PluginTexts.hpp"
#include "support/FailureNumber.hpp"

namespace {

using base::ToInt32;
using base::ToSingle;
using base::ToText;
using nlohmann::json;
using standin::DialogForm;
using support::FailureNumberOf;
using testing::ElementsAre;

class DialogControls : public testing::Test {
 protected:
  base::Object& all() { return base::Deref(form.controls()); }
  base::ObjectRef control(std::int32_t number) { return base::ToObject(all().invoke("item", number)); }
  std::vector<std::string> lines(std::int32_t number) { return form.options(number, 0, 1000, "")->lines; }

  int changes = 0;
  DialogForm form{standin::ReadDialogText(support::ActionText()), [this] { ++changes; }};
};

}  // namespace

TEST_F(DialogControls, AreSeventeenLabelsAndControls) {
  EXPECT_EQ(ToInt32(all().get("Count")), 17);
  EXPECT_EQ(ToText(control(1)->get("Text")), "Action");
  EXPECT_EQ(ToText(control(2)->get("Text")), "No Action");
  EXPECT_EQ(ToText(control(11)->get("Text")), "Titles");
  EXPECT_EQ(ToText(control(17)->get("Text")), "Refresh Titles");
  EXPECT_EQ(FailureNumberOf([&] { control(18); }), base::number::kIndex);
  EXPECT_EQ(FailureNumberOf([&] { control(0); }), base::number::kIndex);
  EXPECT_EQ(control(12), control(12));
}

TEST_F(DialogControls, TakeTheWidthAndPlaceThatTheyAreGiven) {
  control(12)->put("Width", std::int16_t{7000});
  control(17)->put("Top", ToSingle(control(12)->get("Top")) - 50);
  control(17)->put("Left", 7220.0);
  const json fields = form.json("")["fields"];
  EXPECT_EQ(fields[5]["width"], 7000);
  EXPECT_EQ(fields[8]["top"], fields[5]["top"].get<int>() - 50);
  EXPECT_EQ(fields[8]["left"], 7220);
  EXPECT_EQ(changes, 3);
}

TEST_F(DialogControls, TakeNoSizeThatNoWindowHas) {
  control(2)->put("Width", 1e30F);
  EXPECT_EQ(ToSingle(control(2)->get("Width")), 1'000'000);
  control(2)->put("Width", -5);
  EXPECT_EQ(ToSingle(control(2)->get("Width")), 0);
  control(2)->put("Left", -1e30);
  EXPECT_EQ(ToSingle(control(2)->get("Left")), -1'000'000);
  EXPECT_EQ(FailureNumberOf([&] { control(2)->put("Top", std::numeric_limits<double>::quiet_NaN()); }),
            base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { control(2)->put("Top", "wide"); }), base::number::kTypeMismatch);
}

TEST_F(DialogControls, ListsAreClearedAndFilledFromZero) {
  const auto titles = control(12);
  titles->call("Clear");
  EXPECT_EQ(ToInt32(titles->get("ListIndex")), -1);
  titles->invoke("AddItem", "", 0);
  titles->invoke("AddItem", "(Play entire list)", 1);
  titles->put("ListIndex", 1);
  titles->invoke("AddItem", "Last");
  titles->invoke("AddItem", "First", 0);
  EXPECT_THAT(lines(12), ElementsAre("First", "", "(Play entire list)", "Last"));
  EXPECT_EQ(ToText(titles->get("Text")), "(Play entire list)");
  EXPECT_EQ(ToInt32(titles->get("ListIndex")), 2);
  EXPECT_EQ(ToInt32(titles->get("ListCount")), 4);
}

TEST_F(DialogControls, ListsTakeManyLinesInOneCall) {
  const auto titles = control(12);
  titles->put("ListIndex", 2);
  titles->invoke("AddItems", 1, base::Array{base::Value("a"), base::Value("b")});
  EXPECT_THAT(lines(12), ElementsAre("", "a", "b", "(Play entire list)", "River"));
  EXPECT_EQ(ToText(titles->get("Text")), "River");
  EXPECT_EQ(FailureNumberOf([&] { titles->invoke("AddItems", 6, base::Array{base::Value("c")}); }),
            base::number::kInvalidArgument);
}

TEST_F(DialogControls, RefuseLinesAndPlacesThatAreNotThere) {
  const auto titles = control(12);
  EXPECT_EQ(FailureNumberOf([&] { titles->invoke("AddItem", "x", 4); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { titles->invoke("AddItem", "x", -1); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { titles->put("ListIndex", 3); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { titles->put("ListIndex", -2); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureNumberOf([&] { titles->invoke("AddItem", std::string(70'000, 'x')); }),
            base::number::kInvalidArgument);
  EXPECT_EQ(changes, 0);
}

TEST_F(DialogControls, BesideListsHaveNoLines) {
  for (const std::int32_t other : {1, 14, 17}) {
    EXPECT_EQ(FailureNumberOf([&] { control(other)->call("Clear"); }), base::number::kNoSuchMember);
    EXPECT_EQ(FailureNumberOf([&] { control(other)->put("ListIndex", 0); }), base::number::kNoSuchMember);
  }
}

TEST_F(DialogControls, AreFoundByTheirNewLinesAfterASearch) {
  EXPECT_EQ(form.options(12, 0, 10, "river")->count, 1U);
  control(12)->call("Clear");
  EXPECT_EQ(form.options(12, 0, 10, "river")->count, 0U);
  control(12)->invoke("AddItem", "The River");
  EXPECT_EQ(form.options(12, 0, 10, "river")->count, 1U);
}

TEST_F(DialogControls, HoldNoMoreThanABoundedNumberOfBytes) {
  const auto titles = control(12);
  const std::string line(60'000, 'x');
  std::int32_t failure = 0;
  int taken = 0;
  while (failure == 0 && ++taken < 5000) failure = FailureNumberOf([&] { titles->invoke("AddItem", line); });
  EXPECT_EQ(failure, base::number::kOverflow);
  EXPECT_LT(taken, 2300);
}

TEST(DialogControlsOfAClosedDialog, ChangeNothing) {
  int changes = 0;
  base::ObjectRef titles;
  {
    const DialogForm form(standin::ReadDialogText(support::ActionText()), [&] { ++changes; });
    titles = base::ToObject(base::Deref(form.controls()).invoke("item", 12));
  }
  titles->invoke("AddItem", "x");
  titles->put("ListIndex", 0);
  titles->put("Text", "x");
  titles->call("Clear");
  titles->put("Width", 7000);
  EXPECT_EQ(ToText(titles->get("Text")), "");
  EXPECT_EQ(ToInt32(titles->get("ListCount")), 0);
  EXPECT_EQ(changes, 0);
}
