#include "automation/ActionDropLists.hpp"

#include <memory>

#include "base/Attempt.hpp"
#include "web/Concatenate.hpp"
#include "web/UtilityModule.hpp"

// The half of ActionDropLists that makes texts; the open dialog is refilled in ActionDropListsModify.cpp.
namespace automation {

namespace {

constexpr const char* kModule = "CommonModule";

/// What a dialog text can hold of a name: nothing that separates its fields and rows, and no markup.
void FilterForDialog(std::string& name) {
  web::FilterString(name, "VX+", " ");
  web::FilterString(name, "HTML", " ");
}

}  // namespace

std::string ActionDropLists::GetActionDropList(const std::string& CategoryType) {
  return base::Handled(
      [&] {
        loggers_.Debug("Media Player: Loading " + CategoryType + " action drop list");
        std::string result = sortedNames(CategoryType);
        loggers_.Debug("Media Player: Finished loading " + CategoryType + " action drop list");
        return result;
      },
      [&](const base::Failure& failure) {
        loggers_.LogModuleError(failure.number(), failure.description(), kModule, "GetActionDropList");
        return "\tUnable to access " + CategoryType;
      });
}

std::string ActionDropLists::sortedNames(const std::string& category) {
  base::TextListRef names;
  const std::int32_t status = catalogue_.GetGroupList(category, names, "");
  catalogue::ProgressShown shown(progress_, "GetActionDropList");
  if (status != catalogue::kDone) {
    loggers_.LogModuleError(status, "Unable to retrieve: " + category, kModule, "GetActionDropList");
    return {};
  }
  if (names->empty()) return "\tNo " + category + "s found";

  // Two walks, each a half of the progress.
  const auto count = static_cast<std::int64_t>(names->size());
  auto sorted = std::make_shared<base::TextList>();
  sorted->reserve(names->size());
  for (std::string name : *names) {
    FilterForDialog(name);
    sorted->add(std::move(name));
    shown.update(static_cast<std::int64_t>(sorted->size()), 2 * count);
  }
  web::SortCollection(sorted);
  loggers_.Debug("Media Player: Loading " + category + " sorted list");
  web::StringAccumulator text;
  web::ConcatInit(text);
  std::int64_t done = count;
  for (const std::string& name : *sorted) {
    web::ConcatAdd(text, "\t");
    web::ConcatAdd(text, name);
    shown.update(++done, 2 * count);
  }
  return web::ConcatResult(text);
}

void ActionDropLists::FileDropList(const ActionString& a, std::string& text) {
  const catalogue::ProgressShown shown(progress_, "FileDropList");
  dialog_.ActionDialogState.clear();
  text.clear();
  base::Handled([&] { titles(a, text); },
                [&](const base::Failure& failure) {
                  loggers_.LogModuleError(failure.number(), failure.description(), kModule, "FileDropList");
                });
}

void ActionDropLists::titles(const ActionString& a, std::string& text) {
  const std::string& word = a[ActionString::kWord];
  const GroupAction* const action = FindGroupAction(word);
  if (action == nullptr) {
    if (word == "Play: URL") text = std::string("\t") + kUrlPrompt;
    if (word == "Play: Media Library") text = std::string("\t") + kTitlePrompt;
    return;
  }
  const std::string& name = a[action->field];
  player::PlaylistRef group;
  const std::int32_t status = catalogue_.GetGroupItems(action->category, name, group);
  dialog_.ActionDialogState = word + name;
  if (status != catalogue::kDone) {
    dialog_.ActionDialogState.clear();
    text = "\t" + std::to_string(status) + ": Unable to find any titles";
    return;
  }
  web::StringAccumulator lines;
  web::ConcatInit(lines);
  web::ConcatAdd(lines, std::string("\t") + kEntireListLine);
  loggers_.Debug("Media Player Starting Add to dropdown");
  if (!group) throw base::Failure(base::number::kObjectMissing);
  const std::int32_t count = group->count();
  for (std::int32_t i = 0; i < count; ++i) {
    const player::MediaRef item = group->item(i);
    if (!item) throw base::Failure(base::number::kObjectMissing);
    std::string title = item->name();
    FilterForDialog(title);
    web::ConcatAdd(lines, "\t");
    web::ConcatAdd(lines, std::move(title));
    progress_.Update_ProgBar(static_cast<float>(i + 1) / static_cast<float>(group->count()));
  }
  loggers_.Debug("Media Player Finished Add to dropdown");
  text = web::ConcatResult(lines);
}

}  // namespace automation
