#pragma once
#include <QtCore/QPoint>
#include <QtWidgets/QAbstractScrollArea>

#include <functional>
#include <optional>

#include "desktop/editor/Drag.hpp"
#include "desktop/editor/Shared.hpp"

class QKeyEvent;
class QMouseEvent;

namespace desktop {

/// Reports what the user does to a pane with mouse and keys.
class PaneInput {
 public:
  PaneInput(QAbstractScrollArea& pane, const PaneEvents& told, Shared& shared, Drag& drag)
      : pane_(pane), told_(told), shared_(shared), drag_(drag) {}

  /// Before anything that the user does in the pane: the focus may have come without being told, as it does
  /// when the window opens.
  void entered();
  /// Whether a press of that button is told. One that is not must leave the selection alone: the commands act
  /// on what was told last.
  static bool tells(const QMouseEvent& event);
  /// A mouse button, pressed where an entry is or none, told as at that place. `click` reports the pane's own
  /// click on it.
  void press(const QMouseEvent& event, QPoint at, bool onEntry, const std::function<void()>& click);
  /// An entry was chosen by other means than the mouse, and it shows around this place of the viewport. That
  /// is told like a press there: so the commands act on what is seen to be selected.
  void chosen(QPoint at, const std::function<void()>& click);
  void move(const QMouseEvent& event);
  void release(const QMouseEvent& event);
  /// True for a key with a meaning of its own, or within a drag.
  bool keyDown(const QKeyEvent& event);
  void keyUp(const QKeyEvent& event);
  /// A key that is to be looked for among the texts.
  static bool searches(const QKeyEvent& event);

 private:
  void pressAt(std::int16_t button, std::int16_t shift, QPoint at, const std::function<void()>& click);

  QAbstractScrollArea& pane_;
  const PaneEvents& told_;
  Shared& shared_;
  Drag& drag_;
  /// With the left button on an entry, from where a drag may begin.
  struct Press {
    QPoint mouse;
    QPoint entry;
  };
  std::optional<Press> pressed_;
};

}  // namespace desktop
