#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "plugin/host/HostServices.hpp"
#include "ui/MsgFormView.hpp"

namespace ui {

/// A message that closes itself after a count of seconds, so that an unattended server never waits for a
/// click. All operations run with failures skipped.
class myMsgForm : public MsgFormEvents {
 public:
  static constexpr std::int16_t kOk = 1;
  static constexpr std::int16_t kCancelOrTimeIsUp = 2;

  myMsgForm(MsgFormView& view, plugin::HostServices& host, base::Loop& loop);

  /// Shows the message and waits. `kOk` or `kCancelOrTimeIsUp`. With 0 seconds it waits for a button. A
  /// message that can't be shown, as while another is open, is left in the house's log, and its time is up at
  /// once.
  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text, std::int16_t seconds);

  void Form_Load() override;
  void OK_button_Click() override { close("1"); }
  void Cancel_Button_Click() override { close("2"); }
  /// The reader takes his time: the message stays until a button is pressed.
  void Stop_Button_Click() override { Timer1_->enabled(false); }

  [[nodiscard]] const base::Timer& Timer1() const { return *Timer1_; }

 private:
  void Timer1_Timer();
  void close(const char* result);
  std::int16_t leave(const std::string& title, const std::string& text);

  MsgFormView& view_;
  plugin::HostServices& host_;
  std::unique_ptr<base::Timer> Timer1_;
  std::string TimeLabelTag_;  // the seconds left, as text
  std::string Result_;
  bool open_ = false;
};

}  // namespace ui
