#pragma once
#include <string>

#include "desktop/QtWindows.hpp"
#include "ui/editor/EditorDialogs.hpp"

class QWidget;

namespace desktop {

// What is asked in windows of their own before another one. Each waits for its answer while the loop turns;
// when the desktop goes meanwhile, the answer is the default.

ui::editor::MessageAnswer AskMessage(QtWindows& windows, QWidget* before, ui::editor::MessageKind kind,
                                     const std::string& text);
/// Empty for Cancel.
std::string AskText(QtWindows& windows, QWidget* before, const std::string& prompt, const std::string& title,
                    const std::string& typed);
/// A file that is there; empty for Cancel.
std::string AskFile(QtWindows& windows, QWidget* before, const ui::editor::FileDialog& how);

}  // namespace desktop
