#include <optional>
#include <utility>

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

/// A list that is filled anew. A call to the host costs what hundreds of lines cost, so they go out by the
/// thousand where the host's list takes them so (`AddItems`), and one by one where it doesn't.
class GrowingList {
 public:
  /// Clears the list, and puts in the two lines that begin it.
  explicit GrowingList(base::ObjectRef list) : list_(std::move(list)) {
    list_->call("Clear");
    lines_ = {base::Value(""), base::Value(kEntireListLine)};
    try {
      send();
    } catch (const base::Failure& failure) {
      if (failure.number() != base::number::kNoSuchMember) throw;
      oneByOne_ = true;
      for (const base::Value& line : std::exchange(lines_, {})) addOne(line);
    }
  }
  void add(std::string line) {
    if (oneByOne_) return addOne(std::move(line));
    lines_.emplace_back(std::move(line));
    if (lines_.size() >= kMostAtOnce) send();
  }
  void select(std::int32_t line) {
    finish();
    Select(list_, line);
  }
  /// Puts in what is left.
  void finish() {
    if (!lines_.empty()) send();
  }

 private:
  static constexpr std::size_t kMostAtOnce = 1000;

  void addOne(const base::Value& line) { list_->invoke("AddItem", line, next_++); }
  void send() {
    list_->invoke("AddItems", next_, lines_);
    next_ += static_cast<std::int32_t>(lines_.size());
    lines_.clear();
  }

  base::ObjectRef list_;
  base::Array lines_;  ///< that have not been sent
  std::int32_t next_ = 0;
  bool oneByOne_ = false;
};

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
  GrowingList lines(list);
  Select(list, previous == kEntireListLine ? 1 : 0);
  base::Handled(
      [&] {
        const std::int32_t count = group.count();
        for (std::int32_t i = 0; i < count; ++i) {
          const player::MediaRef item = group.item(i);
          if (!item) throw base::Failure(base::number::kObjectMissing);
          std::string title = item->name();
          // Markup stays in these: the controls take a name as text.
          web::FilterString(title, "VX+", " ");
          const bool chosen = base::SameText(title, previous);
          lines.add(std::move(title));
          // Of two titles of that spelling the later one stays selected.
          if (chosen) lines.select(i + kLinesBefore);
          shown.update(std::int64_t{i} + 1, count);
        }
        lines.finish();
      },
      [&](const base::Failure& failure) {
        lines.finish();  // the list keeps what it has been given so far
        throw failure;
      });
}

}  // namespace automation
