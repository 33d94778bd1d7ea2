#include "desktop/popup/ControlsWindow.hpp"

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Attempt.hpp"
#include "desktop/Twips.hpp"
#include "desktop/popup/ControlsPane.hpp"
#include "desktop/popup/ScreenOwners.hpp"
#include "player/PopupView.hpp"

namespace desktop {

namespace {

constexpr std::int32_t kNoPicture = 481;

/// A length that was stored may be any number, or none.
int Pixels(float twips) {
  constexpr float kFarthest = 1e6;
  return std::isfinite(twips) ? ToPixels(std::clamp(twips, -kFarthest, kFarthest)) : 0;
}

/// All screens together; an empty place while there are none.
QRect Screens() {
  const QScreen* first = QGuiApplication::primaryScreen();
  return first != nullptr ? first->virtualGeometry() : QRect();
}

}  // namespace

ControlsWindow::ControlsWindow(QtWindows& windows, std::function<bool()> canComeBack)
    : windows_(windows), canComeBack_(std::move(canComeBack)), pane_(windows) {
  windows_.enter([&] {
    pane_.reset(std::make_unique<ControlsPane>(
        ControlsPane::Frame{[this] { closed(); }, [this] { stateChanged(); }, [this] { keepPlace(); }}));
  });
}

ControlsWindow::~ControlsWindow() = default;

void ControlsWindow::serve(ui::PopupWindowEvents* events, ui::PopupMenus* menus) {
  events_ = events;
  windows_.enter([&] { pane_->serve(events, menus); });
}

void ControlsWindow::keepPlace() const {
  windows_.enter([&] {
    if (pane_->isVisible() && !pane_->isMinimized()) place_ = pane_->pos() - Screens().topLeft();
  });
}

float ControlsWindow::top() const {
  keepPlace();
  return ToTwips(place_.y());
}

float ControlsWindow::left() const {
  keepPlace();
  return ToTwips(place_.x());
}

void ControlsWindow::top(float value) {
  keepPlace();
  place_.setY(Pixels(value));
  windows_.enter([&] { pane_->move(Screens().topLeft() + place_); });
}

void ControlsWindow::left(float value) {
  keepPlace();
  place_.setX(Pixels(value));
  windows_.enter([&] { pane_->move(Screens().topLeft() + place_); });
}

float ControlsWindow::screenHeight() const {
  int pixels = 0;
  windows_.enter([&] { pixels = Screens().height(); });
  return ToTwips(pixels);
}

float ControlsWindow::screenWidth() const {
  int pixels = 0;
  windows_.enter([&] { pixels = Screens().width(); });
  return ToTwips(pixels);
}

bool ControlsWindow::visible() const {
  if (!shown_) return false;
  bool seen = true;  // as far as it is wanted, where there is no desktop any more
  windows_.enter([&] { seen = pane_->isVisible(); });
  return seen;
}

void ControlsWindow::place() {
  reach();
  const QPoint at = Screens().topLeft() + place_;
  if (!pane_->isVisible() || pane_->pos() != at) pane_->move(at);
}

// The screen on which it stood may have gone or shrunk since.
void ControlsWindow::reach() {
  constexpr int kGrip = 40;
  const QRect grip(Screens().topLeft() + place_, QSize(pane_->width(), kGrip));
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry() & grip;
    if (seen.width() >= kGrip && seen.height() >= kGrip / 2) return;
  }
  if (QGuiApplication::primaryScreen() == nullptr) return;
  const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
  const QPoint near(
      std::clamp(grip.x(), room.left(), std::max(room.left(), room.right() + 1 - pane_->width())),
      std::clamp(grip.y(), room.top(), std::max(room.top(), room.bottom() + 1 - pane_->height())));
  place_ = near - Screens().topLeft();
}

