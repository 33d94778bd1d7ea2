#include <exception>
#include <memory>
#include <utility>

#include "desktop/BoxWindow.hpp"
#include "desktop/MsgFormWindow.hpp"
#include "desktop/ProgBarWindow.hpp"
#include "desktop/QtWindows.hpp"
#include "desktop/loader/WindowsModule.hpp"
#include "desktop/popup/ControlsWindow.hpp"
#include "desktop/popup/TrayIcon.hpp"

namespace {

class ModuleWindows : public desktop::Windows {
 public:
  explicit ModuleWindows(std::unique_ptr<desktop::QtWindows> windows) : windows_(std::move(windows)) {}

  ui::MsgFormView& message() override { return message_; }
  ui::ProgBarView& progress() override { return progress_; }
  ui::PopupWindow& popup() override { return popup_; }
  ui::TrayView& tray() override { return tray_; }
  bool showBox(base::BoxKind kind, const std::string& title, const std::string& text) override {
    return desktop::ShowBox(*windows_, kind, title, text);
  }

 private:
  std::unique_ptr<desktop::QtWindows> windows_;
  desktop::MsgFormWindow message_{*windows_};
  desktop::ProgBarWindow progress_{*windows_};
  desktop::TrayIcon tray_{*windows_};
  desktop::ControlsWindow popup_{*windows_, [this] { return tray_.canBeSeen(); }};
};

}  // namespace

extern "C" [[gnu::visibility("default")]] desktop::Windows* vantorix_open_windows(
    desktop::WindowsParts* parts) {
  try {
    auto windows = desktop::QtWindows::open(std::move(*parts));
    return windows ? new ModuleWindows(std::move(windows)) : nullptr;
  } catch (const std::exception&) {
    return nullptr;
  }
}
