#include "support/House.hpp"

using base::Type;
using support::House;

namespace {
class Vxif : public House {};
}  // namespace

TEST_F(Vxif, HoldsTheWholeListOfItsOperationsInOrder) {
  std::vector<std::string> names;
  for (const base::Member& member : plugin.vxif()->members()->list()) names.push_back(member.name);
  EXPECT_THAT(names,
              ::testing::ElementsAre(
                  "Link", "LinkText", "Page_Title", "Scripting", "Capabilities", "Name", "RegisterCallback",
                  "InterfaceStatus", "InitIO", "ShutdownIO", "ConfigIO", "SetIO", "SupportsConfigDevice",
                  "ConfigDevice", "SupportsTriggerUI", "SupportsActionUI", "ActionUI", "ActionUIFormat",
                  "ModifyActionUI", "ValidateActionUI", "TriggerAction", "TriggerUI", "TriggerUIFormat",
                  "ModifyTriggerUI", "ValidateTriggerUI", "SupportsConditionUI", "ConditionUI",
                  "ConditionUIFormat", "ConditionCheck", "CustomActionDialogUI", "VXEvent", "SelectMenu",
                  "ButtonPress", "GenPage", "PagePut", "Version"));
}

TEST_F(Vxif, AnswersBeforeTheHostIsThere) {
  EXPECT_EQ(callVxif("Capabilities"), base::Value(std::int32_t{4}));
  EXPECT_EQ(callVxif("Name"), base::Value("Media Player"));
  EXPECT_EQ(callVxif("InterfaceStatus"), base::Value(std::int16_t{2}));
  EXPECT_EQ(callVxif("Version"), base::Value("1.0.23"));
  EXPECT_EQ(callVxif("SupportsConfigDevice"), base::Value(false));
  EXPECT_EQ(callVxif("SupportsTriggerUI"), base::Value(true));
  EXPECT_EQ(callVxif("SupportsActionUI"), base::Value(true));
  EXPECT_EQ(plugin.vxif()->get("Link"), base::Value(""));
  EXPECT_EQ(plugin.vxif()->get("Scripting"), base::Value(base::ObjectRef()));
}

TEST_F(Vxif, TheHostMayWriteThePublicFields) {
  plugin.vxif()->put("LinkText", "Lists");
  EXPECT_EQ(plugin.vxif()->get("LinkText"), base::Value("Lists"));
}

TEST_F(Vxif, OperationsWithoutTheirModuleGiveTheEmptyValueAndLeaveTheirArguments) {
  for (const char* name : {"ActionUI", "ActionUIFormat", "ValidateActionUI", "TriggerUI", "TriggerUIFormat",
                           "ValidateTriggerUI", "ConditionUIFormat"}) {
    base::Args args{base::Value("kept")};
    EXPECT_EQ(plugin.vxif()->call(name, args), base::Value("")) << name;
    EXPECT_EQ(args[0], base::Value("kept")) << name;
  }
  EXPECT_EQ(callVxif("ConditionCheck", "x"), base::Value(false));
  EXPECT_EQ(callVxif("ConditionUI", 1), base::Value(""));
  EXPECT_EQ(callVxif("TriggerUI"), base::Value(""));
  EXPECT_TRUE(callVxif("TriggerAction", "x").empty());
  EXPECT_TRUE(callVxif("CustomActionDialogUI").empty());
  EXPECT_TRUE(callVxif("VXEvent", base::Array{8, true}).empty());
}

TEST_F(Vxif, ConfigDeviceShowsAPlainBox) {
  callVxif("ConfigDevice", "Q", "7");
  EXPECT_TRUE(journal.has("box Media Player: Configure device Q7"));
}

TEST_F(Vxif, GuestsMayNotEditPlaylistsInAnySpelling) {
  connect();
  host->webUser = "Guest";
  EXPECT_EQ(callVxif("GenPage", "WMP_PListEdit"),
            base::Value("<p><b>Guests are not authorized to edit playlists</b></p>"));
  host->webUser = "anna";
  EXPECT_EQ(callVxif("GenPage", "WMP_PListEdit"), base::Value("page of WMP_PListEdit"));
}

TEST_F(Vxif, PagePutAlwaysReachesThePagesAndAFailureLeavesAnEmptyAnswer) {
  connect();
  host->webUser = "guest";
  EXPECT_EQ(callVxif("PagePut", "a=b"), base::Value("answer to a=b"));
  host->failing = {"WEBLoggedInUser"};
  EXPECT_EQ(callVxif("GenPage", "WMP_PListEdit"), base::Value(""));
}
