#include "ui/myMsgForm.hpp"

#include "base/Attempt.hpp"
#include "base/Value.hpp"
#include "ui/ToFront.hpp"

namespace ui {

using base::Attempt;

myMsgForm::myMsgForm(MsgFormView& view, plugin::HostServices& host, base::Loop& loop)
    : view_(view),
      host_(host),
      Timer1_(loop.makeTimer(base::Milliseconds(1000), [this] { Timer1_Timer(); })) {}

std::int16_t myMsgForm::ShowTimedMessage(const std::string& title, const std::string& text,
                                         std::int16_t seconds) {
  // There is one window. A message that comes while it is open, by way of an event, has no place to show.
  if (open_) return leave(title, text);
  Attempt step;
  open_ = true;
  Result_.clear();
  TimeLabelTag_ = std::to_string(seconds);
  step([&] { view_.caption(title); });
  step([&] { view_.MessageText(text); });
  step([&] { view_.showModal(*this); });
  Timer1_->enabled(false);
  step([&] { view_.unload(); });
  open_ = false;
  if (Result_.empty()) return leave(title, text);
  return static_cast<std::int16_t>(base::NumericPrefix(Result_));
}

std::int16_t myMsgForm::leave(const std::string& title, const std::string& text) {
  Attempt step;
  step([&] { host_.WriteLog("Warning", "Media Player: " + title + " " + text); });
  return kCancelOrTimeIsUp;
}

void myMsgForm::Form_Load() {
  Attempt step;
  if (base::NumericPrefix(TimeLabelTag_) > 0) Timer1_->enabled(true);
  step([&] { ToFront(host_, view_.handle()); });
  step([&] { view_.focusOk(); });
}

void myMsgForm::Timer1_Timer() {
  Attempt step;
  const double left = base::NumericPrefix(TimeLabelTag_);
  if (left == 0) close("2");
  step([&] { view_.TimeLabel("Time remaining: " + TimeLabelTag_); });
  TimeLabelTag_ = std::to_string(static_cast<std::int32_t>(left) - 1);
}

void myMsgForm::close(const char* result) {
  Attempt step;
  Timer1_->enabled(false);
  Result_ = result;
  step([&] { view_.hide(); });
}

}  // namespace ui
