#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// What clicks, keys and the focus do in the tree.
namespace ui::editor {

namespace {

bool Below(const NodeRef& node, const char* text) {
  const NodeRef parent = node->parent();
  return parent && parent->text() == text;
}

}  // namespace

// A press of the mouse runs this, and the tree's own click behind it runs it once more.
void PlayListEditor::TreeView1_NodeClick(const NodeRef& node) {
  if (!node) return;
  reported("TreeView1_NodeClick", [&] {
    // The current node may have been taken out of the tree, and the focus clicks on it all the same.
    if (!node->held()) return disableButtons();
    if (!node->expanded() && node->tag.empty()) {
      ExpandNode(node);
    } else if (!node->expanded() && Below(node, "PlayList")) {
      // A collapsed playlist is read anew at each click. So is what stands below a group of that very name,
      // and has no members to be read.
      node->tag = "Refresh";
      ExpandNode(node);
    }
    disableButtons();
    const NodeRef parent = node->parent();
    if (!parent) return;
    const NodeRef root = parent->parent();
    if (!root) return clickBelowRoot(node, parent->fullPath());
    const std::string path = root->fullPath();
    if (path == "Artist" || path == "Album" || path == "Genre" || path == "PlayList") SourceExists(node);
  });
}

void PlayListEditor::clickBelowRoot(const NodeRef& node, const std::string& root) {
  if (root == "PlayList") {
    enable(Control::kDelete_Button, now_.Delete_Button, true);
    enable(Control::kRename_Button, now_.Rename_Button, true);
  } else if (root == "URL" && node->key() == "URLBrowse") {
    Browse_Click();
    KeyedTree& tree = models_.TreeView1;
    tree.selectedItem(tree.find("URLURL"));
    in_.window.ensureVisible(tree.selectedItem());
  } else if (root == "URL" && node->key() == "URLURL") {
    in_.window.startLabelEdit();
  }
}

void PlayListEditor::TreeView1_Expand(const NodeRef& node) {
  const NodeRef parent = node ? node->parent() : nullptr;
  if (reads() || !parent || parent->key() != "PlayList") return;
  node->tag = "Refresh";
  ExpandNode(node);
  TreeView1_NodeClick(node);
}

void PlayListEditor::TreeView1_GotFocus() {
  reported("TreeView1_GotFocus", [&] {
    if (!now_.FormReady) return;
    now_.LastFocus = layout::Of(Control::kTreeView1).name;
    TreeView1_NodeClick(now_.CurrentNode);
  });
}

void PlayListEditor::TreeView1_MouseDown(std::int16_t /*button*/, std::int16_t shift, float x, float y) {
  reported("TreeView1 MouseDown", [&] {
    const NodeRef hit = in_.window.nodeAt(x, y);
    if (!hit) return;
    now_.CurrentNode = hit;
    TreeView1_NodeClick(hit);
    now_.CopyMode = CopyModeAtPress(shift);
  });
}

void PlayListEditor::TreeView1_KeyDown(std::int16_t keyCode, std::int16_t shift) {
  reported("TreeView1_KeyDown", [&] {
    switch (keyCode) {
      case kDeleteKey: return Delete_Button_Click();
      case kInsertKey: return New_PlayList_Click();
      case kEnterKey: return in_.window.startLabelEdit();
      case kCKey:
      case kXKey:
        if ((shift & kCtrlDown) != 0 && IsCopyable(now_.CurrentNode))
          pickUp(keyCode, now_.CurrentNode, Control::kTreeView1);
        return;
      case kCtrlKey: now_.CopyMode = 1; return;
      default: return;
    }
  });
}

void PlayListEditor::TreeView1_KeyUp(std::int16_t keyCode, std::int16_t /*shift*/) {
  reported("Treeview1 Keyup", [&] {
    if (keyCode == kCtrlKey) now_.CopyMode = 0;
  });
}

void PlayListEditor::pickUp(std::int16_t keyCode, const EntryRef& item, Control source) {
  now_.ClipItem = item;
  now_.ClipSource = source;
  now_.ClipIsCopy = keyCode == kCKey ? 1 : 0;
}

}  // namespace ui::editor
