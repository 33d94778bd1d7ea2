#include "desktop/editor/PlayListWindow.hpp"

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Failure.hpp"
#include "desktop/Twips.hpp"
#include "desktop/editor/EditorPane.hpp"
#include "desktop/editor/Questions.hpp"

namespace desktop {

using ui::editor::ItemRef;
using ui::editor::MessageAnswer;
using ui::editor::NodeRef;

namespace {

/// A place that was stored may be any number, or none.
int PlaceInPixels(float twips) {
  constexpr float kFarthest = 1e5;
  return std::isfinite(twips) ? ToPixels(std::clamp(twips, -kFarthest, kFarthest)) : 0;
}

QPoint Corner() { return QGuiApplication::primaryScreen()->virtualGeometry().topLeft(); }

}  // namespace

PlayListWindow::PlayListWindow(QtWindows& windows) : windows_(windows), pane_(windows) {
  windows_.enter([&] { pane_.reset(std::make_unique<EditorPane>(windows_, [this] { unload(); })); });
}

PlayListWindow::~PlayListWindow() {
  windows_.enter([&] { screenPointer(kDefaultPointer); });
}

void PlayListWindow::serve(ui::editor::EditorEvents* events, ui::editor::EditorModels* models) {
  events_ = events;
  if (events == nullptr) shown_ = false;
  const bool there = windows_.enter([&] {
    if (events == nullptr) pane_->hide();
    pane_->serve(events, models);
  });
  if (!there && models == nullptr && pane_) pane_->abandon();
}

void PlayListWindow::keepPlace() const {
  windows_.enter([&] {
    if (pane_->isVisible() && !pane_->isMinimized()) place_ = pane_->pos() - Corner();
  });
}

void PlayListWindow::moveThere() {
  windows_.enter([&] { pane_->move(Corner() + place_); });
}

float PlayListWindow::top() const {
  keepPlace();
  return ToTwips(place_.y());
}

float PlayListWindow::left() const {
  keepPlace();
  return ToTwips(place_.x());
}

void PlayListWindow::top(float value) {
  keepPlace();
  place_.setY(PlaceInPixels(value));
  moveThere();
}

void PlayListWindow::left(float value) {
  keepPlace();
  place_.setX(PlaceInPixels(value));
  moveThere();
}

void PlayListWindow::show() {
  windows_.enter([&] {
    if (!pane_->isVisible()) pane_->move(Corner() + place_);
    pane_->setWindowState(pane_->windowState() & ~Qt::WindowMinimized);
    pane_->show();
    pane_->raise();
    pane_->activateWindow();
    shown_ = true;
  });
  // What follows may take long, and nothing is drawn meanwhile.
  repaint();
}

void PlayListWindow::close() {
  if (!shown_) return;
  const bool there = windows_.enter([&] { pane_->close(); });
  if (!there) unload();
}

void PlayListWindow::unload() {
  if (!std::exchange(shown_, false)) return;
  keepPlace();
  if (events_ != nullptr) events_->Form_Unload();
}

std::int32_t PlayListWindow::handle() const {
  std::int32_t handle = 0;
  const bool there = windows_.enter([&] { handle = static_cast<std::int32_t>(pane_->winId()); });
  return there ? handle : 0;
}

void PlayListWindow::enabled(bool value) {
  windows_.enter([&] { pane_->enable(value); });
}

void PlayListWindow::repaint() {
  constexpr base::Milliseconds kPatience(200);
  windows_.enter([&] {
    if (!pane_->isVisible()) return;
    if (!pane_->drawn()) QtWindows::drawUntil([&] { return pane_->drawn(); }, kPatience);
    pane_->repaint();
  });
}

void PlayListWindow::screenPointer(std::int16_t pointer) {
  const bool hourglass = pointer == kHourglass;
  if (hourglass == std::exchange(hourglass_, hourglass)) return;
  windows_.enter([&] {
    if (hourglass)
      QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
      QGuiApplication::restoreOverrideCursor();
  });
}

void PlayListWindow::visible(Control control, bool value) {
  windows_.enter([&] { pane_->showControl(control, value); });
}

void PlayListWindow::enabled(Control button, bool value) {
  windows_.enter([&] { pane_->control(button).setEnabled(value); });
}

void PlayListWindow::focus(Control pane) {
  windows_.enter([&] { pane_->focusOn(pane); });
}

NodeRef PlayListWindow::nodeAt(float x, float y) {
  NodeRef node;
  windows_.enter([&] { node = pane_->tree().nodeAt(InViewport(pane_->tree(), x, y)); });
  return node;
}

ItemRef PlayListWindow::itemAt(float x, float y) {
  ItemRef item;
  windows_.enter([&] { item = pane_->list().itemAt(InViewport(pane_->list(), x, y)); });
  return item;
}

void PlayListWindow::ensureVisible(const NodeRef& node) {
  windows_.enter([&] { pane_->tree().bring(node); });
}

void PlayListWindow::ensureVisible(const ItemRef& item) {
  windows_.enter([&] { pane_->list().bring(item); });
}

void PlayListWindow::startLabelEdit() {
  windows_.enter([&] { pane_->tree().editLabel(); });
}

void PlayListWindow::beginDrag(Control pane) {
  windows_.enter([&] { pane_->drag().begin(pane); });
}

void PlayListWindow::endDrag(Control /*pane*/) {
  windows_.enter([&] { pane_->drag().end(); });
}

void PlayListWindow::dragIcon(Control /*pane*/, const char* image) {
  windows_.enter([&] { pane_->drag().icon(image, pane_->ink()); });
}

void PlayListWindow::mousePointer(Control pane, std::int16_t pointer) {
  windows_.enter([&] {
    auto& area = static_cast<QAbstractScrollArea&>(pane_->control(pane));
    if (pointer == kDefaultPointer)
      area.viewport()->unsetCursor();
    else
      area.viewport()->setCursor(pointer == kHourglass ? Qt::WaitCursor : Qt::ArrowCursor);
  });
}

QWidget* PlayListWindow::asking() {
  ++pane_->shared().questions;
  return shown_ && pane_->isVisible() ? pane_.get() : nullptr;
}

MessageAnswer PlayListWindow::message(ui::editor::MessageKind kind, const std::string& text) {
  return windows_.gone() ? FormOf(kind).byDefault : AskMessage(windows_, asking(), kind, text);
}

std::string PlayListWindow::inputBox(const std::string& prompt, const std::string& title,
                                     const std::string& typed) {
  return windows_.gone() ? std::string() : AskText(windows_, asking(), prompt, title, typed);
}

std::string PlayListWindow::openFile(const ui::editor::FileDialog& how) {
  std::string path = windows_.gone() ? std::string() : AskFile(windows_, asking(), how);
  if (path.empty() && how.CancelError) throw base::Failure(ui::editor::FileDialog::kCancelled);
  return path;
}

}  // namespace desktop
