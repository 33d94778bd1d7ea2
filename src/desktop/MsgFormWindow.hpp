#pragma once
#include <memory>
#include <string>

#include "desktop/QtWindows.hpp"
#include "ui/MsgFormView.hpp"

namespace desktop {

/// The timed message's window. Escape and the frame's close button are its Cancel button.
class MsgFormWindow : public ui::MsgFormView {
 public:
  explicit MsgFormWindow(QtWindows& windows);
  ~MsgFormWindow() override;
  MsgFormWindow(const MsgFormWindow&) = delete;
  MsgFormWindow& operator=(const MsgFormWindow&) = delete;
  MsgFormWindow(MsgFormWindow&&) = delete;
  MsgFormWindow& operator=(MsgFormWindow&&) = delete;

  void caption(const std::string& text) override;
  void MessageText(const std::string& text) override;
  void TimeLabel(const std::string& text) override;
  void focusOk() override;
  [[nodiscard]] std::int32_t handle() const override;
  void showModal(ui::MsgFormEvents& events) override;
  void hide() override;
  void unload() override;

 private:
  class Dialog;
  /// Makes the dialog when it is first touched.
  template <class Act>
  void touch(Act&& act) const;

  QtWindows& windows_;
  mutable Owned<Dialog> dialog_;
};

}  // namespace desktop
