#include "desktop/editor/Drag.hpp"

#include <QtWidgets/QAbstractScrollArea>
#include <QtWidgets/QApplication>
#include <utility>

#include "desktop/Twips.hpp"
#include "desktop/editor/Pictures.hpp"

namespace desktop {

using ui::editor::Control;
using ui::editor::DragState;
using ui::editor::EditorEvents;

const PaneEvents kTreeEvents{
    Control::kTreeView1,
    &EditorEvents::TreeView1_GotFocus,
    &EditorEvents::TreeView1_KeyDown,
    &EditorEvents::TreeView1_KeyUp,
    &EditorEvents::TreeView1_MouseDown,
    &EditorEvents::TreeView1_MouseMove,
    &EditorEvents::TreeView1_DragOver,
    &EditorEvents::TreeView1_DragDrop,
};
const PaneEvents kListEvents{
    Control::kListView1,
    &EditorEvents::ListView1_GotFocus,
    &EditorEvents::ListView1_KeyDown,
    &EditorEvents::ListView1_KeyUp,
    &EditorEvents::ListView1_MouseDown,
    &EditorEvents::ListView1_MouseMove,
    &EditorEvents::ListView1_DragOver,
    &EditorEvents::ListView1_DragDrop,
};

namespace {

const PaneEvents& EventsOf(int pane) { return pane == 0 ? kTreeEvents : kListEvents; }

}  // namespace

PanePlace PlaceIn(const QAbstractScrollArea& pane, QPoint viewport) {
  const QPoint at = pane.viewport()->mapTo(&pane, viewport);
  return {ToTwips(at.x()), ToTwips(at.y())};
}

QPoint InViewport(const QAbstractScrollArea& pane, float x, float y) {
  return pane.viewport()->mapFrom(&pane, QPoint(ToPixels(x), ToPixels(y)));
}

Drag::Drag(Shared& shared) : shared_(shared) {
  constexpr int kPause = 80;  // milliseconds from row to row
  rest_.setInterval(kPause);
  QObject::connect(&rest_, &QTimer::timeout, &rest_, [this] { rested(); });
}

void Drag::icon(const char* key, const QColor& ink) {
  const bool another = icon_ != key;
  icon_ = key;
  ink_ = ink;
  if (active() && (another || !shown_)) showPointer();
}

void Drag::showPointer() {
  if (icon_ == nullptr) return;
  const QCursor pointer = Pictures::pointer(icon_, ink_);
  if (shown_)
    QGuiApplication::changeOverrideCursor(pointer);
  else
    QGuiApplication::setOverrideCursor(pointer);
  shown_ = true;
}

void Drag::begin(Control source) {
  // Only a button that is held can drag.
  if (active() || !(QGuiApplication::mouseButtons() & Qt::LeftButton)) return;
  source_ = source;
  over_ = -1;
  showPointer();
}

void Drag::end() {
  rest_.stop();
  source_.reset();
  over_ = -1;
  if (std::exchange(shown_, false)) QGuiApplication::restoreOverrideCursor();
}

int Drag::paneAt(QPoint at) const {
  // Another window may cover a pane.
  const QWidget* seen = QApplication::widgetAt(at);
  for (int i = 0; i < 2; ++i) {
    const QAbstractScrollArea& pane = *panes_[static_cast<std::size_t>(i)];
    if (seen == &pane || pane.isAncestorOf(seen)) return i;
  }
  return -1;
}

void Drag::tellOver(int pane, QPoint at, DragState state) {
  const QAbstractScrollArea& area = *panes_[static_cast<std::size_t>(pane)];
  const PanePlace place = PlaceIn(area, area.viewport()->mapFromGlobal(at));
  if (shared_.events == nullptr || !active()) return;
  (shared_.events->*EventsOf(pane).dragOver)(*source_, place.x, place.y, state);
}

void Drag::moved(QPoint at) {
  const int pane = paneAt(at);
  const int before = std::exchange(over_, pane);
  // It has left the pane from where it was in it last.
  if (before >= 0 && before != pane) tellOver(before, last_, DragState::kLeave);
  last_ = at;
  if (pane < 0) return rest_.stop();
  tellOver(pane, at, before == pane ? DragState::kOver : DragState::kEnter);
  if (active()) rest_.start();
}

void Drag::rested() {
  if (active() && over_ >= 0) tellOver(over_, last_, DragState::kOver);
}

void Drag::dropped(QPoint at) {
  if (!active()) return;
  moved(at);
  const std::optional<Control> source = source_;
  const int pane = over_;
  end();
  // Beside the panes it is nobody's.
  if (!source || pane < 0 || shared_.events == nullptr) return;
  const QAbstractScrollArea& area = *panes_[static_cast<std::size_t>(pane)];
  const PanePlace place = PlaceIn(area, area.viewport()->mapFromGlobal(at));
  (shared_.events->*EventsOf(pane).dragDrop)(*source, place.x, place.y);
}

void Drag::withdraw() {
  if (over_ >= 0) tellOver(over_, last_, DragState::kLeave);
  end();
  if (shared_.models != nullptr) shared_.models->ListView1.dropHighlight(nullptr);
}

void Drag::lost() {
  if (active()) withdraw();
}

void Drag::cancelled() {
  if (!active()) return;
  const Control source = *source_;
  withdraw();
  if (shared_.events != nullptr) shared_.events->TreeView1_DragDrop(source, 0, 0);
}

}  // namespace desktop
