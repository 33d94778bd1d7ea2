#include "ui/SysTrayForm.hpp"

#include "base/Attempt.hpp"

namespace ui {

using base::Attempt;

SysTrayForm::SysTrayForm(TrayView& view, player::WMPCalls& calls) : view_(view), calls_(calls) {
  view_.serve(this);
}

SysTrayForm::~SysTrayForm() { view_.serve(nullptr); }

void SysTrayForm::addIcon() {
  Attempt step;
  step([&] { view_.add(kTip); });
}

void SysTrayForm::ShowTrayIcon(bool show) {
  if (!show) return unload();
  // Loading the form adds the icon, and so the first call does it twice. The second one brings back an icon
  // that the desktop has lost, and is refused where it has not.
  if (!loaded_) addIcon();
  loaded_ = true;
  addIcon();
}

void SysTrayForm::unload() {
  Attempt step;
  loaded_ = false;
  step([&] { view_.remove(); });
}

void SysTrayForm::Form_MouseMove(std::int32_t x) {
  Attempt step;
  if (x == kLeftDoubleClick) mnuShowHide_Click();
  if (x == kRightDown) step([&] { view_.popUpMenu(); });
}

}  // namespace ui
