#include "plugin/VxifEvents.hpp"

#include "base/MemberWords.hpp"

namespace plugin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

/// An operation on one string of the host, which the caller gets back as it was.
template <class Answer>
Member OnText(const char* name, Param param, Type result, Answer answer) {
  return Operation(name, {InOut(std::move(param))}, result,
                   [answer = std::move(answer)](Args& args) { return answer(TextAt(args, 0)); });
}

}  // namespace

std::vector<Member> EventMembers(const EventParts& parts) {
  const EventParts in = parts;
  return {
      Operation("ActionUI", {InOut(Text("ActionStr"))}, Type::kText,
                [in](Args& args) {
                  std::string text = TextAt(args, 0);
                  std::string dialog = in.actionDialog.ActionUI(text);
                  args[0] = text;
                  return dialog;
                }),
      OnText("ActionUIFormat", Text("ActionString"), Type::kText,
             [in](const std::string& text) { return in.actionDialog.ActionUIFormat(text); }),
      Command("ModifyActionUI", {InOut(Any("controls"))},
              [in](Args& args) { in.actionDialog.ModifyActionUI(args[0]); }),
      OnText("ValidateActionUI", Text("ActionStr"), Type::kText,
             [in](const std::string& text) { return in.actionDialog.ValidateActionUI(text); }),
      Command("TriggerAction", {InOut(Text("ActionStr"))},
              [in](Args& args) { in.actionRun.TriggerAction(TextAt(args, 0)); }),
      OnText("TriggerUI", Text("TrigString", ""), Type::kText,
             [](const std::string&) { return automation::Triggers::TriggerUI(); }),
      OnText("TriggerUIFormat", Text("TrigString"), Type::kText,
             [](const std::string& text) { return automation::Triggers::TriggerUIFormat(text); }),
      // A trigger's dialog is as it is, and every trigger is valid.
      Command("ModifyTriggerUI", {InOut(Any("controls"))}, [] {}),
      Operation("ValidateTriggerUI", {InOut(Text("trigstr"))}, Type::kText, [] { return ""; }),
      Constant("SupportsConditionUI", Type::kBoolean, true),
      Operation("ConditionUI", {InOut(Short("cond_num"))}, Type::kText,
                [](Args& args) { return automation::Conditions::ConditionUI(ShortAt(args, 0)); }),
      Operation("ConditionUIFormat", {InOut(Any("cond_str"))}, Type::kText,
                [](Args& args) {
                  // What is no text has no fields, and no words.
                  const bool isText = args[0].is<std::string>();
                  return automation::Conditions::ConditionUIFormat(isText ? TextAt(args, 0) : "");
                }),
      OnText("ConditionCheck", Text("cond_str"), Type::kBoolean,
             [in](const std::string& text) { return in.conditions.ConditionCheck(text); }),
      Command("CustomActionDialogUI", {},
              [in] {
                const std::string& shown = in.openDialog.ActionDialogState;
                if (in.state.Initialized && shown != automation::OpenActionDialog::kNotInitialized)
                  in.dropLists.FileDropListModify();
              }),
      Command("VXEvent", {List("parms")}, [in](Args& args) { in.speech.VXEvent(args[0].array()); }),
  };
}

}  // namespace plugin
