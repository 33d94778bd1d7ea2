#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// What may be dragged, how a drag looks on its way, and where it ends. The tree is a source and never a
// target.
namespace ui::editor {

namespace {

constexpr float kScrollEdge = 375;  // twips

}  // namespace

bool PlayListEditor::IsCopyable(const NodeRef& node) {
  bool copyable = false;
  reported("IsCopyable", [&] {
    if (!node || KeyedTree::childCount(node) > 0) return;
    for (const char* key :
         {"URLBrowse", "PlayList", "Media Library", "Artist", "Genre", "Album", "All Audio"})
      if (node->key() == key) return;
    // An address entry into which nothing was typed can't go anywhere.
    const TreeNode& current = Present(now_.CurrentNode);
    if (current.text() == "Enter URL Here") return;
    copyable = Present(current.parent()).key() != "PlayList";  // a whole playlist can't be dragged
  });
  return copyable;
}

void PlayListEditor::TreeView1_MouseMove(std::int16_t button, std::int16_t /*shift*/, float x, float y) {
  reported("Treeview1 MouseMove", [&] {
    if (button != kLeftButton || !IsCopyable(now_.CurrentNode) || !in_.window.nodeAt(x, y)) return;
    now_.Dragging = true;
    in_.window.dragIcon(Control::kTreeView1, image::kNo);
    in_.window.beginDrag(Control::kTreeView1);
  });
}

void PlayListEditor::ListView1_MouseMove(std::int16_t button, std::int16_t /*shift*/, float x, float y) {
  reported("Listview1 MouseMove", [&] {
    if (button != kLeftButton || !in_.window.itemAt(x, y)) return;
    now_.Dragging = true;
    in_.window.dragIcon(Control::kListView1, image::kDrag);
    in_.window.beginDrag(Control::kListView1);
  });
}

void PlayListEditor::TreeView1_DragOver(Control source, float /*x*/, float /*y*/, DragState /*state*/) {
  reported("TreeView1_DragOver", [&] {
    if (!now_.Dragging) return;
    models_.TreeView1.dropHighlight(nullptr);
    in_.window.dragIcon(source, image::kNo);
  });
}

void PlayListEditor::ListView1_DragOver(Control source, float x, float y, DragState state) {
  KeyedList& list = models_.ListView1;
  reported("ListView1_DragOver", [&] {
    if (!now_.Dragging) return;
    if (list.count() == 0) return in_.window.dragIcon(source, image::kDrag);
    const ItemRef hit = in_.window.itemAt(x, y);
    const bool leaves = hit && state == DragState::kLeave;
    in_.window.dragIcon(source, leaves ? image::kNo : image::kDrag);
    list.dropHighlight(leaves ? nullptr : hit);

    const ItemRef marked = list.dropHighlight();
    if (!marked) return;
    const std::size_t index = list.indexOf(*marked);
    if (y > layout::Of(Control::kListView1).height - kScrollEdge) {
      if (index + 1 <= list.count()) in_.window.ensureVisible(list.item(index + 1));
    } else if (y < kScrollEdge && index > 1) {
      in_.window.ensureVisible(list.item(index - 1));
    }
  });
}

void PlayListEditor::TreeView1_DragDrop(Control source, float /*x*/, float /*y*/) {
  reported("TreeView1_DragDrop", [&] {
    in_.window.mousePointer(source, EditorWindow::kDefaultPointer);
    now_.Dragging = false;
    in_.window.endDrag(source);
  });
}

// What stands in a playlist is moved unless it is to be copied; what the library holds is always copied.
std::int16_t PlayListEditor::copyOfTreeDrop() const {
  const bool ofPlayList = Present(now_.CurrentNode).fullPath().rfind("PlayList", 0) == 0;
  return ofPlayList && now_.CopyMode != 1 ? 0 : 1;
}

void PlayListEditor::ListView1_DragDrop(Control source, float x, float y) {
  const auto drop = [&] {
    const ItemRef hit = in_.window.itemAt(x, y);
    if (source != Control::kListView1)
      MoveNode(now_.CurrentNode, hit, copyOfTreeDrop(), source);
    else if (hit && Present(now_.CurrentListItem).key() != hit->key())
      MoveNode(now_.CurrentListItem, hit, now_.CopyMode != 0 ? 1 : 0, source);
  };
  reported("ListView1_DragDrop", drop);
  reported("ListView1_DragDrop", [&] {
    models_.ListView1.dropHighlight(nullptr);
    now_.Dragging = false;
    in_.window.endDrag(source);
    in_.window.mousePointer(source, EditorWindow::kArrowPointer);
  });
}

}  // namespace ui::editor
