#pragma once
#include <functional>
#include <string>

#include "base/MovingPicture.hpp"
#include "base/Platform.hpp"
#include "bus/PollLoop.hpp"
#include "desktop/loader/Display.hpp"
#include "ui/MsgFormView.hpp"
#include "ui/ProgBarView.hpp"
#include "ui/TrayView.hpp"
#include "ui/editor/EditorWindow.hpp"
#include "ui/popup/PopupWindow.hpp"

namespace desktop {

/// The plug-in's windows. They outlive their desktop: when that goes, they show nothing any more, and what
/// waits for one of them goes on.
class Windows {
 public:
  Windows() = default;
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;
  Windows(Windows&&) = delete;
  Windows& operator=(Windows&&) = delete;
  virtual ~Windows() = default;

  /// Its `showModal` throws `kWindowNotShown` when the desktop has gone, or goes before there is an answer.
  virtual ui::MsgFormView& message() = 0;
  virtual ui::ProgBarView& progress() = 0;
  virtual ui::PopupWindow& popup() = 0;
  virtual ui::TrayView& tray() = 0;
  virtual ui::editor::EditorWindow& editor() = 0;
  /// Shows a message with an OK button and waits until it is read. False when it was not.
  virtual bool showBox(base::BoxKind kind, const std::string& title, const std::string& text) = 0;
};

/// What the module with the windows is given.
struct WindowsParts {
  bus::PollLoop& loop;
  Display display;
  /// Called once, on the loop, when the desktop has gone.
  std::function<void()> gone;
  /// What the player shows, for the popup window; null where it shows nothing.
  base::MovingPicture* picture = nullptr;
};

}  // namespace desktop
