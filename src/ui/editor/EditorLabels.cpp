#include <utility>

#include "base/Text.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// The tree's labels as the user edits them: the address entry and the names of playlists.
namespace ui::editor {

namespace {

constexpr const char* kNoAddress = "Enter URL Here";

}  // namespace

void PlayListEditor::TreeView1_BeforeLabelEdit(std::int16_t& Cancel) {
  const NodeRef node = now_.CurrentNode;
  const NodeRef parent = node ? node->parent() : nullptr;
  now_.EditedNode = node;
  if (reads() || !parent || (node->key() != "URLURL" && parent->key() != "PlayList")) Cancel = 1;
}

void PlayListEditor::TreeView1_AfterLabelEdit(std::int16_t& Cancel, std::string& NewString) {
  const NodeRef edited = std::exchange(now_.EditedNode, nullptr);
  // What follows acts on the current node: a late end of an edit would rename another playlist.
  if (reads() || (edited && edited != now_.CurrentNode)) {
    Cancel = 1;
    return;
  }
  NewString = base::TrimBlanks(NewString);
  // Where a name is refused the label keeps what was typed, above the old key, until the window is opened
  // anew: only what is told before the player is asked takes it back.
  command("AfterLabelEdit", "Error: PlayList \"" + NewString + "\" already exists", [&] {
    const NodeRef selected = models_.TreeView1.selectedItem();
    if (Present(selected).key() == "URLURL") {
      if (NewString.empty()) NewString = kNoAddress;
      if (NewString != kNoAddress) selected->tag = NewString;
      return;
    }
    renamePlayList(Cancel, NewString);
  });
}

void PlayListEditor::renamePlayList(std::int16_t& Cancel, const std::string& wanted) {
  const NodeRef node = now_.CurrentNode;
  const NodeRef parent = Present(node).parent();
  if (!parent || parent->key() != "PlayList") return;
  const std::string old = node->text();
  const std::int32_t status = readPlayList(old, now_.TreePlayList);
  if (wanted.empty() || status != catalogue::kDone) {
    Cancel = 1;
    plain("Error: PlayList \"" + old + "\" does not exist");
    return;
  }
  stillThere(now_.TreePlayList).name(wanted);
  {
    const Reading reading(*this);
    in_.xref.RemoveNameXref(catalogue::kPlayListCategory, old);
    std::string key;
    in_.xref.AddNameXref(catalogue::kPlayListCategory, wanted, key);
  }
  showRenamed(node, old, wanted);
}

void PlayListEditor::showRenamed(const NodeRef& node, const std::string& old, const std::string& name) {
  DropBox& box = models_.PlayListDropBox;
  for (std::size_t i = 0; i < box.count(); ++i)
    if (box.entry(i) == old) {
      box.remove(i);
      break;
    }
  box.add(name);
  box.listIndex(box.newIndex());  // which fills the list, and it is filled once more
  PlayListDropBox_Click();
  KeyedTree& tree = models_.TreeView1;
  tree.key(node, "PlayList" + name);
  for (const NodeRef& child : KeyedTree::children(node)) tree.key(child, node->key() + child->text());
}

}  // namespace ui::editor
