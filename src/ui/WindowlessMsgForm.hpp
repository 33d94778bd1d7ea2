#pragma once
#include <cstdio>

#include "ui/MsgFormView.hpp"

namespace ui {

/// The timed message of a machine without a display: its time is up at once, and the text goes to a stream.
class WindowlessMsgForm : public MsgFormView {
 public:
  explicit WindowlessMsgForm(std::FILE* out = stderr) : out_(out) {}

  void caption(const std::string& text) override { caption_ = text; }
  void MessageText(const std::string& text) override { text_ = text; }
  void TimeLabel(const std::string& /*text*/) override {}
  void focusOk() override {}
  [[nodiscard]] std::int32_t handle() const override { return 0; }
  void showModal(MsgFormEvents& events) override {
    std::fprintf(out_, "%s %s\n", caption_.c_str(), text_.c_str());
    events.Cancel_Button_Click();
  }
  void hide() override {}
  void unload() override {}

 private:
  std::FILE* out_;
  std::string caption_;
  std::string text_;
};

}  // namespace ui
