#pragma once
#include <QtWidgets/QAbstractButton>

namespace desktop {

/// A button of the transport bar, whose sign is drawn in the colours of the desktop at any size.
class BarButton : public QAbstractButton {
 public:
  enum class Sign { kPlay, kPause, kPrevious, kNext, kStop, kSound, kMuted };

  BarButton(Sign sign, const QString& name);

  /// Its sign, and what it is called.
  void become(Sign sign, const QString& name);
  [[nodiscard]] Sign sign() const { return sign_; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Sign sign_;
};

}  // namespace desktop
