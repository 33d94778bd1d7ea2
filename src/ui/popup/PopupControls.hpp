#pragma once
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "player/PopupView.hpp"
#include "player/WMPCalls.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"
#include "ui/popup/PopupMenus.hpp"
#include "ui/popup/PopupWindow.hpp"
#include "ui/popup/TransportBar.hpp"

namespace ui {

/// What the popup controls are built on.
struct PopupParts {
  PopupWindow& window;
  PopupMenus& menus;
  player::WMPPlayer& form;
  player::WMPCalls& calls;
  plugin::HostServices& host;
  plugin::Settings& settings;
  plugin::Loggers& loggers;
  const plugin::PluginState& state;
  base::Loop& loop;
};

/// The popup window as the rest of the plug-in knows it: it makes what is wanted true on the screen, within a
/// second and outside of whoever wants it, and its size follows what is playing.
class PopupControls : public player::PopupView {
 public:
  explicit PopupControls(const PopupParts& parts);

  [[nodiscard]] float top() const override { return in_.window.top(); }
  void top(float value) override { in_.window.top(value); }
  [[nodiscard]] float left() const override { return in_.window.left(); }
  void left(float value) override { in_.window.left(value); }
  [[nodiscard]] float screenHeight() const override { return in_.window.screenHeight(); }
  [[nodiscard]] float screenWidth() const override { return in_.window.screenWidth(); }
  [[nodiscard]] bool visible() const override { return in_.window.visible(); }
  void setWindowPos(std::int32_t insertAfter, std::int32_t flags) override {
    in_.window.setWindowPos(insertAfter, windowHeight_, flags);
  }
  void windowHeight(std::int32_t value) override { windowHeight_ = value; }
  void image(const std::string& bytes) override;
  void clearImage() override;
  /// Failures are skipped.
  void LayoutControls() override;
  void check(const std::string& menuItem, bool value) override { in_.menus.check(menuItem, value); }
  void armVisibility() override { Visibility_->enabled(true); }
  void transportChanged() override;

  [[nodiscard]] TransportBar& bar() { return bar_; }
  [[nodiscard]] const base::Timer& Visibility() const { return *Visibility_; }

 private:
  void Visibility_Timer();
  /// False when the window can't be seen; then nothing is told.
  bool appear(const std::string& code);
  bool disappear(const std::string& code);
  /// What really happened: the device and the setting.
  void tell(const std::string& code, bool shown);
  [[nodiscard]] std::int32_t controlHeight();
  /// While nothing plays it is as it was: a pause or a stop says nothing of another title.
  [[nodiscard]] bool filmPlays();

  PopupParts in_;
  TransportBar bar_;
  std::unique_ptr<base::Timer> Visibility_;
  std::int32_t windowHeight_ = 0;
  bool hasImage_ = false;
  bool film_ = false;  ///< what was laid out last was one
};

}  // namespace ui
