#pragma once
#include <cstdint>
#include <string>

namespace ui {

/// What the timed message's window reports.
class MsgFormEvents {
 public:
  MsgFormEvents() = default;
  MsgFormEvents(const MsgFormEvents&) = delete;
  MsgFormEvents& operator=(const MsgFormEvents&) = delete;
  MsgFormEvents(MsgFormEvents&&) = delete;
  MsgFormEvents& operator=(MsgFormEvents&&) = delete;
  virtual ~MsgFormEvents() = default;
  /// The window exists and is about to show.
  virtual void Form_Load() = 0;
  virtual void OK_button_Click() = 0;
  virtual void Cancel_Button_Click() = 0;
  virtual void Stop_Button_Click() = 0;
};

/// The window of the timed message: a text, the time left, and the buttons "&OK", "&Cancel", "&Stop Timer".
class MsgFormView {
 public:
  MsgFormView() = default;
  MsgFormView(const MsgFormView&) = delete;
  MsgFormView& operator=(const MsgFormView&) = delete;
  MsgFormView(MsgFormView&&) = delete;
  MsgFormView& operator=(MsgFormView&&) = delete;
  virtual ~MsgFormView() = default;

  virtual void caption(const std::string& text) = 0;
  virtual void MessageText(const std::string& text) = 0;
  virtual void TimeLabel(const std::string& text) = 0;
  virtual void focusOk() = 0;
  [[nodiscard]] virtual std::int32_t handle() const = 0;
  /// Calls `Form_Load`, shows the window and returns when it has been hidden. Timers and all other events
  /// run meanwhile.
  virtual void showModal(MsgFormEvents& events) = 0;
  virtual void hide() = 0;
  /// Takes the window away; the next show makes it anew.
  virtual void unload() = 0;
};

}  // namespace ui