void ControlsWindow::show() {
  bool modal = false;
  windows_.enter([&] {
    modal = QApplication::activeModalWidget() != nullptr;
    if (modal) return;
    keepPlace();
    place();
    quietly([&] {
      if (pane_->isMinimized())
        pane_->showNormal();
      else
        pane_->show();
    });
    pane_->raise();
    pane_->activateWindow();
  });
  if (modal) throw base::Failure(base::number::kWindowNotShown);
  shown_ = true;
  hidden_ = false;
}

void ControlsWindow::hide() {
  keepPlace();
  shown_ = false;
  hidden_ = true;
  windows_.enter([&] { putAway(); });
}

void ControlsWindow::iconChanged() {
  if (hidden_) windows_.enter([&] { putAway(); });
}

void ControlsWindow::putAway() {
  quietly([&] {
    // Where nobody minimises windows, one that should be would stay where it is.
    if (canComeBack_() || !HasWindowManager()) return pane_->hide();
    if (!pane_->isVisible()) place();
    pane_->showMinimized();
  });
}

// A window that is only minimised because it is hidden is none that its user has minimised: whatever comes of
// that, as that a video shows it, is for a hidden one.
bool ControlsWindow::minimised() const {
  bool answer = false;
  windows_.enter([&] { answer = !hidden_ && pane_->isMinimized(); });
  return answer;
}

void ControlsWindow::minimise() {
  keepPlace();
  windows_.enter([&] { pane_->setWindowState(pane_->windowState() | Qt::WindowMinimized); });
}

void ControlsWindow::normal() {
  windows_.enter(
      [&] { quietly([&] { pane_->setWindowState(pane_->windowState() & ~Qt::WindowMinimized); }); });
}

void ControlsWindow::quietly(const std::function<void()>& act) {
  const bool before = std::exchange(quiet_, true);
  act();
  quiet_ = before;
}

void ControlsWindow::closed() {
  base::Attempt step;
  if (events_ != nullptr) step([&] { events_->Form_QueryUnload(ui::PopupWindowEvents::kByTheUser); });
}

void ControlsWindow::stateChanged() {
  if (quiet_ || events_ == nullptr) return;
  base::Attempt step;
  if (!shown_ && !pane_->isMinimized())
    step([&] { events_->broughtBack(); });
  else if (shown_)
    step([&] { events_->Form_Resize(); });
}

std::int32_t ControlsWindow::handle() const {
  std::int32_t handle = 0;
  const bool there = windows_.enter([&] { handle = static_cast<std::int32_t>(pane_->winId()); });
  return there ? handle : 0;
}

void ControlsWindow::setWindowPos(std::int32_t insertAfter, std::int32_t /*height*/, std::int32_t /*flags*/) {
  windows_.enter([&] {
    const bool onTop = insertAfter == player::kTopmost;
    QWindow* window = pane_->windowHandle();
    if (window == nullptr || window->flags().testFlag(Qt::WindowStaysOnTopHint) == onTop) return;
    // Told to the desktop as it stands: the window's own way would take it away and show it again.
    window->setFlag(Qt::WindowStaysOnTopHint, onTop);
    pane_->overrideWindowFlags(window->flags());
  });
}

void ControlsWindow::height(float value) {
  windows_.enter([&] { pane_->layOut(controlTop_, controlHeight_, imageVisible_, Pixels(value)); });
}

void ControlsWindow::image(const std::string& bytes) {
  bool done = true;
  windows_.enter([&] { done = pane_->cover(bytes); });
  if (!done) throw base::Failure(kNoPicture, "The picture can't be read");
}

void ControlsWindow::clearImage() {
  windows_.enter([&] { pane_->clearCover(); });
}

void ControlsWindow::popUpMedia(std::int16_t /*defaultElement*/) {
  windows_.enter([&] { pane_->popUpMedia(); });
}

void ControlsWindow::transport(const ui::TransportShown& shown) {
  windows_.enter([&] { pane_->transport().show(shown); });
}

}  // namespace desktop
