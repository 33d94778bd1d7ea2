#include "plugin/VxifEvents.hpp"

#include <functional>

#include "player/ByNameTable.hpp"

namespace plugin {

using base::Args;
using base::Member;
using base::Param;
using base::Type;
using base::Value;
using player::table::Command;
using player::table::Operation;

namespace {

Param InOut(const char* name, Type type) {
  Param param{name, type};
  param.inOut = true;
  return param;
}
Param OptionalInOut(const char* name, Type type) {
  Param param = InOut(name, type);
  param.fallback = base::EmptyOf(type);
  return param;
}

/// An operation on one string of the host, which the caller gets back as it was.
Member OnText(const char* name, Param param, std::function<Value(const std::string&)> handler, Type result) {
  return Operation(name, {std::move(param)}, result,
                   [handler = std::move(handler)](Args& args) { return handler(base::ToText(args[0])); });
}

}  // namespace

std::vector<Member> EventMembers(const EventParts& parts) {
  const EventParts in = parts;
  const auto actionStr = [] { return InOut("ActionStr", Type::kText); };
  return {
      Operation("ActionUI", {actionStr()}, Type::kText,
                [in](Args& args) {
                  std::string text = base::ToText(args[0]);
                  Value dialog = in.actionDialog.ActionUI(text);
                  args[0] = text;
                  return dialog;
                }),
      OnText(
          "ActionUIFormat", InOut("ActionString", Type::kText),
          [in](const std::string& text) { return Value(in.actionDialog.ActionUIFormat(text)); }, Type::kText),
      Command("ModifyActionUI", {InOut("controls", Type::kAny)},
              [in](Args& args) { in.actionDialog.ModifyActionUI(args[0]); }),
      OnText(
          "ValidateActionUI", actionStr(),
          [in](const std::string& text) { return Value(in.actionDialog.ValidateActionUI(text)); },
          Type::kText),
      OnText(
          "TriggerAction", actionStr(),
          [in](const std::string& text) {
            in.actionRun.TriggerAction(text);
            return Value();
          },
          Type::kNone),
      OnText(
          "TriggerUI", OptionalInOut("TrigString", Type::kText),
          [](const std::string&) { return Value(automation::Triggers::TriggerUI()); }, Type::kText),
      OnText(
          "TriggerUIFormat", InOut("TrigString", Type::kText),
          [](const std::string& text) { return Value(automation::Triggers::TriggerUIFormat(text)); },
          Type::kText),
      // A trigger's dialog is as it is, and every trigger is valid.
      Command("ModifyTriggerUI", {InOut("controls", Type::kAny)}, [](Args&) {}),
      OnText(
          "ValidateTriggerUI", InOut("trigstr", Type::kText), [](const std::string&) { return Value(""); },
          Type::kText),
      Operation("SupportsConditionUI", {}, Type::kBoolean, [](Args&) { return Value(true); }),
      Operation(
          "ConditionUI", {InOut("cond_num", Type::kInt16)}, Type::kText,
          [](Args& args) { return Value(automation::Conditions::ConditionUI(base::ToInt16(args[0]))); }),
      OnText(
          "ConditionUIFormat", InOut("cond_str", Type::kAny),
          [](const std::string& text) { return Value(automation::Conditions::ConditionUIFormat(text)); },
          Type::kText),
      OnText(
          "ConditionCheck", InOut("cond_str", Type::kText),
          [in](const std::string& text) { return Value(in.conditions.ConditionCheck(text)); },
          Type::kBoolean),
      Command("CustomActionDialogUI", {},
              [in](Args&) {
                const std::string& shown = in.openDialog.ActionDialogState;
                if (in.state.Initialized && shown != automation::OpenActionDialog::kNotInitialized)
                  in.dropLists.FileDropListModify();
              }),
      Command("VXEvent", {{"parms", Type::kArray}}, [in](Args& args) { in.speech.VXEvent(args[0].array()); }),
  };
}

}  // namespace plugin
