#pragma once
#include "support/FakeLibrary.hpp"
#include "support/House.hpp"

namespace support {

/// A popup window that records what it is told.
class FakePopupWindow : public ui::PopupWindow {
 public:
  Journal* journal = nullptr;  ///< nothing is recorded without
  ui::PopupWindowEvents* events = nullptr;
  ui::PopupMenus* menus = nullptr;
  bool isVisible = false;
  bool isMinimised = false;
  std::int32_t minimiseFailure = 0;  ///< number of it, 0 for none
  bool obeys = true;                 ///< shows and hides when it is told to
  std::int32_t showFailure = 0;      ///< the number with which showing fails
  std::int32_t windowHandle = 55;
  float topTwips = 0;
  float leftTwips = 0;
  std::int32_t shownHeight = 0;  ///< of the control
  float windowHeight = 0;
  bool imageShown = false;
  std::vector<ui::TransportShown> transports;
  std::function<void()> onPopUp = [] {};

  void serve(ui::PopupWindowEvents* to, ui::PopupMenus* of) override {
    events = to;
    menus = of;
  }
  [[nodiscard]] float top() const override { return topTwips; }
  void top(float value) override { topTwips = value; }
  [[nodiscard]] float left() const override { return leftTwips; }
  void left(float value) override { leftTwips = value; }
  [[nodiscard]] float screenHeight() const override { return 10000; }
  [[nodiscard]] float screenWidth() const override { return 20000; }
  [[nodiscard]] bool visible() const override { return isVisible; }
  void show() override {
    told("show");
    if (showFailure != 0) throw base::Failure(showFailure);
    if (obeys) isVisible = true;
  }
  void hide() override {
    told("hide");
    if (obeys) isVisible = false;
  }
  [[nodiscard]] bool minimised() const override { return isMinimised; }
  void minimise() override {
    if (minimiseFailure != 0) throw base::Failure(minimiseFailure);
    told("minimise");
    isMinimised = true;
    if (events != nullptr) events->Form_Resize();
  }
  void normal() override {
    told("normal");
    isMinimised = false;
  }
  [[nodiscard]] std::int32_t handle() const override { return windowHandle; }
  void setWindowPos(std::int32_t insertAfter, std::int32_t height, std::int32_t flags) override {
    told("SetWindowPos " + std::to_string(insertAfter) + " " + std::to_string(height) + " " +
         std::to_string(flags));
  }
  void height(float value) override {
    told("height " + std::to_string(int(value)));
    windowHeight = value;
  }
  void controlTop(std::int32_t pixels) override { told("control top " + std::to_string(pixels)); }
  void controlHeight(std::int32_t pixels) override {
    told("control height " + std::to_string(pixels));
    shownHeight = pixels;
  }
  void imageVisible(bool value) override {
    told(value ? "Image1 visible" : "Image1 hidden");
    imageShown = value;
  }
  void image(const std::string& bytes) override {
    if (bytes == "no picture") throw base::Failure(481);
    told("Image1 = " + bytes);
  }
  void clearImage() override { told("clear Image1"); }
  void popUpMedia(std::int16_t defaultElement) override {
    told("pop up MediaListMenu, default " + std::to_string(defaultElement));
    onPopUp();
  }
  void transport(const ui::TransportShown& shown) override { transports.push_back(shown); }

 private:
  void told(const std::string& what) {
    if (journal != nullptr) journal->add("window: " + what);
  }
};

inline std::vector<std::string> CaptionsOf(const ui::ElementArray& elements) {
  std::vector<std::string> found;
  for (std::int32_t i = 0; i <= elements.upperBound(); ++i)
    found.push_back(elements.has(i) ? elements.caption(static_cast<std::int16_t>(i)) : "<none>");
  return found;
}

struct PopupScreen {
  FakePopupWindow window;
};

/// A house whose popup controls are the plug-in's own, over a window of the test's, with a library.
class PopupHouse : protected PopupScreen, public House {
 protected:
  PopupHouse() : House(Pages::kFakes, &window) {
    window.journal = &journal;
    preparePlayer = [this](FakePlayer& player) { library.into(player); };
  }
  void SetUp() override { start(); }

  /// The time within which the window follows.
  void second() { loop.advance(base::Milliseconds(1000)); }
  /// Brings the window onto the screen, and begins a new journal.
  void shown() {
    second();
    ASSERT_TRUE(window.isVisible);
    journal.clear();
  }
  /// What the host was asked about the window.
  [[nodiscard]] std::string device(const std::string& text) const {
    return "SetDeviceString(\"Q10\", \"" + std::string(kIcon) + text + "\", True)";
  }
  std::vector<std::string> captions(const std::string& list) {
    return CaptionsOf(plugin.popupMenus.list(list));
  }

  FakeLibrary library{journal};
};

}  // namespace support
