#include "ui/popup/PopupControls.hpp"

#include "base/Attempt.hpp"
#include "ui/ToFront.hpp"

namespace ui {

using base::Attempt;

namespace {

constexpr base::Milliseconds kFollow{1000};
constexpr std::int16_t kStatusOn = 2;
constexpr std::int16_t kStatusOff = 3;
constexpr float kTwipsPerPixel = 15;

}  // namespace

PopupControls::PopupControls(const PopupParts& parts)
    : in_(parts),
      bar_(parts.window, parts.form, parts.calls, parts.loop),
      Visibility_(parts.loop.makeTimer(kFollow, [this] { Visibility_Timer(); })) {}

void PopupControls::Visibility_Timer() {
  // The plug-in is going down, or nobody has it yet.
  if (!in_.host.Host) return Visibility_->enabled(false);
  base::Handled(
      [&] {
        const std::string code = in_.host.GetDeviceCode(plugin::DeviceName("Display Controls"));
        const bool wanted = in_.state.DisplayControlsShown;
        const bool done = wanted ? appear(code) : disappear(code);
        // While the host was told, somebody may have wanted the other.
        if (done && in_.state.DisplayControlsShown == wanted) Visibility_->enabled(false);
      },
      [&](const base::Failure& failure) {
        // A modal window is open somewhere: the next second is another try.
        if (failure.number() == base::number::kWindowNotShown ||
            failure.number() == base::number::kWindowNotShown2)
          return;
        in_.loggers.LogFormError(failure.number(), failure.description(), "Visibility_Timer");
      });
}

bool PopupControls::appear(const std::string& code) {
  in_.window.show();
  if (!in_.window.visible()) return false;
  in_.window.normal();
  LayoutControls();
  ToFront(in_.host, in_.window.handle());
  setWindowPos(in_.state.AlwaysOnTop ? player::kTopmost : player::kNotTopmost, player::kStackAndShow);
  bar_.refresh();
  tell(code, true);
  return true;
}

bool PopupControls::disappear(const std::string& code) {
  // A window at the screen's edge or beyond keeps the place saved before.
  if (top() > 0 && left() > 0) {
    in_.settings.save("DisplayControlsTop", top());
    in_.settings.save("DisplayControlsLeft", left());
  }
  in_.window.hide();
  if (in_.window.visible()) return false;
  bar_.refresh();
  tell(code, false);
  return true;
}

void PopupControls::tell(const std::string& code, bool shown) {
  in_.host.SetDeviceString(code, in_.state.AlbumIconTag + (shown ? "Show" : "Hide"), true);
  in_.host.SetDeviceStatus(code, shown ? kStatusOn : kStatusOff);
  in_.settings.save("DisplayControls", shown);
}

void PopupControls::image(const std::string& bytes) {
  in_.window.image(bytes);
  hasImage_ = true;
}

void PopupControls::clearImage() {
  hasImage_ = false;
  in_.window.clearImage();
}

std::int32_t PopupControls::controlHeight() {
  std::int32_t height = PopupWindow::kBarHeight;
  if (!in_.form.loaded()) return height;
  film_ = false;
  Attempt step;
  step([&] {
    const std::int32_t state = in_.form.wmp9().playState();
    const bool idle = state == player::kUndefined || state == player::kStopped || state == player::kReady;
    const player::MediaRef media = in_.form.wmp9().currentMedia();
    if (!media || idle) return;
    if (media->imageSourceHeight() > 0) {
      height = PopupWindow::kPictureHeight;
      film_ = true;
      in_.calls.SetDisplayControls(true);  // a video always shows
    } else if (in_.state.ShowVisualizations) {
      height = PopupWindow::kPictureHeight;
    }
  });
  return height;
}

// A title of the same album as the last one lays nothing out by itself, and may be a film all the same.
void PopupControls::transportChanged() {
  if (filmPlays() != film_) LayoutControls();
  bar_.refresh();
}

bool PopupControls::filmPlays() {
  bool film = film_;
  if (!in_.form.loaded()) return film;
  Attempt step;
  step([&] {
    if (in_.form.wmp9().playState() != player::kPlaying) return;
    const player::MediaRef media = in_.form.wmp9().currentMedia();
    film = media && media->imageSourceHeight() > 0;
  });
  return film;
}

void PopupControls::LayoutControls() {
  Attempt step;
  // A player that nobody has needed so far isn't made for a layout.
  if (in_.form.loaded()) step([&] { in_.form.wmp9().fullScreen(in_.state.FullScreenVideo); });
  bool minimised = false;
  step([&] { minimised = in_.window.minimised(); });
  if (minimised) return;
  const std::int32_t height = controlHeight();
  step([&] { in_.window.controlHeight(height); });
  const bool cover = hasImage_ && in_.state.ShowCoverArt;
  const std::int32_t top = cover ? PopupWindow::kCoverHeight : 0;
  step([&] { in_.window.imageVisible(cover); });
  step([&] { in_.window.controlTop(top); });
  step([&] {
    in_.window.height(static_cast<float>(height + top + PopupWindow::kFrameHeight) * kTwipsPerPixel);
  });
}

}  // namespace ui
