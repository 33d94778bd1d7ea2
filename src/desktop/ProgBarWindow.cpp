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

ProgBarWindow::ProgBarWindow(QtWindows& windows)
    : windows_(windows), window_(std::make_unique<Window>()), bar_(new QProgressBar) {
  constexpr int kMargin = 24;
  constexpr int kGap = 14;
  constexpr int kBarWidth = 320;
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
  value(0);
}

ProgBarWindow::~ProgBarWindow() = default;

bool ProgBarWindow::visible() const { return window_->isVisible(); }

void ProgBarWindow::show() {
  window_->adjustSize();
  // It is put into its place before it shows, so that it does not jump there.
  window_->move(Screen().center() - window_->rect().center());
  window_->show();
  window_->raise();
  stale_ = true;
  windows_.changed();
}

void ProgBarWindow::hide() {
  window_->hide();
  windows_.changed();
}

void ProgBarWindow::value(float percent) {
  const int whole = std::isfinite(percent) ? std::clamp(static_cast<int>(std::lround(percent)), 0, 100) : 0;
  if (whole == bar_->value()) return;
  bar_->setValue(whole);
  stale_ = true;
  windows_.changed();
}

// A walk refreshes at every item, thousands of times, and drawing takes longer than an item: only what has
// changed on the screen is drawn.
void ProgBarWindow::refresh() {
  constexpr base::Milliseconds kPatience(200);
  if (!stale_ || !window_->isVisible()) return;
  stale_ = false;
  QWindow* frame = window_->windowHandle();
  if (!frame->isExposed()) QtWindows::drawUntil([frame] { return frame->isExposed(); }, kPatience);
  window_->repaint();
  windows_.changed();
}

float ProgBarWindow::width() const { return ToTwips(window_->frameGeometry().width()); }
float ProgBarWindow::height() const { return ToTwips(window_->frameGeometry().height()); }
float ProgBarWindow::screenWidth() const { return ToTwips(Screen().width()); }
float ProgBarWindow::screenHeight() const { return ToTwips(Screen().height()); }

void ProgBarWindow::place(float top, float left) {
  window_->move(Screen().topLeft() + QPoint(ToPixels(left), ToPixels(top)));
  windows_.changed();
}

std::int32_t ProgBarWindow::handle() const { return static_cast<std::int32_t>(window_->winId()); }

}  // namespace desktop
