#pragma once
#include "player/PopupView.hpp"

namespace bench {

/// A popup window that costs nothing.
class SilentPopup : public player::PopupView {
 public:
  [[nodiscard]] float top() const override { return top_; }
  void top(float value) override { top_ = value; }
  [[nodiscard]] float left() const override { return left_; }
  void left(float value) override { left_ = value; }
  [[nodiscard]] float screenHeight() const override { return kScreenHeight; }
  [[nodiscard]] float screenWidth() const override { return kScreenWidth; }
  [[nodiscard]] bool visible() const override { return false; }
  void setWindowPos(std::int32_t /*insertAfter*/, std::int32_t /*flags*/) override {}
  void windowHeight(std::int32_t /*value*/) override {}
  void image(const std::string& /*bytes*/) override {}
  void clearImage() override {}
  void LayoutControls() override {}
  void check(const std::string& /*menuItem*/, bool /*value*/) override {}
  void armVisibility() override {}

 private:
  // 1920 by 1080 pixels of 15 twips: a place saved on such a screen is kept.
  static constexpr float kScreenHeight = 1080 * 15;
  static constexpr float kScreenWidth = 1920 * 15;
  float top_ = 0;
  float left_ = 0;
};

}  // namespace bench
