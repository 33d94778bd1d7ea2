#pragma once
#include <cstdint>

namespace ui {

/// The progress window, with "Please wait while the media library is loading..." above its bar. Lengths are
/// in twips.
class ProgBarView {
 public:
  ProgBarView() = default;
  ProgBarView(const ProgBarView&) = delete;
  ProgBarView& operator=(const ProgBarView&) = delete;
  ProgBarView(ProgBarView&&) = delete;
  ProgBarView& operator=(ProgBarView&&) = delete;
  virtual ~ProgBarView() = default;

  static constexpr const char* kMessage1 = "Please wait while the media library is loading...";

  [[nodiscard]] virtual bool visible() const = 0;
  /// Shows the window without blocking.
  virtual void show() = 0;
  virtual void hide() = 0;
  /// `ProgressBar1`, 0 to 100.
  virtual void value(float percent) = 0;
  virtual void refresh() = 0;
  [[nodiscard]] virtual float width() const = 0;
  [[nodiscard]] virtual float height() const = 0;
  [[nodiscard]] virtual float screenWidth() const = 0;
  [[nodiscard]] virtual float screenHeight() const = 0;
  virtual void place(float top, float left) = 0;
  /// The window's handle as the host's `forcefront` takes it.
  [[nodiscard]] virtual std::int32_t handle() const = 0;
};

/// The progress window of a machine without a display.
class WindowlessProgBar : public ProgBarView {
 public:
  [[nodiscard]] bool visible() const override { return visible_; }
  void show() override { visible_ = true; }
  void hide() override { visible_ = false; }
  void value(float /*percent*/) override {}
  void refresh() override {}
  [[nodiscard]] float width() const override { return 0; }
  [[nodiscard]] float height() const override { return 0; }
  [[nodiscard]] float screenWidth() const override { return 0; }
  [[nodiscard]] float screenHeight() const override { return 0; }
  void place(float /*top*/, float /*left*/) override {}
  [[nodiscard]] std::int32_t handle() const override { return 0; }

 private:
  bool visible_ = false;
};

}  // namespace ui
