#include "automation/ActionDialog.hpp"

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "web/Concatenate.hpp"
#include "web/UtilityModule.hpp"

// The half of ActionDialog that makes the dialog; what comes back is read in ActionDialogAnswers.cpp.
namespace automation {

namespace {

constexpr const char* kTitleRow =
    "Media Player Actions\t5\t12\t"
    "Click 'Submit' below, to refresh the list of titles or save actions\t";
constexpr const char* kActionWords =
    "\tPlay: PlayList\tPlay: Album\tPlay: Artist\tPlay: Genre\tPlay: Media Library\tPlay: URL\tStop\tPause"
    "\tResume\tNext\tPrevious\tRestart\tMute\tUnMute\tChange Mode only";
// What a dialog without lists offers instead.
constexpr const char* kPrompts =
    "\tTo enable a Media Player action: Select this, click \"OK\" or \"SUBMIT\", then return here"
    "\tYou can avoid this message by selecting \"Always Refresh Media Player Event Actions\" in Setup";
constexpr const char* kModeRow =
    "\t\t1\t0\tMode\tNo Action\tNo Shuffle and No Loop\tLoop Only\tShuffle Only\tShuffle and Loop";
constexpr const char* kFreshAction = "\x02\x02\x02\x02\x02\x02\x02\x02\x02\x02";

/// A row up to the tab behind its label. Kind 1 is a drop list, 2 a text box.
std::string RowStart(char kind, const std::string& label) {
  return std::string("\t\t") + kind + "\t0\t" + label + "\t";
}

}  // namespace

void ActionDialog::step(const std::string& text) {
  if (in_.state.Initialized) in_.loggers.Debug("Media Player: " + text);
}

std::string ActionDialog::ActionUI(std::string& ActionStr) {
  in_.state.ProgressWindowAllowed = true;
  std::string text;
  base::Handled(
      [&] {
        const catalogue::ProgressShown shown(in_.progress, "ActionUI");
        in_.loggers.Debug("Media Player: Start ActionUI with string: " + ActionStr);
        if (ActionStr.empty()) ActionStr = kFreshAction;
        const ActionString a(ActionStr);
        if (!a.wellFormed()) {
          in_.host.WriteLog("Error", "Media Player: Wrong number of arguments passed to ActionUI: " +
                                         std::to_string(a.highestIndex()));
          in_.host.WriteLog("Error", "Media Player: ActionUI string: " + ActionStr);
        }
        text = dialogText(a);
        in_.loggers.Debug("Media Player: Checking for Illegal Characters");
        ActionStr = web::FilterString(text, "VX", " ");
        // The line that would name the characters wants them as a number, which they never are, so that a
        // find has always ended as a failure. The text goes out all the same, with blanks in their place.
        if (!ActionStr.empty()) throw base::Failure(base::number::kTypeMismatch);
        in_.loggers.Debug("Media Player: ActionUI Finished.  Result length: " +
                          std::to_string(base::CountCharacters(text)));
      },
      [&](const base::Failure& failure) {
        in_.loggers.LogPluginError(failure.number(), failure.description(), "ActionUI");
        base::Attempt last;
        last([&] { in_.host.WriteLog("Error", "Media Player ActionUI partial action string: " + text); });
      });
  return text;
}

std::string ActionDialog::dialogText(const ActionString& a) {
  // The word is looked at in any case: a string without one is no action at all.
  const std::string& word = a[ActionString::kWord];
  const bool wantLists = in_.state.RefreshActions || (word != kNoAction && !word.empty());
  const bool showLists = in_.state.Initialized && wantLists;
  const char kind = showLists ? '1' : '2';

  web::StringAccumulator text;
  web::ConcatInit(text);
  const auto add = [&](std::string piece) { web::ConcatAdd(text, std::move(piece)); };
  add(std::string(kTitleRow) + "\r");
  add(RowStart('1', "Action") + kNoAction + (showLists ? kActionWords : kPrompts) + "\r");
  if (!showLists) in_.dialog.ActionDialogState = OpenActionDialog::kNotInitialized;
  for (const GroupAction& action : kGroupActions) {
    const std::string label = std::string(action.category) + "s";
    step("Getting " + label);
    add(RowStart(kind, label));
    if (showLists) add(in_.dropLists.GetActionDropList(action.category));
    add("\r");
  }
  step("Getting Media List");
  add(RowStart(kind, "Titles"));
  if (showLists) {
    std::string titles;
    in_.dropLists.FileDropList(a, titles);
    add(std::move(titles));
  }
  add("\r");
  step("Finished Media List");
  add("\t\t2\t0\tURL or Title\r");
  add(std::string(kModeRow) + "\r");
  add("\t\t4\t0\tRefresh Titles\t\t");
  return web::ConcatResult(text);
}

namespace {

/// The sum in the kind that a control's position came in.
base::Value Plus(const base::Value& value, std::int32_t addend) {
  if (value.is<double>()) return base::ToDouble(value) + addend;
  if (value.is<float>()) return base::ToSingle(value) + static_cast<float>(addend);
  return base::ToInt32(value) + addend;
}

}  // namespace

void ActionDialog::ModifyActionUI(const base::Value& controls) {
  constexpr std::int16_t kWide = 7000;  // twips
  constexpr std::int32_t kTitlesControl = 12;
  constexpr std::int32_t kModeControl = 16;
  constexpr std::int32_t kButton = 17;
  base::Handled(
      [&] {
        in_.dialog.ActionDialogControls = base::ToObject(controls);
        base::Object& all = base::Deref(in_.dialog.ActionDialogControls);
        const std::int32_t count = base::ToInt32(all.get("Count"));
        in_.loggers.Debug("Media Player: Start ModifyActionUI with controls: " + std::to_string(count));
        const auto control = [&](std::int32_t number) { return base::ToObject(all.invoke("item", number)); };
        for (std::int32_t i = 1; i <= count; ++i) {
          // The list of modes keeps its own width, and so does the button.
          if (i != kModeControl && i != kButton) base::Deref(control(i)).put("Width", kWide);
        }
        const base::ObjectRef button = control(kButton);
        const base::ObjectRef titles = control(kTitlesControl);
        base::Deref(button).put("Top", Plus(base::Deref(titles).get("Top"), -50));
        const double right = base::ToDouble(titles->get("Left")) + base::ToDouble(titles->get("Width"));
        button->put("Left", static_cast<float>(right + 100));
      },
      [&](const base::Failure& failure) {
        in_.loggers.LogPluginError(failure.number(), failure.description(), "ModifyActionUI");
      });
}

}  // namespace automation
