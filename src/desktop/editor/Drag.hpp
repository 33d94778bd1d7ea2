#pragma once
#include <QtCore/QPoint>
#include <QtCore/QTimer>
#include <QtGui/QColor>

#include <cstdint>
#include <optional>

#include "desktop/editor/Shared.hpp"

class QAbstractScrollArea;

namespace desktop {

/// How a pane's doings are called.
struct PaneEvents {
  using Events = ui::editor::EditorEvents;
  ui::editor::Control pane;
  void (Events::*gotFocus)();
  void (Events::*keyDown)(std::int16_t, std::int16_t);
  void (Events::*keyUp)(std::int16_t, std::int16_t);
  void (Events::*mouseDown)(std::int16_t, std::int16_t, float, float);
  void (Events::*mouseMove)(std::int16_t, std::int16_t, float, float);
  void (Events::*dragOver)(ui::editor::Control, float, float, ui::editor::DragState);
  void (Events::*dragDrop)(ui::editor::Control, float, float);
};
extern const PaneEvents kTreeEvents;
extern const PaneEvents kListEvents;

/// A place in twips from a pane's corner, as events tell it.
struct PanePlace {
  float x;
  float y;
};
PanePlace PlaceIn(const QAbstractScrollArea& pane, QPoint viewport);
/// The other way: in pixels of the viewport.
QPoint InViewport(const QAbstractScrollArea& pane, float x, float y);

/// Drags from one pane to the other, or within one. The window keeps the mouse from the press on, so that the
/// drag needs no loop of its own; its picture is the mouse's pointer.
class Drag {
 public:
  explicit Drag(Shared& shared);
  ~Drag() { end(); }
  Drag(const Drag&) = delete;
  Drag& operator=(const Drag&) = delete;
  Drag(Drag&&) = delete;
  Drag& operator=(Drag&&) = delete;

  /// Where a drag can be told.
  void panes(QAbstractScrollArea& tree, QAbstractScrollArea& list) { panes_ = {{&tree, &list}}; }

  /// The picture's key.
  void icon(const char* key, const QColor& ink);
  void begin(ui::editor::Control source);
  void end();
  [[nodiscard]] bool active() const { return source_.has_value(); }

  // What the mouse does meanwhile, in places of the screen.
  void moved(QPoint at);
  void dropped(QPoint at);
  /// As if it had been dropped on the tree, which is no target: so it ends without a trace.
  void cancelled();
  /// The button's release will be told to nobody: as if it had been let go beside the panes.
  void lost();

 private:
  /// The number of the pane at a place of the screen, -1 for none.
  [[nodiscard]] int paneAt(QPoint at) const;
  /// Takes back what shows of it, and ends it.
  void withdraw();
  void tellOver(int pane, QPoint at, ui::editor::DragState state);
  void rested();
  void showPointer();

  Shared& shared_;
  std::array<QAbstractScrollArea*, 2> panes_{};
  std::optional<ui::editor::Control> source_;
  const char* icon_ = nullptr;
  QColor ink_;
  bool shown_ = false;  // the picture
  int over_ = -1;
  QPoint last_;  // place within the pane that it is over
  QTimer rest_;  // scrolls on while the mouse rests at an edge
};

}  // namespace desktop
