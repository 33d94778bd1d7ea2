#include "base/Text.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// The list of the playlist that is chosen in the drop box.
namespace ui::editor {

using base::Attempt;

namespace {

constexpr float kColumnMargin = 300;  // twips, less than the pane
constexpr float kTwipsPerCharacter = 120;

}  // namespace

ItemRef PlayListEditor::currentItem() const {
  const ItemRef& item = now_.CurrentListItem;
  return item && item->held() ? item : nullptr;
}

void PlayListEditor::PlayListDropBox_Click() {
  reported("PlayListDropBox_Click", [&] { fillList(); });
}

void PlayListEditor::fillList() {
  KeyedList& list = models_.ListView1;
  const std::string box = models_.PlayListDropBox.text();
  list.clearColumns();
  list.addColumn(box, layout::Of(Control::kListView1).width - kColumnMargin);
  list.HideColumnHeaders = true;
  list.clear();
  if (readPlayList(box, now_.ListPlayList) != catalogue::kDone) return disableButtons();
  // The window may have gone while it was read.
  if (models_.PlayListDropBox.text() != box) return now_.ListPlayList.reset();
  {
    const player::PlaylistRef held = now_.ListPlayList;  // a warning lets other events in
    const KeyedList::Filling filling(list);
    const std::int32_t count = Present(held).count();
    for (std::int32_t i = 0; i < count; ++i) addTitle(*held, i, box);
  }
  now_.CurrentListItem.reset();
  list.selectedItem(nullptr);
  ListView1_ItemClick(nullptr);
}

void PlayListEditor::addTitle(const player::Playlist& playlist, std::int32_t index, const std::string& box) {
  KeyedList& list = models_.ListView1;
  const player::MediaRef media = playlist.item(index);
  const std::string title = Present(media).name();
  Attempt step;
  step([&] {
    const ItemRef item = list.add(list.count() + 1, "PlayList" + box + title, title, image::kSound);
    item->tag = media->sourceURL();
    const float wide = static_cast<float>(base::CountCharacters(title)) * kTwipsPerCharacter;
    if (list.columnWidth() < wide) list.columnWidth(wide);
  });
  if (!step.failed()) return;
  if (step.number() != base::number::kKeyNotUnique) throw base::Failure(step.number(), step.text());
  // From here on the positions in the list are lower than those in the playlist, and whoever reorders moves
  // the wrong item. The reader is warned; nothing translates between the two.
  warn("Warning: \"" + title + "\" appears multiple times in PlayList \"" + playlist.name() +
       "\".  Multiple appearances do not appear, and are not supported in this editor.   Reordering items "
       "within that PlayList will leave items in an unpredictable sequence.");
}

void PlayListEditor::ListView1_ItemClick(const ItemRef& item) {
  reported("ListView1_ItemClick", [&] {
    // It is the state that is asked, and not the argument.
    if (!now_.CurrentListItem) return disableButtons();
    now_.CurrentListItem = item;
    if (item && !item->held()) return disableButtons();
    enable(Control::kDelete_Button, now_.Delete_Button, true);
    enable(Control::kRename_Button, now_.Rename_Button, false);
    const std::size_t index = models_.ListView1.indexOf(Present(item));
    enable(Control::kMoveUp_Button, now_.MoveUp_Button, index != 1);
    enable(Control::kMoveDown_Button, now_.MoveDown_Button, index < models_.ListView1.count());
  });
}

// Nothing is sorted. With its headers hidden the column is not reached by the mouse.
void PlayListEditor::ListView1_ColumnClick() {
  reported("ListView1_ColumnClick", [&] {
    static_cast<void>(Present(now_.CurrentListItem));
    now_.CurrentListItem.reset();
    models_.ListView1.selectedItem(nullptr);
    disableButtons();
  });
}

void PlayListEditor::ListView1_MouseDown(std::int16_t /*button*/, std::int16_t shift, float x, float y) {
  reported("ListView1 MouseDown", [&] {
    const ItemRef hit = in_.window.itemAt(x, y);
    if (!hit) return;
    now_.CurrentListItem = hit;
    ListView1_ItemClick(hit);
    now_.CopyMode = CopyModeAtPress(shift);
  });
}

void PlayListEditor::ListView1_GotFocus() {
  reported("ListView1_GotFocus", [&] {
    now_.LastFocus = layout::Of(Control::kListView1).name;
    ListView1_ItemClick(now_.CurrentListItem);
  });
}

void PlayListEditor::ListView1_KeyDown(std::int16_t keyCode, std::int16_t shift) {
  const bool ctrl = (shift & kCtrlDown) != 0;
  reported("ListView1_KeyDown", [&] {
    switch (keyCode) {
      case kDeleteKey: return Delete_Button_Click();
      case kInsertKey: return New_PlayList_Click();
      case kCKey:
      case kXKey:
        if (ctrl) pickUp(keyCode, now_.CurrentListItem, Control::kListView1);
        return;
      case kVKey:
        if (ctrl && now_.ClipItem) pasteInList();
        return;
      case kCtrlKey: now_.CopyMode = 1; return;
      case kF1Key:  // a diagnostic that has stayed
        plain(std::to_string(models_.ListView1.indexOf(Present(currentItem()))));
        return;
      default: return;
    }
  });
}

// A second paste is a copy of what the first has put in place, also when that was cut.
void PlayListEditor::pasteInList() {
  MoveNode(now_.ClipItem, currentItem(), now_.ClipIsCopy, now_.ClipSource);
  now_.ClipItem = now_.CurrentListItem;
  now_.ClipIsCopy = 1;
}

void PlayListEditor::ListView1_KeyUp(std::int16_t keyCode, std::int16_t /*shift*/) {
  reported("Listview1 Keyup", [&] {
    if (keyCode == kCtrlKey) now_.CopyMode = 0;
  });
}

}  // namespace ui::editor
