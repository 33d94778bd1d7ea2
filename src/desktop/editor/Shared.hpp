#pragma once
#include <functional>
#include <optional>

#include "ui/editor/EditorWindow.hpp"

/// The playlist editor's window: panes that show the plain models and keep nothing of them, drags between
/// them, and what is asked of the user.
namespace desktop {

/// What the parts of one editor window share.
struct Shared {
  /// Does something to widgets, or does not when the desktop has gone.
  std::function<void(const std::function<void()>& act)> enter;
  ui::editor::EditorEvents* events = nullptr;  ///< both null while it serves nobody
  ui::editor::EditorModels* models = nullptr;
  /// The pane that was last reported to have the focus.
  std::optional<ui::editor::Control> focused = std::nullopt;
  /// Ends an edit of a label and reports it. To be done before anything else is reported.
  std::function<void()> settle = [] {};
  bool quiet = false;      ///< the focus moves, and not by the user
  unsigned questions = 0;  ///< that were asked so far; behind one, nothing of a press is left to be done
};

}  // namespace desktop
