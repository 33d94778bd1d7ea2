#include <string_view>

#include "automation/ActionDialog.hpp"
#include "base/Attempt.hpp"
#include "web/UtilityModule.hpp"

// The half of ActionDialog that reads what the dialog gave.
namespace automation {

namespace {

/// The actions that take nothing but their word.
bool IsControlWord(const std::string& word) {
  for (const char* known : {"Stop", "Pause", "Resume", "Next", "Previous", "Restart", "Mute", "UnMute"})
    if (word == known) return true;
  return false;
}

/// The main part of an action's line, for a typed title or address.
bool PlaysTypedText(const std::string& word) { return word == "Play: URL" || word == "Play: Media Library"; }

const char* ModeText(const std::string& mode) {
  if (mode == "Loop Only") return " Shuf:N Rpt:Y";
  if (mode == "Shuffle Only") return " Shuf:Y Rpt:N";
  if (mode == "Shuffle and Loop") return " Shuf:Y Rpt:Y";
  if (mode == "No Shuffle and No Loop") return " Shuf:N Rpt:N";
  return "";
}

std::string MainText(const ActionString& a) {
  const std::string& word = a[ActionString::kWord];
  if (word == kNoAction || word == "Change Mode only") return {};
  if (IsControlWord(word)) return word;
  if (const GroupAction* const action = FindGroupAction(word); action != nullptr)
    return word + ": " + a[action->field] + "/" + a[ActionString::kTitle];
  if (PlaysTypedText(word)) return word + ": " + a[ActionString::kTypedText];
  return "Unknown Action:" + word;
}

/// What is asked of a group action's fields, with the words for whoever has filled in too many or too few.
struct GroupRule {
  const char* word;
  std::size_t empty[3];
  const char* tooMany;
  const char* tooFew;
};
constexpr GroupRule kGroupRules[] = {
    {"Play: PlayList",
     {3, 4, 5},
     "Albums, Artists, and Genres must be blank when playing a playlist!",
     "Please select a playlist to play!"},
    {"Play: Artist",
     {3, 2, 5},
     "Albums, PlayLists, and Genres must be blank when playing an artist!",
     "Please select an Artist to play!"},
    {"Play: Album",
     {2, 4, 5},
     "PlayLists, Artists, and Genres must be blank when playing an album!",
     "Please select an Album to play!"},
    {"Play: Genre",
     {3, 4, 2},
     "Albums, Artists, and PlayLists must be blank when playing a genre!",
     "Please select a Genre to play!"},
};

/// Whether one of the fields from `first` to `last` holds something. Throws number 9 unless all are there.
bool AnyFilled(const ActionString& a, std::size_t first, std::size_t last) {
  bool filled = false;
  for (std::size_t i = first; i <= last; ++i) filled = !a[i].empty() || filled;
  return filled;
}

std::string JudgeGroup(const ActionString& a, const GroupRule& rule, std::string& key) {
  const std::string& name = a[FindGroupAction(rule.word)->field];
  key = rule.word + name;
  bool others = false;
  for (const std::size_t field : rule.empty) others = !a[field].empty() || others;
  if (others) return rule.tooMany;
  return name.empty() ? rule.tooFew : "";
}

std::string JudgeTypedText(const ActionString& a) {
  constexpr std::string_view kPromptStart = "Please enter ";
  const std::string& title = a[ActionString::kTitle];
  const std::string& typed = a[ActionString::kTypedText];
  const bool ownTitle = !title.empty() && title.substr(0, kPromptStart.size()) != kPromptStart;
  if (AnyFilled(a, 2, 5) || ownTitle)
    return "Albums, Artists, Genres, PlayLists, and Titles must be blank when playing a URL or Media Library "
           "file!";
  if (typed.find('\r') != std::string::npos) return "Error: Multiple lines found in Title or URL";
  return {};
}

std::string JudgeControl(const ActionString& a) {
  if (AnyFilled(a, 2, ActionString::kTypedText))
    return "Albums, Artists, Genres, PlayLists, and Titles must be blank when specifying control actions!";
  const std::string& mode = a[ActionString::kMode];
  if (a[ActionString::kWord] == kNoAction && mode != kNoAction)
    return "Action must be 'Change Mode only' to change only the Mode!";
  return {};
}

}  // namespace

std::string ActionDialog::ActionUIFormat(const std::string& ActionString) {
  if (ActionString.empty()) return {};
  automation::ActionString a(ActionString);
  const bool read = base::Handled(
      [&] {
        if (a.wellFormed()) return true;
        in_.host.WriteLog("Error", "Media Player: Wrong number of arguments passed to ActionUIFormat: " +
                                       std::to_string(a.highestIndex()));
        in_.host.WriteLog("Error", "Media Player: ActionUIFormat: " + ActionString);
        return true;
      },
      [&](const base::Failure& failure) {
        in_.loggers.LogPluginError(failure.number(), failure.description(), "ActionUIFormat");
        return false;
      });
  if (!read) return {};
  using Fields = automation::ActionString;
  std::string text;
  base::Attempt step;
  step([&] {
    if (a[Fields::kTypedText].empty()) a[Fields::kTypedText] = kEntireListLine;
  });
  // A typed title stands in for one that was not selected.
  step([&] {
    if (a[Fields::kTitle].empty()) a[Fields::kTitle] = a[Fields::kTypedText];
  });
  step([&] { text = MainText(a); });
  step([&] { text += ModeText(a[Fields::kMode]); });
  step([&] { web::FilterString(text, "HTML", " "); });
  return text;
}

std::string ActionDialog::ValidateActionUI(const std::string& ActionStr) {
  if (ActionStr.empty()) return {};
  return base::Handled(
      [&]() -> std::string {
        const ActionString a(ActionStr);
        const std::string& word = a[ActionString::kWord];
        std::string message;
        std::string key;
        const GroupRule* rule = nullptr;
        for (const GroupRule& one : kGroupRules)
          if (word == one.word) rule = &one;
        if (rule != nullptr) {
          message = JudgeGroup(a, *rule, key);
        } else if (PlaysTypedText(word)) {
          message = JudgeTypedText(a);
          // Registered whatever the outcome, and an address too: what was typed is found again by its key.
          std::string mediaKey;
          in_.xref.AddNameXref(catalogue::kMediaLibraryCategory, a[ActionString::kTypedText], mediaKey);
        } else {
          message = JudgeControl(a);
        }
        // The group was changed after its titles were listed, so that the selected title may be none of it.
        const std::string& shown = in_.dialog.ActionDialogState;
        if (!key.empty() && message.empty() && key != shown && shown != OpenActionDialog::kNotInitialized)
          return "Refresh then verify Titles";
        return message;
      },
      [&](const base::Failure& failure) {
        // An action that can't be read passes as valid; carrying it out then does as much as it holds.
        in_.loggers.LogPluginError(failure.number(), failure.description(), "ValidateActionUI");
        return std::string();
      });
}

}  // namespace automation
