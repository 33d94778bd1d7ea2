#pragma once
#include <memory>
#include <optional>
#include <string>

#include "PluginLog.hpp"
#include "desktop/BoxWindow.hpp"
#include "desktop/MsgFormWindow.hpp"
#include "desktop/ProgBarWindow.hpp"
#include "desktop/QtWindows.hpp"
#include "plugin/host/Neighbours.hpp"
#include "ui/WindowlessMsgForm.hpp"
#include "ui/myMsgForm.hpp"

/// The user's desktop. On a machine without one a dialog answers its default at once and leaves its text in
/// the house's log.
class UserDesktop : public plugin::Desktop {
 public:
  UserDesktop(bus::PollLoop& loop, const PluginLog& log)
      : loop_(loop),
        log_(log),
        windows_(desktop::QtWindows::open(loop)),
        unseenMessage_([&log](const std::string& title, const std::string& text) {
          log.warn("Media Player: " + title + " " + text);
        }) {
    if (!windows_) return;
    messageWindow_.emplace(*windows_);
    progress_.emplace(*windows_);
  }

  /// To be called before a message is shown.
  void connect(plugin::HostServices& host) {
    message_.emplace(messageWindow_ ? static_cast<ui::MsgFormView&>(*messageWindow_) : unseenMessage_, host,
                     loop_);
  }

  std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                std::int16_t seconds) override {
    return message_->ShowTimedMessage(title, text, seconds);
  }
  void messageBox(base::BoxKind kind, const std::string& title, const std::string& text) {
    if (windows_)
      desktop::ShowBox(*windows_, kind, title, text);
    else
      log_.warn(title + ": " + text);
  }
  /// Nothing without a display.
  ui::ProgBarView* progress() { return progress_ ? &*progress_ : nullptr; }

 private:
  bus::PollLoop& loop_;
  const PluginLog& log_;
  std::unique_ptr<desktop::QtWindows> windows_;
  ui::WindowlessMsgForm unseenMessage_;
  std::optional<desktop::MsgFormWindow> messageWindow_;
  std::optional<desktop::ProgBarWindow> progress_;
  std::optional<ui::myMsgForm> message_;
};
