#include "desktop/popup/ControlsPane.hpp"

#include <QtCore/QBuffer>
#include <QtGui/QCloseEvent>
#include <QtGui/QImageReader>
#include <QtGui/QWindow>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QToolButton>
#include <algorithm>
#include <utility>

#include "base/Attempt.hpp"
#include "desktop/popup/NameList.hpp"
#include "desktop/popup/PlayerIcon.hpp"
#include "desktop/popup/ShownText.hpp"

namespace desktop {

namespace {

constexpr int kWidth = static_cast<int>(ui::PopupWindow::kWidth) / 15;
constexpr int kBarHeight = ui::PopupWindow::kBarHeight;
constexpr int kCoverHeight = ui::PopupWindow::kCoverHeight;

}  // namespace

ControlsPane::ControlsPane(Frame frame)
    : frame_(std::move(frame)),
      bar_(new QMenuBar(this)),
      cover_(new QLabel(this)),
      picture_(new QWidget(this)),
      transport_(new TransportPane([this](const auto& event) { tell(event); })),
      names_(std::make_unique<NameList>([this](const NameEntry& entry) { choose(entry); })),
      controlHeight_(kBarHeight) {
  setWindowTitle("Vantorix Media Player");
  setWindowIcon(PlayerIcon());
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
  // Behind it stands what the bar has no room for. Qt's own picture of it is black, on dark bars too.
  if (auto* more = bar_->findChild<QToolButton*>("qt_menubar_ext_button"); more != nullptr) {
    more->setIcon(QIcon());
    more->setText(QChar(0xbb));
    more->setToolButtonStyle(Qt::ToolButtonTextOnly);
    more->setAccessibleName("More");
  }
  transport_->setParent(this);
  cover_->setObjectName("Image1");
  cover_->setAccessibleName("Cover");
  cover_->setAlignment(Qt::AlignCenter);
  cover_->setToolTip("A double click takes the cover away");
  cover_->installEventFilter(this);
  cover_->hide();
  picture_->setObjectName("Picture");
  picture_->setAccessibleName("Picture");
  picture_->setAutoFillBackground(true);
  QPalette black = picture_->palette();
  black.setColor(QPalette::Window, Qt::black);
  picture_->setPalette(black);
  picture_->installEventFilter(this);
}

ControlsPane::~ControlsPane() = default;

// No failure may pass through Qt.
void ControlsPane::tell(const std::function<void(ui::PopupWindowEvents&)>& event) const {
  base::Attempt step;
  if (events_ != nullptr) step([&] { event(*events_); });
}

void ControlsPane::menuClick(const std::string& item) const {
  tell([&](ui::PopupWindowEvents& events) { events.menuClick(item); });
}

void ControlsPane::serve(ui::PopupWindowEvents* events, ui::PopupMenus* menus) {
  events_ = events;
  menus_ = menus;
  bar_->clear();
  if (menus_ != nullptr) buildMenus();
}

void ControlsPane::buildMenus() {
  for (const ui::PopupMenuItem& item : ui::PopupMenus::items()) {
    if (*item.parent != '\0') continue;
    const auto& all = ui::PopupMenus::items();
    const bool opens = std::any_of(all.begin(), all.end(), [&](const ui::PopupMenuItem& each) {
      return std::string_view(each.parent) == item.name;
    });
    if (opens) {
      addBelow(*bar_->addMenu(item.caption), item.name);
    } else {
      const std::string name = item.name;
      connect(bar_->addAction(item.caption), &QAction::triggered, this,
              [this, name] { tell([&](ui::PopupWindowEvents& events) { events.menuClick(name); }); });
    }
  }
}

void ControlsPane::addBelow(QMenu& menu, const char* parent) {
  for (const ui::PopupMenuItem& item : ui::PopupMenus::items()) {
    if (std::string_view(item.parent) != parent) continue;
    if (item.separator()) {
      menu.addSeparator();
      continue;
    }
    QAction* action = menu.addAction(item.caption);
    const std::string name = item.name;
    const std::string list = item.list;
    action->setCheckable(item.checkable);
    // What is on is asked for when it is seen, and never kept here.
    if (item.checkable)
      connect(&menu, &QMenu::aboutToShow, action, [this, action, name] {
        if (menus_ != nullptr) action->setChecked(menus_->checked(name));
      });
    connect(action, &QAction::triggered, this, [this, name, list] {
      if (!list.empty()) return openNames(list, mapToGlobal(QPoint(0, bar_->height())));
      tell([&](ui::PopupWindowEvents& events) { events.menuClick(name); });
    });
  }
}

void ControlsPane::choose(const NameEntry& entry) {
  if (menus_ == nullptr) return;
  // Held as it is now: the click may take long, and another list may be opened meanwhile.
  const std::string list = openList_;
  // The names may have been made anew since the list was opened: then it is another one's number.
  const ui::ElementArray& elements = menus_->list(list);
  if (!elements.has(entry.element) || ShownText(elements.caption(entry.element)) != entry.text) return;
  tell([&](ui::PopupWindowEvents& events) {
    if (list == ui::PopupMenus::kMedia)
      events.mediaClick(entry.element);
    else
      events.listClick(list, entry.element);
  });
}

void ControlsPane::openNames(const std::string& category, QPoint at) { openList(category, 0, at, QString()); }

void ControlsPane::popUpMedia() {
  // Titles may take long to be read: by then their reader may have put the window away, and a list that
  // takes all keys and clicks is nobody's wish any more.
  if (menus_ == nullptr || !isVisible() || isMinimized()) return;
  const QString heading = ShownText(menus_->list(ui::PopupMenus::kMedia).caption(ui::PopupMenus::kHeading));
  openList(ui::PopupMenus::kMedia, ui::PopupMenus::kPlayAll, mapToGlobal(QPoint(0, bar_->height())), heading);
}

void ControlsPane::openList(const std::string& list, std::int16_t first, QPoint at, const QString& heading) {
  if (menus_ == nullptr) return;
  const ui::ElementArray& elements = menus_->list(list);
  // Before them stand the entries that mean all of them.
  const std::int16_t firstName =
      list == ui::PopupMenus::kMedia ? ui::PopupMenus::kFirstTitle : std::int16_t{1};
  std::vector<NameEntry> entries;
  entries.reserve(static_cast<std::size_t>(elements.upperBound()) + 1);
  for (std::int32_t i = first; i <= elements.upperBound(); ++i) {
    if (!elements.has(i)) continue;
    const auto element = static_cast<std::int16_t>(i);
    entries.push_back({element, ShownText(elements.caption(element)), element >= firstName});
  }
  openList_ = list;
  names_->open(at, heading, heading.isEmpty() ? QString::fromStdString(list) : heading, std::move(entries));
}

void ControlsPane::layOut(int controlTop, int controlHeight, bool cover, int whole) {
  controlTop_ = controlTop;
  controlHeight_ = controlHeight;
  whole_ = whole;
  cover_->setVisible(cover);
  picture_->setVisible(controlHeight > kBarHeight);
  fit();
}

void ControlsPane::refit() {
  // A hidden one has no frame, and its size would be told with a place that is no frame's.
  if (whole_ > 0 && isVisible()) fit();
}

// Qt brings a minimised window back to give it a size, so that waits until its user does. It tells a place
// with it, so none is told either while the desktop is bringing the window to its own.
void ControlsPane::fit() {
  if (isMinimized() || (isVisible() && !frame_.settled())) return arrange();
  const QMargins margins = windowHandle() != nullptr ? windowHandle()->frameMargins() : QMargins();
  const QSize frame(margins.left() + margins.right(), margins.top() + margins.bottom());
  const int menu = bar_->heightForWidth(kWidth - frame.width());
  // What is in the window stays whole where a desktop's frame and menu take more than their part.
  setFixedSize(kWidth - frame.width(),
               std::max(whole_ - frame.height(), menu + controlTop_ + controlHeight_));
  arrange();
}

// Only now, or when it gets the keyboard, the desktop may have told how large its frame is.
void ControlsPane::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  refit();
  frame_.moved();
}

