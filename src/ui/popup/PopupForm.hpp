#pragma once
#include <string>

#include "base/Platform.hpp"
#include "player/PlayerEvents.hpp"
#include "ui/popup/PopupControls.hpp"
#include "ui/popup/PopupLists.hpp"

namespace ui {

/// What the popup window's events lead to.
struct PopupFormParts {
  PopupWindow& window;
  PopupMenus& menus;
  PopupControls& controls;
  PopupLists& lists;
  player::WMPCalls& calls;
  player::PlayerEvents& playerEvents;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  const plugin::PluginState& state;
  base::Platform& platform;
};

/// What happens in the popup window. Minimising it means hiding it, and closing it means minimising it, so
/// that it never goes at the user's hand.
class PopupForm : public PopupWindowEvents {
 public:
  explicit PopupForm(const PopupFormParts& parts);
  ~PopupForm() override;
  PopupForm(const PopupForm&) = delete;
  PopupForm& operator=(const PopupForm&) = delete;
  PopupForm(PopupForm&&) = delete;
  PopupForm& operator=(PopupForm&&) = delete;

  void Form_Resize() override;
  bool Form_QueryUnload(std::int16_t mode) override;
  void Form_Unload() override;
  void broughtBack() override { in_.calls.SetDisplayControls(true); }
  void Image1_DblClick() override { in_.calls.SetShowCoverArt(false); }
  void wmp9_DoubleClick() override { in_.playerEvents.DoubleClick(); }
  void menuClick(const std::string& item) override;
  void listClick(const std::string& category, std::int16_t index) override {
    in_.lists.listClick(category, index);
  }
  void mediaClick(std::int16_t index) override { in_.lists.mediaClick(index); }
  void playOrPause() override { in_.controls.bar().playOrPause(); }
  void stop() override { in_.controls.bar().stop(); }
  void previous() override { in_.controls.bar().previous(); }
  void next() override { in_.controls.bar().next(); }
  void seek(double seconds) override { in_.controls.bar().seek(seconds); }
  void volume(std::int16_t percent) override { in_.controls.bar().volume(percent); }
  void mute() override { in_.controls.bar().mute(); }
  void lookedAt() override { in_.controls.bar().refresh(); }

 private:
  void logged(const std::function<void()>& procedure);

  PopupFormParts in_;
};

}  // namespace ui
