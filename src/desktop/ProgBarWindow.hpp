#pragma once
#include <memory>

#include "desktop/QtWindows.hpp"
#include "ui/ProgBarView.hpp"

class QProgressBar;
class QWidget;

namespace desktop {

/// The progress window. It has no close button: the work behind it ends by itself.
class ProgBarWindow : public ui::ProgBarView {
 public:
  explicit ProgBarWindow(QtWindows& windows);
  ~ProgBarWindow() override;
  ProgBarWindow(const ProgBarWindow&) = delete;
  ProgBarWindow& operator=(const ProgBarWindow&) = delete;
  ProgBarWindow(ProgBarWindow&&) = delete;
  ProgBarWindow& operator=(ProgBarWindow&&) = delete;

  [[nodiscard]] bool visible() const override;
  void show() override;
  void hide() override;
  void value(float percent) override;
  void refresh() override;
  [[nodiscard]] float width() const override;
  [[nodiscard]] float height() const override;
  [[nodiscard]] float screenWidth() const override;
  [[nodiscard]] float screenHeight() const override;
  void place(float top, float left) override;
  [[nodiscard]] std::int32_t handle() const override;

 private:
  QtWindows& windows_;
  std::unique_ptr<QWidget> window_;
  QProgressBar* bar_;
  bool stale_ = false;  // what the screen shows is not what the bar says
};

}  // namespace desktop
