#pragma once
#include <cstdint>
#include <string>

#include "desktop/QtWindows.hpp"
#include "ui/TrayView.hpp"

namespace desktop {

/// The icon in the notification area. A desktop whose area comes later gets it then.
class TrayIcon : public ui::TrayView {
 public:
  explicit TrayIcon(QtWindows& windows);
  ~TrayIcon() override;
  TrayIcon(const TrayIcon&) = delete;
  TrayIcon& operator=(const TrayIcon&) = delete;
  TrayIcon(TrayIcon&&) = delete;
  TrayIcon& operator=(TrayIcon&&) = delete;

  void serve(ui::TrayEvents* events) override { events_ = events; }
  void add(const std::string& tip) override;
  void remove() override;
  void popUpMenu() override;

  /// Whether somebody can see it and click on it now.
  [[nodiscard]] bool canBeSeen() const;
  [[nodiscard]] std::string tip() const;

 private:
  class Shown;

  QtWindows& windows_;
  ui::TrayEvents* events_ = nullptr;
  Owned<Shown> shown_;
};

}  // namespace desktop
