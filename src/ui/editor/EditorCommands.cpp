#include "base/Text.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// The buttons below the panes, and the file dialog.
namespace ui::editor {

using base::Attempt;

namespace {

constexpr const char* kAudioFiles =
    "Audio Files|*.wav;*.snd;*.au;*.aif;*.aifc;*.aiff;*.wma;*.mid;*.rmi;*.midi;*.wax;*.cda;*.mp3;*.m3u|"
    "All Files (*.*)|*.*";

std::string WithoutTrailingBlanks(const std::string& text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool FromFile(const player::Playlist& library, std::int32_t index, const std::string& folded,
              std::string& title) {
  const player::MediaRef media = library.item(index);
  if (base::LowerCase(Present(media).sourceURL()) != folded) return false;
  title = media->name();
  return true;
}

}  // namespace

void PlayListEditor::New_PlayList_Click() {
  if (reads()) return;
  std::string name;
  const auto make = [&] {
    if (now_.Dragging) {
      plain("Sorry, can't add a new PlayList while dragging");
      return;
    }
    name = in_.window.inputBox("Enter the new PlayList name:", "New PlayList", "");
    if (base::TrimBlanks(name).empty()) return;
    // With the blanks that were typed. Its status is not looked at, so that a name which the player refuses
    // gets as far as its tree node does.
    {
      const Reading reading(*this);
      player::PlaylistRef list;
      in_.catalogue.CreatePlayList(name, list);
      std::string key;
      in_.xref.AddNameXref(catalogue::kPlayListCategory, name, key);
    }
    addNode("PlayList", "PlayList" + name, name, image::kList);
    models_.PlayListDropBox.add(WithoutTrailingBlanks(name));
    models_.TreeView1.selectedItem(now_.CurrentNode);
  };
  base::Handled(make, [&](const base::Failure& failure) {
    command("New_PlayList_Click", "Error: PlayList \"" + name + "\" already exists", [&] { throw failure; });
  });
}

void PlayListEditor::Rename_Button_Click() {
  if (reads()) return;
  Attempt step;
  step([&] { in_.window.startLabelEdit(); });
}

void PlayListEditor::MoveUp_Button_Click() {
  reported("MoveUp_Button_Click", [&] {
    if (now_.LastFocus != layout::Of(Control::kListView1).name) return;
    const KeyedList& list = models_.ListView1;
    const std::size_t index = list.indexOf(Present(currentItem()));
    if (index > 1) MoveNode(now_.CurrentListItem, list.item(index - 1), 0, Control::kListView1);
  });
}

void PlayListEditor::MoveDown_Button_Click() {
  reported("MoveDown_Button_Click", [&] {
    if (now_.LastFocus != layout::Of(Control::kListView1).name) return;
    const KeyedList& list = models_.ListView1;
    const std::size_t index = list.indexOf(Present(currentItem()));
    if (index >= list.count()) return;
    const ItemRef target = index + 1 < list.count() ? list.item(index + 2) : nullptr;
    MoveNode(now_.CurrentListItem, target, 0, Control::kListView1);
  });
}

void PlayListEditor::Delete_Button_Click() {
  command("Delete_Button_Click", "", [&] {
    if (now_.Dragging || !now_.Delete_Button) return;
    if (now_.LastFocus == layout::Of(Control::kTreeView1).name)
      deletePlayList();
    else if (now_.LastFocus == layout::Of(Control::kListView1).name)
      deleteListItem();
    else
      plain("Failed: " + now_.LastFocus);
  });
}

void PlayListEditor::deletePlayList() {
  in_.window.focus(Control::kTreeView1);
  const NodeRef node = now_.CurrentNode;
  if (Present(node).fullPath().rfind("PlayList", 0) != 0) return;
  const NodeRef lists = node->parent();
  if (!lists || lists->key() != "PlayList") return;
  const std::string name = node->text();
  if (in_.window.message(MessageKind::kConfirmation, "Are you sure you want to delete the entire playlist: " +
                                                         name + "?") != MessageAnswer::kYes)
    return;
  // One that the player does not know leaves the window all the same.
  if (readPlayList(name, now_.TreePlayList) == catalogue::kDone) {
    in_.stale.PlayListsStale = true;
    const player::PlaylistRef list = now_.TreePlayList;
    in_.form.wmp9().playlistCollection().remove(list);
    now_.TreePlayList.reset();
    // Its handle keeps its name, and would be taken for a new playlist of that name.
    if (now_.ListPlayList == list) now_.ListPlayList.reset();
  }
  // The list is not filled anew, also where the box has shown this playlist.
  DropBox& box = models_.PlayListDropBox;
  for (std::size_t i = box.count(); i > 0; --i)
    if (box.entry(i - 1) == name) box.remove(i - 1);
  {
    const Reading reading(*this);
    in_.xref.RemoveNameXref(catalogue::kPlayListCategory, name);
  }
  KeyedTree& tree = models_.TreeView1;
  tree.selectedItem(lists);
  tree.remove(node);
  now_.CurrentNode = tree.selectedItem();
  TreeView1_NodeClick(now_.CurrentNode);
}

void PlayListEditor::deleteListItem() {
  in_.window.focus(Control::kListView1);
  const ItemRef item = currentItem();
  const std::string title = Present(item).text();
  if (in_.window.message(MessageKind::kConfirmation, "Are you sure you want to delete " + title +
                                                         " from the playlist?") != MessageAnswer::kYes)
    return;
  const std::string box = models_.PlayListDropBox.text();
  readPlayList(box, now_.ListPlayList);
  player::PlaylistRef list = now_.ListPlayList;
  player::MediaRef media;
  std::string wanted = title;
  {
    const Reading reading(*this);
    in_.catalogue.GetMediaItem(wanted, list, media);
  }
  now_.ListPlayList = list;
  for (std::int32_t i = 0; !media && i < Present(list).count(); ++i)
    if (const player::MediaRef each = list->item(i); Present(each).sourceURL() == item->tag) media = each;
  if (!media) {
    plain("Couldn't find: " + title + " in playlist: " + box);
    return;
  }
  // The list may be another behind the question: then nothing is taken from what it shows now.
  if (!item->held()) {
    disableButtons();
    if (models_.ListView1.count() == 0) plain("index not > 1 in delete_button click");
    return;
  }
  stillThere(list).removeItem(media);
  takeFromList(item);
}

void PlayListEditor::takeFromList(const ItemRef& item) {
  KeyedList& list = models_.ListView1;
  const std::size_t index = list.indexOf(*item);
  if (index == 1 && list.count() == 1) {
    // The next selection falls back to the tree.
    list.remove(1);
    KeyedTree& tree = models_.TreeView1;
    TreeView1_NodeClick(tree.selectedItem());
    in_.window.ensureVisible(Present(tree.selectedItem()).self());
    now_.CurrentNode = tree.selectedItem();
    now_.CurrentListItem.reset();
    return;
  }
  list.selectedItem(list.item(index > 1 ? index - 1 : 2));
  list.remove(index);
  now_.CurrentListItem = list.selectedItem();
  ListView1_ItemClick(now_.CurrentListItem);
}

void PlayListEditor::Browse_Click() {
  reported("Browse_Click", [&] {
    Attempt step;
    std::string file;
    step([&] { file = in_.window.openFile({true, FileDialog::kFlags, kAudioFiles, 1}); });
    if (step.failed() || file.empty()) return;
    KeyedTree& tree = models_.TreeView1;
    const NodeRef address = tree.find("URLURL");
    tree.text(address, file);
    address->tag = file;
    if (!now_.LibraryPlayList) {
      Please_Wait(true);
      player::PlaylistRef library;
      {
        const Reading reading(*this);
        in_.catalogue.GetGroupItems(catalogue::kMediaLibraryCategory, "", library);
      }
      now_.LibraryPlayList = library;
      Please_Wait(false);
    }
    const player::PlaylistRef library = now_.LibraryPlayList;
    const std::string folded = base::LowerCase(file);
    const std::int32_t count = Present(library).count();
    std::string title;
    for (std::int32_t i = 0; i < count; ++i)
      if (FromFile(*library, i, folded, title)) {
        tree.text(address, title);
        break;
      }
    tree.selectedItem(address);
  });
}

}  // namespace ui::editor
