#pragma once
#include <QtWidgets/QWidget>

#include <functional>

#include "desktop/popup/BarButton.hpp"
#include "ui/popup/PopupWindow.hpp"

class QLabel;
class QSlider;

namespace desktop {

/// What is playing, where in it, and the buttons to move it.
class TransportPane : public QWidget {
 public:
  using Tell = std::function<void(const std::function<void(ui::PopupWindowEvents&)>&)>;

  /// Presses are told by `tell`.
  explicit TransportPane(Tell tell);

  void show(const ui::TransportShown& shown);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void build();
  void listen();
  void showTitle();
  void showTime(int seconds);

  Tell tell_;
  QString wholeTitle_;
  int duration_ = 0;
  QLabel* title_;
  QLabel* time_;
  QSlider* position_;
  QSlider* volume_;
  BarButton* play_;
  BarButton* stop_;
  BarButton* previous_;
  BarButton* next_;
  BarButton* mute_;
};

}  // namespace desktop
