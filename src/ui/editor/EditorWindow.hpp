#pragma once
#include <cstdint>
#include <string>

#include "ui/editor/DropBox.hpp"
#include "ui/editor/EditorDialogs.hpp"
#include "ui/editor/EditorLayout.hpp"
#include "ui/editor/KeyedList.hpp"
#include "ui/editor/KeyedTree.hpp"

namespace ui::editor {

/// What the window shows. Selection, drop highlight and which nodes are expanded are part of the models: the
/// logic sets them without an event coming back, and a view that lets the user set them does so first and
/// then reports the event.
struct EditorModels {
  KeyedTree TreeView1;
  KeyedList ListView1;
  DropBox PlayListDropBox;  ///< a choice of the user's is a write of `listIndex`
};

/// Mouse buttons and held keys as the events tell them.
inline constexpr std::int16_t kLeftButton = 1;
inline constexpr std::int16_t kRightButton = 2;
inline constexpr std::int16_t kMiddleButton = 4;
inline constexpr std::int16_t kShiftDown = 1;
inline constexpr std::int16_t kCtrlDown = 2;
inline constexpr std::int16_t kAltDown = 4;

/// Key codes; others do nothing.
enum KeyCode : std::int16_t {
  kEnterKey = 13,
  kCtrlKey = 17,
  kInsertKey = 45,
  kDeleteKey = 46,
  kCKey = 67,
  kVKey = 86,
  kXKey = 88,
  kF1Key = 112,
};

/// How a drag stands towards a pane.
enum class DragState : std::int16_t { kEnter = 0, kLeave = 1, kOver = 2 };

/// What the window reports. None of them throws. While the editor reads the player they do nothing, but for
/// `Form_Unload`. Any of them may turn the loop, so that others come in before
/// it returns, and so may `DropBox::listIndex`. Places are in twips from the pane's corner.
class EditorEvents {
 public:
  EditorEvents() = default;
  EditorEvents(const EditorEvents&) = delete;
  EditorEvents& operator=(const EditorEvents&) = delete;
  EditorEvents(EditorEvents&&) = delete;
  EditorEvents& operator=(EditorEvents&&) = delete;
  virtual ~EditorEvents() = default;

  /// The window goes, at whoever's wish. It reports nothing behind this, and is shown no more.
  virtual void Form_Unload() = 0;

  /// The tree's own click, which comes behind `TreeView1_MouseDown` of the same press, unless that has led to
  /// a dialog.
  virtual void TreeView1_NodeClick(const NodeRef& node) = 0;
  /// The user has expanded the node.
  virtual void TreeView1_Expand(const NodeRef& node) = 0;
  /// From another control of this window. When the window itself comes back to the front, as behind a dialog,
  /// no control gets the focus.
  virtual void TreeView1_GotFocus() = 0;
  virtual void TreeView1_KeyDown(std::int16_t keyCode, std::int16_t shift) = 0;
  virtual void TreeView1_KeyUp(std::int16_t keyCode, std::int16_t shift) = 0;
  virtual void TreeView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) = 0;
  virtual void TreeView1_MouseMove(std::int16_t button, std::int16_t shift, float x, float y) = 0;
  virtual void TreeView1_DragOver(Control source, float x, float y, DragState state) = 0;
  virtual void TreeView1_DragDrop(Control source, float x, float y) = 0;
  /// To be asked before any edit of the selected node's label, whatever began it. Sets `Cancel` to another
  /// value than 0 where there is to be none.
  virtual void TreeView1_BeforeLabelEdit(std::int16_t& Cancel) = 0;
  /// The label was edited. A view settles a pending edit so before it reports anything else: the press, key
  /// or choice that ended it comes behind. A later one is cancelled. Unless `Cancel` is other than 0 behind
  /// this, the view gives the node that it has edited the text that is then in `NewString`, by
  /// `KeyedTree::text`.
  virtual void TreeView1_AfterLabelEdit(std::int16_t& Cancel, std::string& NewString) = 0;

  virtual void ListView1_ItemClick(const ItemRef& item) = 0;
  virtual void ListView1_ColumnClick() = 0;
  virtual void ListView1_GotFocus() = 0;
  virtual void ListView1_KeyDown(std::int16_t keyCode, std::int16_t shift) = 0;
  virtual void ListView1_KeyUp(std::int16_t keyCode, std::int16_t shift) = 0;
  virtual void ListView1_MouseDown(std::int16_t button, std::int16_t shift, float x, float y) = 0;
  virtual void ListView1_MouseMove(std::int16_t button, std::int16_t shift, float x, float y) = 0;
  virtual void ListView1_DragOver(Control source, float x, float y, DragState state) = 0;
  virtual void ListView1_DragDrop(Control source, float x, float y) = 0;

  virtual void New_PlayList_Click() = 0;
  virtual void Rename_Button_Click() = 0;
  virtual void Delete_Button_Click() = 0;
  virtual void MoveUp_Button_Click() = 0;
  virtual void MoveDown_Button_Click() = 0;
  virtual void Close_Button_Click() = 0;
};

/// The window itself and what it asks its user. Lengths are in twips. Every call but the plain questions may
/// throw.
class EditorWindow : public EditorDialogs {
 public:
  /// Whom it reports to, and what it shows. Both stay until they are served no more, by null.
  virtual void serve(EditorEvents* events, EditorModels* models) = 0;

  [[nodiscard]] virtual float top() const = 0;
  virtual void top(float value) = 0;
  [[nodiscard]] virtual float left() const = 0;
  virtual void left(float value) = 0;
  /// Shows it without blocking; one that shows already stays.
  virtual void show() = 0;
  /// Asks it to close, as its user may: it calls `Form_Unload` and goes.
  virtual void close() = 0;
  /// As the host's `forcefront` takes it; 0 for a window that is nowhere.
  [[nodiscard]] virtual std::int32_t handle() const = 0;
  /// A window that is disabled takes no input, and its user can't close it.
  virtual void enabled(bool value) = 0;
  /// Draws it at once, without input and without another event.
  virtual void repaint() = 0;
  static constexpr std::int16_t kDefaultPointer = 0;
  static constexpr std::int16_t kArrowPointer = 1;
  static constexpr std::int16_t kHourglass = 11;
  virtual void screenPointer(std::int16_t pointer) = 0;

  virtual void visible(Control control, bool value) = 0;
  /// Of a button.
  virtual void enabled(Control button, bool value) = 0;
  virtual void focus(Control pane) = 0;

  /// What stands at a place of a pane; may be null.
  virtual NodeRef nodeAt(float x, float y) = 0;
  virtual ItemRef itemAt(float x, float y) = 0;
  virtual void ensureVisible(const NodeRef& node) = 0;
  virtual void ensureVisible(const ItemRef& item) = 0;
  /// Begins to edit the selected node's label, unless `TreeView1_BeforeLabelEdit` cancels it.
  virtual void startLabelEdit() = 0;

  /// Begins a drag that comes out of a pane, with the drag image that was set last.
  virtual void beginDrag(Control pane) = 0;
  virtual void endDrag(Control pane) = 0;
  /// `image` is "Drag" or "No".
  virtual void dragIcon(Control pane, const char* image) = 0;
  virtual void mousePointer(Control pane, std::int16_t pointer) = 0;
};

}  // namespace ui::editor
