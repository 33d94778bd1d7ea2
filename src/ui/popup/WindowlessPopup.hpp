#pragma once
#include "ui/popup/PopupWindow.hpp"

namespace ui {

/// The popup window of a machine without a display. It keeps its place and whether it is to be seen, so that
/// the house is told of it as of any other; there is nothing to be looked at.
class WindowlessPopup : public PopupWindow {
 public:
  void serve(PopupWindowEvents* /*events*/, PopupMenus* /*menus*/) override {}
  [[nodiscard]] float top() const override { return top_; }
  void top(float value) override { top_ = value; }
  [[nodiscard]] float left() const override { return left_; }
  void left(float value) override { left_ = value; }
  [[nodiscard]] float screenHeight() const override { return kScreenHeight; }
  [[nodiscard]] float screenWidth() const override { return kScreenWidth; }
  [[nodiscard]] bool visible() const override { return visible_; }
  void show() override { visible_ = true; }
  void hide() override { visible_ = false; }
  [[nodiscard]] bool minimised() const override { return false; }
  void minimise() override {}
  void normal() override {}
  [[nodiscard]] std::int32_t handle() const override { return 0; }
  void setWindowPos(std::int32_t /*insertAfter*/, std::int32_t /*height*/, std::int32_t /*flags*/) override {}
  void height(float /*value*/) override {}
  void controlTop(std::int32_t /*pixels*/) override {}
  void controlHeight(std::int32_t /*pixels*/) override {}
  void imageVisible(bool /*value*/) override {}
  void image(const std::string& /*bytes*/) override {}
  void clearImage() override {}
  void popUpMedia(std::int16_t /*defaultElement*/) override {}
  void transport(const TransportShown& /*shown*/) override {}

 private:
  // 1920 by 1080 pixels of 15 twips: a place saved on such a screen is kept.
  static constexpr float kScreenHeight = 1080 * 15;
  static constexpr float kScreenWidth = 1920 * 15;
  float top_ = 0;
  float left_ = 0;
  bool visible_ = false;
};

}  // namespace ui
