#pragma once
#include <memory>

#include "base/MovingPicture.hpp"
#include "desktop/QtWindows.hpp"
#include "desktop/WakefulScreen.hpp"

namespace desktop {

class ControlsPane;
class PictureWidget;

/// The moving picture of what plays: in the popup window's place for it, or over the whole screen. What it
/// costs is only spent while it is seen.
class PictureView {
 public:
  /// Both outlive it; the picture's player may come and go.
  PictureView(QtWindows& windows, ControlsPane& pane, base::MovingPicture& picture);
  ~PictureView();
  PictureView(const PictureView&) = delete;
  PictureView& operator=(const PictureView&) = delete;
  PictureView(PictureView&&) = delete;
  PictureView& operator=(PictureView&&) = delete;

 private:
  void changed();
  /// Within Qt: fills the screen, or no longer.
  void followFull();
  /// Within Qt: where it is seen, and how large.
  void followSize();

  QtWindows& windows_;
  ControlsPane& pane_;
  base::MovingPicture& picture_;
  Owned<PictureWidget> small_;
  Owned<PictureWidget> full_;  ///< made when it is first needed
  Owned<WakefulScreen> wakeful_;
  bool filling_ = false;
};

}  // namespace desktop
