#pragma once
#include "player/WMPCalls.hpp"
#include "ui/TrayView.hpp"

namespace ui {

/// The owner of the plug-in's icon in the notification area: a double click shows or hides the popup
/// controls, and the right button has a menu. All operations run with failures skipped: a refused icon is
/// none.
class SysTrayForm : public TrayEvents {
 public:
  static constexpr const char* kTip = "Vantorix Media Player";

  SysTrayForm(TrayView& view, player::WMPCalls& calls);
  ~SysTrayForm() override;
  SysTrayForm(const SysTrayForm&) = delete;
  SysTrayForm& operator=(const SysTrayForm&) = delete;
  SysTrayForm(SysTrayForm&&) = delete;
  SysTrayForm& operator=(SysTrayForm&&) = delete;

  void ShowTrayIcon(bool show);
  void unload();
  [[nodiscard]] bool loaded() const { return loaded_; }

  void Form_MouseMove(std::int32_t x) override;
  void mnuShowHide_Click() override { calls_.SetDisplayControls("toggle"); }
  void mnuMute_Click() override { calls_.SetMute("toggle"); }

 private:
  void addIcon();

  TrayView& view_;
  player::WMPCalls& calls_;
  bool loaded_ = false;
};

}  // namespace ui
