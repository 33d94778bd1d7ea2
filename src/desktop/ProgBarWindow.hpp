#pragma once
#include <functional>

#include <QtWidgets/QWidget>

#include "desktop/QtWindows.hpp"
#include "ui/ProgBarView.hpp"

class QProgressBar;

namespace desktop {

/// The progress window. It has no close button: the work behind it ends by itself. When the desktop has gone
/// it is not visible and as large as nothing.
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
  void build();
  [[nodiscard]] float twips(const std::function<int()>& pixels) const;

  QtWindows& windows_;
  Owned<QWidget> window_{windows_};
  QProgressBar* bar_ = nullptr;
  int percent_ = 0;
  bool stale_ = false;  // what the screen shows is not what the bar says
};

}  // namespace desktop
