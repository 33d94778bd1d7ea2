#include "ui/ProgBar.hpp"

#include "base/Attempt.hpp"
#include "ui/ToFront.hpp"

namespace ui {

using base::Attempt;

void ProgBar::startClock() {
  if (ProgressStart_ == 0) ProgressStart_ = clock_.seconds();
}

void ProgBar::showWhenLate() {
  constexpr float kPatience = 1;
  if (view_.visible() || !state_.ProgressWindowAllowed) return;
  // A reading that passes midnight only delays the window.
  if (clock_.seconds() - ProgressStart_ > kPatience) show();
}

void ProgBar::show() {
  Attempt step;
  step([&] { view_.show(); });
  step([&] {
    view_.place((view_.screenHeight() - view_.height()) / 2, (view_.screenWidth() - view_.width()) / 2);
  });
  step([&] { ToFront(host_, view_.handle()); });
  step([&] { view_.refresh(); });
  step([&] { loop_.pump(); });
}

void ProgBar::Disp_ProgBar(const std::string& /*name*/) {
  Attempt step;
  ++ProgressUsers_;
  step([&] { view_.value(0); });
  // A walk must not starve the machine.
  if (state_.RaisePriority) step([&] { platform_.setPriorityClass(plugin::kPriorityNormal); });
  if (state_.ProgressWindowAllowed) startClock();
  step([&] { showWhenLate(); });
}

void ProgBar::Update_ProgBar(float fraction) {
  if (!state_.ProgressWindowAllowed) return;
  Attempt step;
  startClock();
  step([&] { view_.value(fraction * 100); });
  step([&] { view_.refresh(); });
  step([&] { showWhenLate(); });
}

void ProgBar::Hide_ProgBar(const std::string& /*name*/) {
  Attempt step;
  --ProgressUsers_;
  if (ProgressUsers_ != 0) return;
  ProgressStart_ = 0;
  step([&] { view_.hide(); });
  if (state_.ProgressWindowAllowed && state_.RaisePriority)
    step([&] { platform_.setPriorityClass(plugin::RaisedPriorityClass(state_.OsMajorVersion)); });
}

}  // namespace ui
