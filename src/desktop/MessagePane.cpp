#include "desktop/MessagePane.hpp"

#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <algorithm>

namespace desktop {

namespace {

/// A filled circle with a character.
class Badge : public QWidget {
 public:
  explicit Badge(base::BoxKind kind) : critical_(kind == base::BoxKind::kCritical) {
    setFixedSize(kSize, kSize);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    constexpr QRgb kBad = 0xffb42318;
    constexpr int kCharacter = 24;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(critical_ ? QColor(kBad) : palette().color(QPalette::Highlight));
    painter.drawEllipse(rect());
    QFont font = painter.font();
    font.setPixelSize(kCharacter);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(critical_ ? QColor(Qt::white) : palette().color(QPalette::HighlightedText));
    painter.drawText(rect(), Qt::AlignCenter, critical_ ? "!" : "i");
  }

 private:
  static constexpr int kSize = 40;
  bool critical_;
};

}  // namespace

MessagePane::MessagePane(base::BoxKind kind) : text_(new QLabel), area_(new QScrollArea) {
  constexpr int kGap = 16;
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  text_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  text_->setObjectName("MessageText");
  area_->setWidget(text_);
  area_->setWidgetResizable(true);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->viewport()->setAutoFillBackground(false);
  text_->setAutoFillBackground(false);
  auto* line = new QHBoxLayout(this);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(kGap);
  line->addWidget(new Badge(kind), 0, Qt::AlignTop);
  line->addWidget(area_);
  line->addStretch(1);
}

void MessagePane::text(const QString& value) {
  constexpr int kNarrowest = 300;
  constexpr int kWidest = 480;
  constexpr int kLowest = 40;
  constexpr int kSpare = 2;
  text_->setText(value);
  text_->setAccessibleName(value);
  const QSize screen = QWidget::screen()->availableSize();
  const int widest = std::min(kWidest, screen.width() * 2 / 3);
  const QRect wanted =
      text_->fontMetrics().boundingRect(0, 0, widest, screen.height() * 100, Qt::TextWordWrap, value);
  const int highest = screen.height() / 2;
  int width = std::clamp(wanted.width() + kSpare, std::min(kNarrowest, widest), widest + kSpare);
  const bool scrolls = wanted.height() > highest;
  if (scrolls) width += area_->verticalScrollBar()->sizeHint().width();
  area_->setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::NoFocus);  // to be read by keyboard too
  area_->setFixedSize(width, std::clamp(wanted.height() + kSpare, kLowest, highest));
}

}  // namespace desktop
