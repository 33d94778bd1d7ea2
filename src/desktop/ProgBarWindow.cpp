#include "desktop/ProgBarWindow.hpp"

#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QVBoxLayout>
#include <cmath>

#include "desktop/Twips.hpp"

namespace desktop {

namespace {

class Window : public QWidget {
 public:
  Window() : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {}

 protected:
  void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

QRect Screen() { return QGuiApplication::primaryScreen()->geometry(); }

}  // namespace

ProgBarWindow::ProgBarWindow(QtWindows& windows) : windows_(windows) {
  windows_.enter([&] { build(); });
}

ProgBarWindow::~ProgBarWindow() = default;

void ProgBarWindow::build() {
  constexpr int kMargin = 24;
  constexpr int kGap = 14;
  constexpr int kBarWidth = 320;
  window_.reset(std::make_unique<Window>());
  bar_ = new QProgressBar;
  window_->setWindowTitle("Media Player");
  // The work goes on behind it, and so may the user.
  window_->setAttribute(Qt::WA_ShowWithoutActivating);
  auto* message = new QLabel(kMessage1);
  message->setObjectName("Message1");
  auto* percent = new QLabel("0 %");
  percent->setForegroundRole(QPalette::PlaceholderText);
  percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  percent->setMinimumWidth(percent->fontMetrics().horizontalAdvance("100 %"));
  bar_->setObjectName("ProgressBar1");
  bar_->setAccessibleName(kMessage1);
  bar_->setRange(0, 100);
  bar_->setTextVisible(false);
  bar_->setMinimumWidth(kBarWidth);
  QObject::connect(bar_, &QProgressBar::valueChanged, percent,
                   [percent](int value) { percent->setText(QString::number(value) + " %"); });
  auto* line = new QHBoxLayout;
  line->setSpacing(kGap);
  line->addWidget(bar_, 1);
  line->addWidget(percent);
  auto* rows = new QVBoxLayout(window_.get());
  rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  rows->setSpacing(kGap);
  rows->setSizeConstraint(QLayout::SetFixedSize);
  rows->addWidget(message);
  rows->addLayout(line);
  bar_->setValue(0);
}

bool ProgBarWindow::visible() const { return !windows_.gone() && window_->isVisible(); }

void ProgBarWindow::show() {
  stale_ = true;
  windows_.enter([&] {
    window_->adjustSize();
    // It is put into its place before it shows, so that it does not jump there.
    window_->move(Screen().center() - window_->rect().center());
    window_->show();
    window_->raise();
  });
}

void ProgBarWindow::hide() {
  windows_.enter([&] { window_->hide(); });
}

void ProgBarWindow::value(float percent) {
  const int whole = std::isfinite(percent) ? std::clamp(static_cast<int>(std::lround(percent)), 0, 100) : 0;
  if (whole == percent_) return;
  percent_ = whole;
  stale_ = true;
  windows_.enter([&] { bar_->setValue(whole); });
}

// A walk refreshes at every item, thousands of times, and drawing takes longer than an item: only what has
// changed on the screen is drawn.
void ProgBarWindow::refresh() {
  constexpr base::Milliseconds kPatience(200);
  if (!stale_ || !visible()) return;
  stale_ = false;
  windows_.enter([&] {
    QWindow* frame = window_->windowHandle();
    if (!frame->isExposed()) QtWindows::drawUntil([frame] { return frame->isExposed(); }, kPatience);
    window_->repaint();
  });
}

float ProgBarWindow::twips(const std::function<int()>& pixels) const {
  int length = 0;
  windows_.enter([&] { length = pixels(); });
  return ToTwips(length);
}

float ProgBarWindow::width() const {
  return twips([&] { return window_->frameGeometry().width(); });
}
float ProgBarWindow::height() const {
  return twips([&] { return window_->frameGeometry().height(); });
}
float ProgBarWindow::screenWidth() const {
  return twips([] { return Screen().width(); });
}
float ProgBarWindow::screenHeight() const {
  return twips([] { return Screen().height(); });
}

void ProgBarWindow::place(float top, float left) {
  windows_.enter([&] { window_->move(Screen().topLeft() + QPoint(ToPixels(left), ToPixels(top))); });
}

std::int32_t ProgBarWindow::handle() const {
  std::int32_t handle = 0;
  windows_.enter([&] { handle = static_cast<std::int32_t>(window_->winId()); });
  return handle;
}

}  // namespace desktop
