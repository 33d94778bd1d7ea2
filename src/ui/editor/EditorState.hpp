#pragma once
#include <cstdint>
#include <string>

#include "player/WMP9.hpp"
#include "ui/editor/EditorDialogs.hpp"
#include "ui/editor/EditorLayout.hpp"
#include "ui/editor/KeyedList.hpp"
#include "ui/editor/KeyedTree.hpp"

namespace ui::editor {

/// The state that all operations of one open window share: each reads what others have left here. Nothing of
/// it is kept between two openings.
struct EditorState {
  player::PlaylistRef TreePlayList;     ///< the group last read for the tree, and a drag's source playlist
  player::PlaylistRef ListPlayList;     ///< what the list pane shows
  player::PlaylistRef LibraryPlayList;  ///< the whole library; read once, kept while the window lives
  /// The current node. Also scratch: every node that is added is left here, so that a fill overwrites it.
  NodeRef CurrentNode;
  ItemRef CurrentListItem;
  NodeRef EditedNode;  ///< whose label may be under edit: the one that was asked for last
  /// From the first move of a drag until it ends on one of the panes. A drop anywhere else leaves it, and new
  /// and delete are refused until a later drag ends on a pane.
  bool Dragging = false;
  EntryRef ClipItem;  ///< what copy or cut picked up, from `ClipSource`
  Control ClipSource = Control::kTreeView1;
  std::int16_t CopyMode = 0;    ///< 1: a drag copies instead of moving
  std::int16_t ClipIsCopy = 0;  ///< 1: copy, 0: cut
  std::string LastFocus;        ///< the name of the pane that had the focus last, empty for none
  bool FormReady = false;       ///< the window has been filled
  /// The answer to the last warning of duplicates. While it is Cancel there is none, in the tree or in the
  /// list, until the window is loaded again.
  MessageAnswer WarnAnswer = MessageAnswer::kOk;

  // Which buttons are enabled.
  bool Delete_Button = false;
  bool Rename_Button = false;
  bool MoveUp_Button = false;
  bool MoveDown_Button = false;
};

}  // namespace ui::editor
