#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// The two operations through which a playlist's content changes, but for the removal of an item.
//
// What comes from the tree is put where it was dropped in the list, and at the end of the stored playlist:
// the list shows the stored order at its next fill.
namespace ui::editor {

using base::Attempt;

/// One addition on its way.
struct PlayListEditor::Addition {
  explicit Addition(ItemRef target) : item(std::move(target)) {}

  std::string DestList;
  std::string SrcList;
  ItemRef item;              ///< the target, and then the new item
  player::MediaRef media;    ///< none until it is found
  player::PlaylistRef from;  ///< what `TreePlayList` was when the media was found
};

namespace {

/// A move has the new item and the old one side by side for a while, with the same title.
constexpr const char* kTemporary = "TEMPKEY";
constexpr std::size_t kTemporaryLength = 7;

/// The first item that comes from there, or none.
player::MediaRef ItemFrom(const player::Playlist& playlist, const std::string& source) {
  for (std::int32_t i = 0; i < playlist.count(); ++i) {
    player::MediaRef media = playlist.item(i);
    if (Present(media).sourceURL() == source) return media;
  }
  return nullptr;
}

bool OfPlayList(const Entry& item) { return item.key().rfind("PlayList", 0) == 0; }

NodeRef AsNode(const EntryRef& item) { return std::dynamic_pointer_cast<TreeNode>(item); }

/// Throws 438 for what has no parent by its nature.
std::string TextOfParent(const EntryRef& item) {
  const NodeRef node = AsNode(item);
  if (!node) throw base::Failure(base::number::kNoSuchMember);
  return Present(node->parent()).text();
}

}  // namespace

void PlayListEditor::MoveNode(const EntryRef& item, const ItemRef& target, std::int16_t copy,
                              Control source) {
  // Both may be the state's own, which changes on the way.
  const EntryRef moved = item;
  const ItemRef before = target;
  reported("MoveNode", [&] {
    static_cast<void>(Present(moved));
    if (copy == 0 && source == Control::kListView1) reorder(moved, before);
    Addition added(before);
    // The reorder is not taken back.
    if (!add(moved, source, copy, added)) return;
    if (copy == 0) takeAway(moved, source, added);
    KeyedList& list = models_.ListView1;
    list.key(added.item, added.item->key().substr(kTemporaryLength));
    now_.CurrentListItem = added.item;
    list.selectedItem(added.item);
    ListView1_ItemClick(added.item);
    in_.window.focus(Control::kListView1);
  });
}

// The list's positions stand for the playlist's as they are.
void PlayListEditor::reorder(const EntryRef& item, const ItemRef& target) {
  const KeyedList& list = models_.ListView1;
  const auto listed = std::dynamic_pointer_cast<ListItem>(item);
  const auto from = static_cast<std::int32_t>(list.indexOf(Present(listed)));
  player::Playlist& playlist = stillThere(now_.ListPlayList);
  if (!target) return playlist.moveItem(from - 1, playlist.count() - 1);
  const auto to = static_cast<std::int32_t>(list.indexOf(*target));
  playlist.moveItem(from - 1, from > to ? to - 1 : to - 2);
}

void PlayListEditor::takeAway(const EntryRef& item, Control source, const Addition& added) {
  if (source == Control::kTreeView1) {
    // Its playlist may have been read anew since it was cut.
    if (item->held()) models_.TreeView1.remove(AsNode(item));
    stillThere(added.from).removeItem(added.media);
    return;
  }
  KeyedList& list = models_.ListView1;
  list.remove(list.indexOf(Present(std::dynamic_pointer_cast<ListItem>(item))));
  now_.CurrentListItem = added.item;
  ListView1_ItemClick(now_.CurrentListItem);
}

player::MediaRef PlayListEditor::Add_Media_Item(const EntryRef& item, ItemRef& target, Control source,
                                                std::int16_t copy) {
  Addition added(target);
  reported("Add_Media_Item", [&] {
    static_cast<void>(Present(item));
    add(item, source, copy, added);
  });
  target = added.item;
  return added.media;
}

bool PlayListEditor::add(const EntryRef& item, Control source, std::int16_t copy, Addition& added) {
  KeyedList& list = models_.ListView1;
  const bool fromList = source == Control::kListView1;
  added.DestList = models_.PlayListDropBox.text();
  Attempt step;
  if (fromList)
    added.SrcList = added.DestList;
  else
    step([&] { added.SrcList = TextOfParent(item); });
  const std::string key = "PlayList" + added.DestList + item->text();
  Attempt look;
  look([&] { static_cast<void>(list.find(key)); });
  // What the keys held now say counts here, and not whether this is a copy.
  const bool withinList = now_.CopyMode == 0 && fromList;
  if (look.number() != base::number::kElementNotFound && !withinList) {
    plain("Error: Cannot add duplicates within a PlayList");
    return false;
  }
  return base::Handled(
      [&] {
        const std::size_t place = added.item ? list.indexOf(*added.item) : list.count() + 1;
        added.item = list.add(place, kTemporary + key, item->text(), image::kSound);
        added.item->tag = item->tag;
        if (fromList || OfPlayList(*item))
          findMember(item, added);
        else
          findInLibrary(item, added);
        if (added.media) store(added, copy);
        return added.media != nullptr;
      },
      // The new item stays, under its temporary key.
      [&](const base::Failure& failure) {
        ReportEditorError(failure.number(), failure.description(), "Add_Media_Item");
        added.media.reset();
        return false;
      });
}

void PlayListEditor::refuse(Addition& added, const std::string& text) {
  models_.ListView1.remove(models_.ListView1.indexOf(*added.item));
  plain(text);
}

void PlayListEditor::findMember(const EntryRef& item, Addition& added) {
  readPlayList(added.SrcList, now_.TreePlayList);
  std::string title = item->text();
  // Without a playlist the library is searched, and what it finds is what the tree has read last.
  added.from = now_.TreePlayList;
  {
    const Reading reading(*this);
    in_.catalogue.GetMediaItem(title, added.from, added.media);
  }
  now_.TreePlayList = added.from;
  if (!added.media) added.media = ItemFrom(Present(added.from), item->tag);
  // The words name the destination, though it is the source that was searched.
  if (!added.media) refuse(added, "Error: " + item->text() + " is not on the playlist: " + added.DestList);
}

void PlayListEditor::findInLibrary(const EntryRef& item, Addition& added) {
  std::string title = item->text();
  player::PlaylistRef found;
  {
    const Reading reading(*this);
    in_.catalogue.GetMediaItem(title, found, added.media);
  }
  if (!added.media && item->key() == "URLURL")
    addAddress(item, added);
  else if (!added.media)
    refuse(added, "Error, could not find media: " + item->tag);
  added.from = now_.TreePlayList;
}

void PlayListEditor::addAddress(const EntryRef& item, Addition& added) {
  Attempt step;
  player::MediaRef media;
  step([&] { media = in_.form.wmp9().mediaCollection().add(item->tag); });
  if (step.failed()) return refuse(added, "Error: Could not add " + item->tag + ".  Invalid media item.");
  step([&] { Present(media).rename(item->text()); });
  const std::string name = Present(media).name();
  if (const NodeRef node = AsNode(item)) models_.TreeView1.text(node, name);
  models_.ListView1.text(added.item, name);
  std::string key;
  const Reading reading(*this);
  in_.xref.AddNameXref(catalogue::kMediaLibraryCategory, name, key);
  added.media = media;
}

void PlayListEditor::store(const Addition& added, std::int16_t copy) {
  if (added.SrcList != added.DestList) {
    if (readPlayList(added.DestList, now_.ListPlayList) != catalogue::kDone) return;
    stillThere(now_.ListPlayList).appendItem(added.media);
  } else if (copy == 1) {
    // The library's titles too come here where their group bears the playlist's name, and go to whatever the
    // tree has read last.
    now_.ListPlayList = added.from;
    stillThere(added.from).appendItem(added.media);
  }
  // A move within the list has been stored already.
}

}  // namespace ui::editor
