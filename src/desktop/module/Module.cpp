#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "desktop/BoxWindow.hpp"
#include "desktop/MsgFormWindow.hpp"
#include "desktop/ProgBarWindow.hpp"
#include "desktop/QtWindows.hpp"
#include "desktop/editor/PlayListWindow.hpp"
#include "desktop/loader/WindowsModule.hpp"
#include "desktop/popup/ControlsPane.hpp"
#include "desktop/popup/ControlsWindow.hpp"
#include "desktop/popup/PictureView.hpp"
#include "desktop/popup/TrayIcon.hpp"

namespace {

class ModuleWindows : public desktop::Windows {
 public:
  ModuleWindows(std::unique_ptr<desktop::QtWindows> windows, base::MovingPicture* picture)
      : windows_(std::move(windows)) {
    tray_.onSight([this] { popup_.iconChanged(); });
    if (picture != nullptr) picture_.emplace(*windows_, popup_.pane(), *picture);
  }
  ~ModuleWindows() override { tray_.onSight({}); }
  ModuleWindows(const ModuleWindows&) = delete;
  ModuleWindows& operator=(const ModuleWindows&) = delete;
  ModuleWindows(ModuleWindows&&) = delete;
  ModuleWindows& operator=(ModuleWindows&&) = delete;

  ui::MsgFormView& message() override { return message_; }
  ui::ProgBarView& progress() override { return progress_; }
  ui::PopupWindow& popup() override { return popup_; }
  ui::TrayView& tray() override { return tray_; }
  ui::editor::EditorWindow& editor() override { return editor_; }
  bool showBox(base::BoxKind kind, const std::string& title, const std::string& text) override {
    return desktop::ShowBox(*windows_, kind, title, text);
  }

 private:
  std::unique_ptr<desktop::QtWindows> windows_;
  desktop::MsgFormWindow message_{*windows_};
  desktop::ProgBarWindow progress_{*windows_};
  desktop::TrayIcon tray_{*windows_};
  desktop::ControlsWindow popup_{*windows_, [this] { return tray_.canBeSeen(); }};
  std::optional<desktop::PictureView> picture_;
  desktop::PlayListWindow editor_{*windows_};
};

}  // namespace

extern "C" [[gnu::visibility("default")]] desktop::Windows* vantorix_open_windows(
    desktop::WindowsParts* parts) {
  try {
    base::MovingPicture* picture = parts->picture;
    auto windows = desktop::QtWindows::open(std::move(*parts));
    return windows ? new ModuleWindows(std::move(windows), picture) : nullptr;
  } catch (const std::exception&) {
    return nullptr;
  }
}
