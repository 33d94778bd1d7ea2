#include "desktop/popup/TransportPane.hpp"

#include <QtCore/QSignalBlocker>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "desktop/popup/ShownText.hpp"

namespace desktop {

namespace {

using Sign = BarButton::Sign;

/// A slider that goes where it is clicked, and follows until it is let go.
class Slider : public QSlider {
 public:
  Slider(const QString& name, int last) : QSlider(Qt::Horizontal) {
    setRange(0, last);
    setAccessibleName(name);
    setToolTip(name);
    setFocusPolicy(Qt::TabFocus);
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return QSlider::mousePressEvent(event);
    event->accept();
    // Held before it is moved there, so that the place is told once, when it is let go.
    setSliderDown(true);
    follow(*event);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!isSliderDown()) return QSlider::mouseMoveEvent(event);
    event->accept();
    follow(*event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return QSlider::mouseReleaseEvent(event);
    event->accept();
    setSliderDown(false);
  }
  // Nobody lets it go any more.
  void hideEvent(QHideEvent* event) override {
    const QSignalBlocker quiet(this);
    setSliderDown(false);
    QSlider::hideEvent(event);
  }

 private:
  void follow(const QMouseEvent& event) {
    setSliderPosition(QStyle::sliderValueFromPosition(minimum(), maximum(),
                                                      static_cast<int>(event.position().x()), width()));
  }
};

QString Clock(int seconds) {
  constexpr int kHour = 3600;
  constexpr int kMinute = 60;
  const QString ends = QString("%1:%2")
                           .arg(seconds % kHour / kMinute, seconds >= kHour ? 2 : 1, 10, QChar('0'))
                           .arg(seconds % kMinute, 2, 10, QChar('0'));
  return seconds >= kHour ? QString("%1:").arg(seconds / kHour) + ends : ends;
}

int Whole(double seconds) {
  constexpr double kLongest = 1e8;  // three years
  return std::isfinite(seconds) ? static_cast<int>(std::clamp(seconds, 0.0, kLongest)) : 0;
}

}  // namespace

TransportPane::TransportPane(Tell tell)
    : tell_(std::move(tell)),
      title_(new QLabel),
      time_(new QLabel),
      position_(new Slider("Position", 0)),
      volume_(new Slider("Volume", 100)),
      play_(new BarButton(Sign::kPlay, "Play")),
      stop_(new BarButton(Sign::kStop, "Stop")),
      previous_(new BarButton(Sign::kPrevious, "Previous")),
      next_(new BarButton(Sign::kNext, "Next")),
      mute_(new BarButton(Sign::kSound, "Mute")) {
  build();
  listen();
  show({});
}

void TransportPane::build() {
  constexpr int kSide = 8;
  title_->setTextFormat(Qt::PlainText);
  title_->setObjectName("Title");
  title_->setMinimumWidth(1);
  time_->setObjectName("Time");
  time_->setForegroundRole(QPalette::PlaceholderText);
  auto* first = new QHBoxLayout;
  first->setSpacing(kSide);
  first->addWidget(title_, 1);
  first->addWidget(time_);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(0);
  for (BarButton* button : {previous_, play_, next_, stop_, mute_}) buttons->addWidget(button);
  buttons->addWidget(volume_, 1);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kSide, 0, kSide, 0);
  rows->setSpacing(0);
  rows->addLayout(first);
  rows->addWidget(position_);
  rows->addLayout(buttons);
  position_->setMaximumHeight(16);
  volume_->setMaximumHeight(16);
}

void TransportPane::listen() {
  const auto on = [this](BarButton* button, void (ui::PopupWindowEvents::*event)()) {
    connect(button, &QAbstractButton::clicked, this,
            [this, event] { tell_([event](ui::PopupWindowEvents& events) { (events.*event)(); }); });
  };
  on(play_, &ui::PopupWindowEvents::playOrPause);
  on(stop_, &ui::PopupWindowEvents::stop);
  on(previous_, &ui::PopupWindowEvents::previous);
  on(next_, &ui::PopupWindowEvents::next);
  on(mute_, &ui::PopupWindowEvents::mute);
  const auto seek = [this](int seconds) {
    tell_([seconds](ui::PopupWindowEvents& events) { events.seek(seconds); });
  };
  // While the slider is held, only the time follows; where it is let go, the player goes.
  connect(position_, &QSlider::sliderMoved, this, [this](int seconds) { showTime(seconds); });
  connect(position_, &QSlider::sliderReleased, this, [this, seek] { seek(position_->value()); });
  connect(position_, &QSlider::valueChanged, this, [this, seek](int seconds) {
    if (!position_->isSliderDown()) seek(seconds);
  });
  connect(volume_, &QSlider::valueChanged, this, [this](int percent) {
    tell_([percent](ui::PopupWindowEvents& events) { events.volume(static_cast<std::int16_t>(percent)); });
  });
}

void TransportPane::show(const ui::TransportShown& shown) {
  const QSignalBlocker still(position_);
  const QSignalBlocker quiet(volume_);
  play_->become(shown.playing ? Sign::kPause : Sign::kPlay, shown.playing ? "Pause" : "Play");
  play_->setEnabled(shown.canPlay);
  stop_->setEnabled(shown.canStop);
  previous_->setEnabled(shown.canPrevious);
  next_->setEnabled(shown.canNext);
  mute_->become(shown.mute ? Sign::kMuted : Sign::kSound, shown.mute ? "Unmute" : "Mute");
  volume_->setValue(shown.volume);
  const QString title = ShownText(shown.title);
  // A place that was being chosen in one title is none in the next. And of a button that is let go behind a
  // question nobody is told.
  const bool held = (QGuiApplication::mouseButtons() & Qt::LeftButton) != 0;
  if (title != wholeTitle_ || !held) position_->setSliderDown(false);
  wholeTitle_ = title;
  showTitle();
  duration_ = Whole(shown.duration);
  if (position_->isSliderDown()) return;
  position_->setRange(0, duration_);
  position_->setEnabled(duration_ > 0);
  position_->setValue(Whole(shown.position));
  showTime(Whole(shown.position));
}

void TransportPane::showTime(int seconds) {
  const bool known = seconds > 0 || duration_ > 0;
  time_->setText(known ? Clock(seconds) + (duration_ > 0 ? " / " + Clock(duration_) : QString()) : QString());
}

void TransportPane::showTitle() {
  title_->setText(title_->fontMetrics().elidedText(wholeTitle_, Qt::ElideRight, title_->width()));
  title_->setAccessibleName(wholeTitle_);
  title_->setToolTip(TipOf(wholeTitle_));
}

void TransportPane::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  showTitle();
}

}  // namespace desktop
