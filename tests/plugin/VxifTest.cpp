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

TEST_F(Vxif, OperationsOnAStringOfTheHostLeaveItAsItWas) {
  for (const char* name : {"ActionUIFormat", "ValidateActionUI", "TriggerAction", "TriggerUI",
                           "TriggerUIFormat", "ValidateTriggerUI", "ConditionUIFormat", "ConditionCheck"}) {
    base::Args args{base::Value("kept")};
    plugin.vxif()->call(name, args);
    EXPECT_EQ(args[0], base::Value("kept")) << name;
  }
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
  EXPECT_EQ(callVxif("PagePut", "fail"), base::Value(""));
  host->failing = {"WEBLoggedInUser"};
  EXPECT_EQ(callVxif("GenPage", "WMP_PListEdit"), base::Value(""));
}

namespace {

std::string NameOf(Type type) {
  switch (type) {
    case Type::kNone: return "none";
    case Type::kAny: return "any";
    case Type::kBoolean: return "boolean";
    case Type::kInt16: return "16";
    case Type::kInt32: return "32";
    case Type::kText: return "text";
    case Type::kObject: return "object";
    case Type::kArray: return "array";
    default: return "other";
  }
}

std::string Signature(const base::Member& member) {
  if (member.kind == base::MemberKind::kField) return member.name + ": " + NameOf(member.result);
  std::string line = member.name + "(";
  for (const base::Param& param : member.params) {
    if (line.back() != '(') line += ", ";
    line += (param.fallback ? "optional " : "") + std::string(param.inOut ? "inout " : "") + param.name +
            " " + NameOf(param.type);
  }
  return line + ") " + NameOf(member.result);
}

}  // namespace

TEST_F(Vxif, EveryOperationHasItsTypes) {
  std::vector<std::string> signatures;
  for (const base::Member& member : plugin.vxif()->members()->list()) signatures.push_back(Signature(member));
  EXPECT_THAT(
      signatures,
      ::testing::ElementsAre(
          "Link: text", "LinkText: text", "Page_Title: text", "Scripting: object", "Capabilities() 32",
          "Name() text", "RegisterCallback(frm object) none", "InterfaceStatus() 16", "InitIO(port 32) text",
          "ShutdownIO() none", "ConfigIO() none",
          "SetIO(dv any, HouseCode text, DeviceCode text, Command 16, Brightness 16, data1 16, data2 16) "
          "none",
          "SupportsConfigDevice() boolean", "ConfigDevice(hc text, dc text) none",
          "SupportsTriggerUI() boolean", "SupportsActionUI() boolean", "ActionUI(inout ActionStr text) text",
          "ActionUIFormat(inout ActionString text) text", "ModifyActionUI(inout controls any) none",
          "ValidateActionUI(inout ActionStr text) text", "TriggerAction(inout ActionStr text) none",
          "TriggerUI(optional inout TrigString text) text", "TriggerUIFormat(inout TrigString text) text",
          "ModifyTriggerUI(inout controls any) none", "ValidateTriggerUI(inout trigstr text) text",
          "SupportsConditionUI() boolean", "ConditionUI(inout cond_num 16) text",
          "ConditionUIFormat(inout cond_str any) text", "ConditionCheck(inout cond_str text) boolean",
          "CustomActionDialogUI() none", "VXEvent(parms array) none", "SelectMenu(menu_name text) none",
          "ButtonPress(button_name text) none", "GenPage(lnk text) text", "PagePut(data text) text",
          "Version() text"));
}
