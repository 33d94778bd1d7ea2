#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/QtWindows.hpp"
#include "ui/TrayView.hpp"

namespace desktop {

class NotificationArea;

/// The icon in the notification area. A desktop whose area comes later gets it then. What it reports is told
/// behind its own events, so that whoever hears it may take it away.
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
  /// Calls `changed` whenever that may have changed; an empty one takes it away. It must not throw.
  void onSight(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  class Shown;
  /// How icons are shown in this process.
  enum class Way { kOverBus, kOnScreen };

  void areaChanged();
  /// Runs `act` on the loop's next turn, if this still lives then.
  void later(std::function<void()> act) const;
  void tell(std::function<void(ui::TrayEvents&)> event) const;

  QtWindows& windows_;
  ui::TrayEvents* events_ = nullptr;
  std::function<void()> changed_;
  std::optional<std::string> tip_;  // of the icon that is wanted
  std::optional<Way> way_;          // Qt settles it with the first icon, for good
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  Owned<NotificationArea> area_;
  Owned<Shown> shown_;
};

}  // namespace desktop