void ControlsPane::arrange() {
  const int menu = bar_->heightForWidth(width());
  bar_->setGeometry(0, 0, width(), menu);
  cover_->setGeometry(0, menu, width(), kCoverHeight);
  const int top = menu + controlTop_;
  picture_->setGeometry(0, top, width(), controlHeight_ - kBarHeight);
  transport_->setGeometry(0, top + controlHeight_ - kBarHeight, width(),
                          height() - top - controlHeight_ + kBarHeight);
}

void ControlsPane::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  arrange();
}

bool ControlsPane::cover(const std::string& bytes) {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  // No larger than it is shown, so that a picture of any size costs the same.
  const qreal scale = devicePixelRatioF();
  const QSize room = QSize(kWidth, kCoverHeight) * scale;
  // A picture is scaled first and turned then.
  const bool lying = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
  const QSize before = lying ? room.transposed() : room;
  if (const QSize size = reader.size();
      size.isValid() && (size.width() > before.width() || size.height() > before.height()))
    reader.setScaledSize(size.scaled(before, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
  const QImage image = reader.read();
  if (image.isNull()) return false;
  pixmap_ = QPixmap::fromImage(image);
  if (pixmap_.width() < room.width() && pixmap_.height() < room.height())
    pixmap_ = pixmap_.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  pixmap_.setDevicePixelRatio(scale);
  cover_->setPixmap(pixmap_);
  return true;
}

void ControlsPane::clearCover() {
  pixmap_ = QPixmap();
  cover_->clear();
}

void ControlsPane::closeEvent(QCloseEvent* event) {
  event->ignore();
  frame_.closed();
}

void ControlsPane::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) {
    refit();
    frame_.stateChanged();
  }
  if (event->type() == QEvent::ActivationChange) refit();
}

void ControlsPane::enterEvent(QEnterEvent* event) {
  QWidget::enterEvent(event);
  tell([](ui::PopupWindowEvents& events) { events.lookedAt(); });
}

bool ControlsPane::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonDblClick) return QWidget::eventFilter(watched, event);
  tell([&](ui::PopupWindowEvents& events) {
    if (watched == cover_)
      events.Image1_DblClick();
    else
      events.wmp9_DoubleClick();
  });
  return true;
}

}  // namespace desktop
