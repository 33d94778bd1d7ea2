#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "PluginLog.hpp"
#include "desktop/loader/WindowsModule.hpp"
#include "plugin/host/Neighbours.hpp"
#include "ui/SysTrayForm.hpp"
#include "ui/WindowlessMsgForm.hpp"
#include "ui/myMsgForm.hpp"

/// The user's desktop. On a machine without one, and when it has gone, a dialog answers its default at once
/// and leaves its text in the house's log.
class UserDesktop : public plugin::Desktop {
 public:
  /// `picture` is what the player shows; it outlives the desktop.
  UserDesktop(bus::PollLoop& loop, const PluginLog& log, base::MovingPicture& picture)
      : loop_(loop),
        log_(log),
        windows_(desktop::LoadWindows(
            loop, &picture,
            [this, &log] {
              gone_ = true;
              log.warn("Media Player: The desktop has gone, the player goes on without windows");
              if (tellGone_) tellGone_();
            },
            [&log](const std::string& problem) { log.warn("Media Player: " + problem); })),
        unseenMessage_([&log](const std::string& title, const std::string& text) {
          log.warn("Media Player: " + title + " " + text);
        }) {}

  /// To be called before a message is shown.
  void connect(plugin::HostServices& host, player::WMPCalls& calls) {
    message_.emplace(windows_ ? windows_->message() : unseenMessage_, host, loop_);
    tray_.emplace(windows_ ? windows_->tray() : unseenTray_, calls);
  }

  void ShowTrayIcon(bool show) override { tray_->ShowTrayIcon(show); }
  void unloadTray() override { tray_->unload(); }

  void showPlayListEditor() override {
    log_.warn("Media Player: There is no desktop to show the playlist editor on");
  }
  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                std::int16_t seconds) override {
    return message_->ShowTimedMessage(title, text, seconds);
  }
  void messageBox(base::BoxKind kind, const std::string& title, const std::string& text) {
    if (!windows_ || !windows_->showBox(kind, title, text)) log_.warn(title + ": " + text);
  }
  /// Nothing without a display.
  ui::ProgBarView* progress() { return windows_ ? &windows_->progress() : nullptr; }
  /// Nothing without a display.
  ui::PopupWindow* popup() { return windows_ ? &windows_->popup() : nullptr; }
  /// Nothing without a display.
  ui::editor::EditorWindow* editor() { return windows_ ? &windows_->editor() : nullptr; }
  /// A window can be shown.
  [[nodiscard]] bool shows() const { return windows_ && !gone_; }
  /// Calls `tell` once `shows` is so no longer; null for nobody.
  void whenGone(std::function<void()> tell) { tellGone_ = std::move(tell); }

 private:
  bus::PollLoop& loop_;
  const PluginLog& log_;
  bool gone_ = false;
  std::function<void()> tellGone_;
  std::unique_ptr<desktop::Windows> windows_;
  ui::WindowlessMsgForm unseenMessage_;
  std::optional<ui::myMsgForm> message_;
  ui::WindowlessTray unseenTray_;
  std::optional<ui::SysTrayForm> tray_;
};
