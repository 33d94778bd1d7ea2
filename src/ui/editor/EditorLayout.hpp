#pragma once
#include <array>
#include <cstddef>

namespace ui::editor {

/// What stands in the window.
enum class Control {
  kTreeView1,
  kPlayListDropBox,
  kListView1,
  kNew_PlayList,
  kRename_Button,
  kDelete_Button,
  kMoveUp_Button,
  kMoveDown_Button,
  kClose_Button,
  kWaitBox,
};

/// A control's fixed place, in twips, and its words, with "&" before an access key. The window has no resize
/// logic: its panes keep these places.
struct ControlPlace {
  Control control;
  const char* name;
  float left;
  float top;
  float width;
  float height;
  const char* caption;
};

namespace layout {
inline constexpr const char* kCaption = "Vantorix PlayList Editor";
inline constexpr float kWidth = 9705;  // inside the window's frame
inline constexpr float kHeight = 5310;

/// In the order of `Control`.
inline constexpr std::array<ControlPlace, 10> kControls{{
    {Control::kTreeView1, "TreeView1", 120, 0, 4335, 4695, ""},
    {Control::kPlayListDropBox, "PlayListDropBox", 4560, 0, 5055, 315, ""},
    {Control::kListView1, "ListView1", 4560, 360, 5055, 4335, ""},
    {Control::kNew_PlayList, "New_PlayList", 240, 4800, 1095, 375, "&New PlayList"},
    {Control::kRename_Button, "Rename_Button", 1560, 4800, 1095, 375, "&Rename P/L"},
    {Control::kDelete_Button, "Delete_Button", 2880, 4800, 1095, 375, "&Delete"},
    {Control::kMoveUp_Button, "MoveUp_Button", 4200, 4800, 1095, 375, "Move &Up"},
    {Control::kMoveDown_Button, "MoveDown_Button", 5520, 4800, 1095, 375, "Move Dow&n"},
    {Control::kClose_Button, "Close_Button", 8400, 4800, 1095, 375, "&Close"},
    {Control::kWaitBox, "WaitBox", 1905, 1800, 5895, 855, "Reading Media Library \nPlease Wait...\n"},
}};

constexpr const ControlPlace& Of(Control control) { return kControls[static_cast<std::size_t>(control)]; }
}  // namespace layout

}  // namespace ui::editor
