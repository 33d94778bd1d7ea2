#pragma once
#include <QtGui/QImage>
#include <QtWidgets/QWidget>
#include <algorithm>
#include <cmath>
#include <map>

namespace support {

/// What one can read without effort stands out so far at least.
inline constexpr double kReadable = 4.5;

/// How light a colour is seen to be, from 0 for black to 1 for white.
inline double Luminance(QRgb colour) {
  const auto linear = [](int channel) {
    const double part = channel / 255.0;
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

/// The contrast of two colours, from 1 for the same to 21 for black and white.
inline double Contrast(QRgb one, QRgb other) {
  constexpr double kStray = 0.05;  // light of the room
  const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
  return (light + kStray) / (dark + kStray);
}

/// What a shot of the screen shows of a widget, or of a part of it.
class Drawn {
 public:
  Drawn(const QImage& shot, const QWidget& widget, const QRect& part) {
    const qreal dots = widget.devicePixelRatioF();
    const QPoint from = widget.mapToGlobal(part.topLeft());
    const QImage seen = shot.copy(QRect((QPointF(from) * dots).toPoint(), part.size() * dots) & shot.rect());
    for (int y = 0; y < seen.height(); ++y)
      for (int x = 0; x < seen.width(); ++x) ++colours_[seen.pixel(x, y)];
  }
  Drawn(const QImage& shot, const QWidget& widget) : Drawn(shot, widget, widget.rect()) {}

  /// Its most frequent colour.
  [[nodiscard]] QRgb ground() const {
    const auto most = std::max_element(colours_.begin(), colours_.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == colours_.end() ? qRgb(0, 0, 0) : most->first;
  }
  /// The contrast of that to the colour that differs most from it: 1 where nothing is drawn.
  [[nodiscard]] double standsOut() const {
    double most = 1;
    for (const auto& each : colours_) most = std::max(most, Contrast(ground(), each.first));
    return most;
  }
  [[nodiscard]] bool readable() const { return standsOut() >= kReadable; }

 private:
  std::map<QRgb, int> colours_;
};

}  // namespace support
