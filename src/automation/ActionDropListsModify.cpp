#include <optional>

#include "automation/ActionDropLists.hpp"
#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "web/UtilityModule.hpp"

// The half of ActionDropLists that works on the open dialog's controls.
namespace automation {

namespace {

constexpr std::int32_t kActionControl = 2;
constexpr std::int32_t kTitlesControl = 12;

base::ObjectRef Control(const base::ObjectRef& controls, std::int32_t number) {
  return base::ToObject(base::Deref(controls).invoke("item", number));
}

/// A control's default value is the text that it shows.
std::string SelectedText(const base::ObjectRef& control) {
  return base::ToText(base::Deref(control).get("Text"));
}

void Select(const base::ObjectRef& list, std::int32_t line) { base::Deref(list).put("ListIndex", line); }

/// Shows the empty line in the group lists, but for that of `chosen`, which may be null.
void EmptyOtherLists(const base::ObjectRef& controls, const GroupAction* chosen) {
  for (const GroupAction& other : kGroupActions)
    if (&other != chosen) Select(Control(controls, other.control), 0);
}

}  // namespace

std::int32_t ActionDropLists::FileDropListModify() {
  std::int32_t status = catalogue::kDone;
  std::optional<catalogue::ProgressShown> shown;
  base::Handled(
      [&] {
        const base::ObjectRef controls = dialog_.ActionDialogControls;
        const base::ObjectRef titlesList = Control(controls, kTitlesControl);
        const std::string previous = SelectedText(titlesList);
        dialog_.ActionDialogState.clear();
        shown.emplace(progress_, "FileDropListModify");
        const std::string word = SelectedText(Control(controls, kActionControl));
        if (word == "Play: URL" || word == "Play: Media Library") {
          EmptyOtherLists(controls, nullptr);
          titlesList->call("Clear");
          titlesList->invoke("AddItem", word == "Play: URL" ? kUrlPrompt : kTitlePrompt);
          Select(titlesList, 0);
          return;
        }
        const GroupAction* const action = FindGroupAction(word);
        if (action == nullptr) return;
        const std::string name = SelectedText(Control(controls, action->control));
        player::PlaylistRef group;
        status = catalogue_.GetGroupItems(action->category, name, group);
        EmptyOtherLists(controls, action);
        dialog_.ActionDialogState = word + name;
        if (status != catalogue::kDone) return;
        if (!group) throw base::Failure(base::number::kObjectMissing);
        refill(titlesList, *group, previous, *shown);
      },
      [&](const base::Failure& failure) {
        loggers_.LogModuleError(failure.number(), failure.description(), "CommonModule",
                                "FileDropListModify");
      });
  return status;
}

void ActionDropLists::refill(const base::ObjectRef& list, const player::Playlist& group,
                             const std::string& previous, catalogue::ProgressShown& shown) {
  constexpr std::int32_t kLinesBefore = 2;
  list->call("Clear");
  list->invoke("AddItem", "", std::int32_t{0});
  list->invoke("AddItem", kEntireListLine, std::int32_t{1});
  Select(list, previous == kEntireListLine ? 1 : 0);
  const std::int32_t count = group.count();
  for (std::int32_t i = 0; i < count; ++i) {
    const player::MediaRef item = group.item(i);
    if (!item) throw base::Failure(base::number::kObjectMissing);
    std::string title = item->name();
    // Markup stays in these: the controls take a name as text.
    web::FilterString(title, "VX+", " ");
    list->invoke("AddItem", title, i + kLinesBefore);
    // Of two titles of that spelling the later one stays selected.
    if (base::SameText(title, previous)) Select(list, i + kLinesBefore);
    shown.update(std::int64_t{i} + 1, count);
  }
}

}  // namespace automation
