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
    : windows_(windows),
      canComeBack_(std::move(canComeBack)),
      pane_(windows),
      later_(windows),
      manager_(windows) {
  windows_.enter([&] {
    pane_.reset(std::make_unique<ControlsPane>(
        ControlsPane::Frame{[this] { closed(); }, [this] { stateChanged(); }, [this] { keepPlace(); },
                            [this] { return settled(); }}));
    later_.reset(std::make_unique<QTimer>());
    later_->setSingleShot(true);
    later_->setInterval(0);
    QObject::connect(later_.get(), &QTimer::timeout, pane_.get(), [this] {
      // What the manager says may be known before what it has told earlier has been read.
      if (settling_) QGuiApplication::sync();
      settling_ = false;
      agreement_.settled() ? settle() : carryOut();
    });
    manager_.reset(
        std::make_unique<ManagersWord>([this] { return static_cast<std::uint32_t>(pane_->internalWinId()); },
                                       [this](Standing now) { managerTells(now); }));
  });
}

ControlsWindow::~ControlsWindow() = default;

void ControlsWindow::serve(ui::PopupWindowEvents* events, ui::PopupMenus* menus) {
  events_ = events;
  windows_.enter([&] { pane_->serve(events, menus); });
}

void ControlsWindow::keepPlace() const {
  windows_.enter([&] {
    if (settled() && pane_->isVisible() && !pane_->isMinimized()) place_ = frame() - Screens().topLeft();
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
  windows_.enter([&] { put(); });
}

void ControlsWindow::left(float value) {
  keepPlace();
  place_.setX(Pixels(value));
  windows_.enter([&] { put(); });
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
  windows_.enter([&] { seen = act_ || pane_->isVisible(); });
  return seen;
}

// The widget's own idea of it may be of the frame that the window had when it was here before.
QPoint ControlsWindow::frame() const { return pane_->windowHandle()->framePosition(); }

void ControlsWindow::place() {
  reach();
  if (!pane_->isVisible() || frame() != Screens().topLeft() + place_) put();
}

// How large the frame will be is known only when it is there. So its place is told, and not that of what is
// in it, or the window would stand higher by its title at each start. While the desktop is bringing it,
// nothing is told: Qt would tell places of before.
void ControlsWindow::put() {
  if (pane_->isVisible() && !settled()) return;
  if (pane_->isMinimized()) return;  // Qt would bring it back for that
  const QPoint at = Screens().topLeft() + place_;
  QWindow* window = pane_->windowHandle();
  if (window == nullptr) return pane_->move(at);
  if (pane_->isVisible()) {
    const QMargins margins = window->frameMargins();
    return window->setPosition(at + QPoint(margins.left(), margins.top()));
  }
  // Both, or Qt would tell a place of its own when it shows the window.
  pane_->setGeometry(QRect(at, pane_->size()));
  window->setFramePosition(at);
}

void ControlsWindow::want(Standing standing, std::function<void()> act) {
  agreement_.want(standing);
  act_ = std::move(act);
  carryOut();
}

void ControlsWindow::carryOut() {
  if (!act_) return;
  if (!ManagersWord::speaks())
    agreement_ = {};
  else if (agreement_.mayAsk())
    agreement_.ask();
  else
    return;
  const std::function<void()> act = std::exchange(act_, {});
  const bool before = std::exchange(quiet_, true);
  act();
  quiet_ = before;
}

void ControlsWindow::managerTells(Standing now) {
  const bool waited = !agreement_.settled();
  if (agreement_.told(now)) manager_->ask(agreement_.wanted());
  // Behind what is being told: Qt has still to hear of it.
  const bool done = waited && agreement_.settled();
  settling_ = settling_ || done;
  if (done || act_) later_->start();
}

void ControlsWindow::settle() {
  if (pane_->isVisible()) place();
  pane_->refit();
  if (std::exchange(toActivate_, false) && agreement_.wanted() == Standing::kSeen) pane_->activateWindow();
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
    want(Standing::kSeen, [this] {
      if (!pane_->isMinimized()) place();
      pane_->showNormal();
      pane_->raise();
      // Qt would keep that for the moment at which the window is there, and bring it back if it is hidden by
      // then.
      toActivate_ = !agreement_.settled();
      if (!toActivate_) pane_->activateWindow();
    });
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
  // Where nobody minimises windows, one that should be would stay where it is.
  if (canComeBack_() || !HasWindowManager()) return want(Standing::kAway, [this] { pane_->hide(); });
  want(Standing::kInTaskBar, [this] {
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
  windows_.enter([&] {
    if (pane_->isMinimized()) return;
    want(Standing::kInTaskBar, [this] { pane_->setWindowState(pane_->windowState() | Qt::WindowMinimized); });
    tellState();
  });
}

void ControlsWindow::normal() {
  windows_.enter([&] {
    if (!pane_->isVisible() || !pane_->isMinimized()) return;
    want(Standing::kSeen, [this] { pane_->setWindowState(pane_->windowState() & ~Qt::WindowMinimized); });
  });
}

void ControlsWindow::closed() {
  base::Attempt step;
  if (events_ != nullptr) step([&] { events_->Form_QueryUnload(ui::PopupWindowEvents::kByTheUser); });
}

void ControlsWindow::stateChanged() {
  if (!quiet_ && agreement_.settled()) tellState();
}

void ControlsWindow::tellState() {
  if (events_ == nullptr) return;
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
  windows_.enter([&] {
    pane_->layOut(controlTop_, controlHeight_, imageVisible_, Pixels(value));
    // Told of a size, the desktop is told a place with it, which Qt takes for that of what is in the frame.
    if (!pane_->isVisible()) put();
  });
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
