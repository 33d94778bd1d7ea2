#pragma once
#include <QtCore/QPoint>
#include <QtCore/QTimer>

#include <functional>

#include "desktop/QtWindows.hpp"
#include "desktop/popup/ManagersWord.hpp"
#include "ui/popup/PopupWindow.hpp"

namespace desktop {

class ControlsPane;

/// The popup window. While the desktop has no icon from which it could be brought back, a hidden one is
/// minimised to the task bar. When the desktop has gone, it keeps its place and whether it is to be seen.
class ControlsWindow : public ui::PopupWindow {
 public:
  /// `canComeBack` tells whether there is an icon in the notification area.
  ControlsWindow(QtWindows& windows, std::function<bool()> canComeBack);
  ~ControlsWindow() override;
  ControlsWindow(const ControlsWindow&) = delete;
  ControlsWindow& operator=(const ControlsWindow&) = delete;
  ControlsWindow(ControlsWindow&&) = delete;
  ControlsWindow& operator=(ControlsWindow&&) = delete;

  /// Whether the desktop has done what was wanted of the window last. What it tells from then on is the
  /// user's doing.
  [[nodiscard]] bool settled() const { return agreement_.settled() && !settling_; }
  /// The icon has come or gone: what `canComeBack` tells may be another.
  void iconChanged();

  void serve(ui::PopupWindowEvents* events, ui::PopupMenus* menus) override;
  [[nodiscard]] float top() const override;
  void top(float value) override;
  [[nodiscard]] float left() const override;
  void left(float value) override;
  [[nodiscard]] float screenHeight() const override;
  [[nodiscard]] float screenWidth() const override;
  [[nodiscard]] bool visible() const override;
  void show() override;
  void hide() override;
  [[nodiscard]] bool minimised() const override;
  void minimise() override;
  void normal() override;
  [[nodiscard]] std::int32_t handle() const override;
  void setWindowPos(std::int32_t insertAfter, std::int32_t height, std::int32_t flags) override;
  void height(float value) override;
  void controlTop(std::int32_t pixels) override { controlTop_ = pixels; }
  void controlHeight(std::int32_t pixels) override { controlHeight_ = pixels; }
  void imageVisible(bool value) override { imageVisible_ = value; }
  void image(const std::string& bytes) override;
  void clearImage() override;
  void popUpMedia(std::int16_t defaultElement) override;
  void transport(const ui::TransportShown& shown) override;

  /// What is in the window, for whoever shows a moving picture there.
  [[nodiscard]] ControlsPane& pane() { return *pane_.get(); }

 private:
  void closed();
  void stateChanged();
  void tellState();
  /// `act` makes that of the window, which is not the user's doing: at once, or as soon as the desktop has
  /// done what it was asked before. Of several that wait only the last one is done.
  void want(Standing standing, std::function<void()> act);
  void carryOut();
  void managerTells(Standing now);
  /// The desktop has done what was wanted.
  void settle();
  void keepPlace() const;
  /// Where the frame of the window stands that is there.
  [[nodiscard]] QPoint frame() const;
  /// Puts the frame there, in pixels of the desktop, whether or not it is there yet.
  void put();
  void reach();
  /// Brings it to its place, within reach.
  void place();
  /// Makes it a hidden window, as this desktop can have one.
  void putAway();

  QtWindows& windows_;
  std::function<bool()> canComeBack_;
  Agreement agreement_;
  std::function<void()> act_;  // that waits for the desktop
  Owned<ControlsPane> pane_;
  Owned<QTimer> later_;  // behind what the desktop is telling
  Owned<ManagersWord> manager_;
  ui::PopupWindowEvents* events_ = nullptr;
  mutable QPoint place_;  // of the frame
  bool shown_ = false;    // as it is wanted
  bool hidden_ = false;   // as it is wanted; at first neither is
  bool quiet_ = false;
  bool settling_ = false;
  bool toActivate_ = false;
  std::int32_t controlTop_ = 0;
  std::int32_t controlHeight_ = 0;
  bool imageVisible_ = false;
};

}  // namespace desktop
