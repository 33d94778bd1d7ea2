#include "desktop/editor/PaneInput.hpp"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>

namespace desktop {

namespace {

using namespace ui::editor;  // NOLINT: names of keys and buttons

std::int16_t ShiftOf(Qt::KeyboardModifiers held) {
  int shift = 0;
  if (held & Qt::ShiftModifier) shift |= kShiftDown;
  if (held & Qt::ControlModifier) shift |= kCtrlDown;
  if (held & Qt::AltModifier) shift |= kAltDown;
  return static_cast<std::int16_t>(shift);
}

std::int16_t ButtonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton: return kLeftButton;
    case Qt::RightButton: return kRightButton;
    case Qt::MiddleButton: return kMiddleButton;
    default: return 0;
  }
}

/// 0 for a key without a meaning.
std::int16_t CodeOf(int key) {
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return kEnterKey;
    case Qt::Key_Control: return kCtrlKey;
    case Qt::Key_Insert: return kInsertKey;
    case Qt::Key_Delete: return kDeleteKey;
    case Qt::Key_C: return kCKey;
    case Qt::Key_V: return kVKey;
    case Qt::Key_X: return kXKey;
    case Qt::Key_F1: return kF1Key;
    default: return 0;
  }
}

}  // namespace

void PaneInput::entered() {
  if (shared_.events == nullptr || shared_.focused == told_.pane) return;
  shared_.focused = told_.pane;
  (shared_.events->*told_.gotFocus)();
}

bool PaneInput::tells(const QMouseEvent& event) { return ButtonOf(event.button()) != 0; }

void PaneInput::press(const QMouseEvent& event, QPoint at, bool onEntry, const std::function<void()>& click) {
  pressed_.reset();
  const std::int16_t button = ButtonOf(event.button());
  if (button == 0) return;
  const bool own = onEntry && button == kLeftButton;
  const unsigned before = shared_.questions;
  pressAt(
      button, ShiftOf(event.modifiers()), at, own ? click : [] {});
  // Behind a question the button is held no more.
  if (own && shared_.questions == before) pressed_ = Press{event.pos(), at};
}

void PaneInput::pressAt(std::int16_t button, std::int16_t shift, QPoint at,
                        const std::function<void()>& click) {
  if (shared_.events == nullptr) return;
  const unsigned before = shared_.questions;
  const PanePlace place = PlaceIn(pane_, at);
  (shared_.events->*told_.mouseDown)(button, shift, place.x, place.y);
  if (shared_.questions == before && shared_.events != nullptr) click();
}

void PaneInput::chosen(QPoint at, const std::function<void()>& click) {
  entered();
  pressAt(kLeftButton, 0, at, click);
}

void PaneInput::move(const QMouseEvent& event) {
  if (drag_.active()) {
    // The button's release may have gone elsewhere.
    if (!(event.buttons() & Qt::LeftButton)) return drag_.cancelled();
    return drag_.moved(event.globalPosition().toPoint());
  }
  if (!pressed_ || !(event.buttons() & Qt::LeftButton) || shared_.events == nullptr) return;
  // A hand that trembles drags nothing. And it is dragged from where it was pressed, however fast.
  if ((event.pos() - pressed_->mouse).manhattanLength() < QApplication::startDragDistance()) return;
  const PanePlace place = PlaceIn(pane_, pressed_->entry);
  // The press itself may have begun an edit.
  shared_.settle();
  if (shared_.events == nullptr) return;
  (shared_.events->*told_.mouseMove)(kLeftButton, ShiftOf(event.modifiers()), place.x, place.y);
  if (drag_.active()) drag_.moved(event.globalPosition().toPoint());
}

void PaneInput::release(const QMouseEvent& event) {
  pressed_.reset();
  if (drag_.active() && event.button() == Qt::LeftButton) drag_.dropped(event.globalPosition().toPoint());
}

bool PaneInput::keyDown(const QKeyEvent& event) {
  if (drag_.active() && event.key() == Qt::Key_Escape) {
    pressed_.reset();
    drag_.cancelled();
    return true;
  }
  shared_.settle();
  entered();
  const std::int16_t code = CodeOf(event.key());
  if (code == 0 || shared_.events == nullptr) return drag_.active();
  (shared_.events->*told_.keyDown)(code, ShiftOf(event.modifiers()));
  return drag_.active() || !searches(event);
}

void PaneInput::keyUp(const QKeyEvent& event) {
  shared_.settle();
  const std::int16_t code = CodeOf(event.key());
  if (code == 0 || event.isAutoRepeat() || shared_.events == nullptr) return;
  (shared_.events->*told_.keyUp)(code, ShiftOf(event.modifiers()));
}

bool PaneInput::searches(const QKeyEvent& event) {
  const QString text = event.text();
  return !text.isEmpty() && text[0].isPrint() &&
         !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

}  // namespace desktop
