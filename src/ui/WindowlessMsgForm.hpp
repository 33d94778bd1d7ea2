#pragma once
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

#include "ui/MsgFormView.hpp"

namespace ui {

/// The timed message of a machine without a display: its time is up at once, and the text is left elsewhere.
class WindowlessMsgForm : public MsgFormView {
 public:
  using Leave = std::function<void(const std::string& title, const std::string& text)>;

  /// Leaves a message as a line of the stream.
  explicit WindowlessMsgForm(std::FILE* out = stderr)
      : WindowlessMsgForm([out](const std::string& title, const std::string& text) {
          std::fprintf(out, "%s %s\n", title.c_str(), text.c_str());
        }) {}
  explicit WindowlessMsgForm(Leave leave) : leave_(std::move(leave)) {}

  void caption(const std::string& text) override { caption_ = text; }
  void MessageText(const std::string& text) override { text_ = text; }
  void TimeLabel(const std::string& /*text*/) override {}
  void focusOk() override {}
  [[nodiscard]] std::int32_t handle() const override { return 0; }
  void showModal(MsgFormEvents& events) override {
    events.Cancel_Button_Click();
    leave_(caption_, text_);
  }
  void hide() override {}
  void unload() override {}

 private:
  Leave leave_;
  std::string caption_;
  std::string text_;
};

}  // namespace ui
