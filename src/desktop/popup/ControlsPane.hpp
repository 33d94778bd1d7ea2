#pragma once
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <string>

#include "desktop/popup/TransportPane.hpp"
#include "ui/popup/PopupMenus.hpp"
#include "ui/popup/PopupWindow.hpp"

class QLabel;
class QMenu;
class QMenuBar;

namespace desktop {

class NameList;
struct NameEntry;

/// What is in the popup window: its menu bar, the cover, the place for a moving picture, the transport bar.
/// All lengths are in pixels of the desktop's scale.
class ControlsPane : public QWidget {
 public:
  /// What the window's frame tells.
  struct Frame {
    std::function<void()> closed;
    std::function<void()> stateChanged;
    std::function<void()> moved;
    /// Whether what is known of the frame holds: while the desktop is bringing the window, it may be
    /// another's.
    std::function<bool()> settled;
  };

  explicit ControlsPane(Frame frame);
  ~ControlsPane() override;
  ControlsPane(const ControlsPane&) = delete;
  ControlsPane& operator=(const ControlsPane&) = delete;
  ControlsPane(ControlsPane&&) = delete;
  ControlsPane& operator=(ControlsPane&&) = delete;

  void serve(ui::PopupWindowEvents* events, ui::PopupMenus* menus);
  /// Where the control begins below the menu bar, and how high it is; `whole` is the window with its frame.
  void layOut(int controlTop, int controlHeight, bool cover, int whole);
  /// To be called when the frame is known, or another.
  void refit();
  /// False for what is no picture.
  bool cover(const std::string& bytes);
  void clearCover();
  void popUpMedia();
  /// As if the user had chosen that item of the menus.
  void menuClick(const std::string& item) const;
  [[nodiscard]] TransportPane& transport() { return *transport_; }
  /// Where somebody may show a moving picture: a child of this place is as large as it is.
  [[nodiscard]] QWidget& picture() { return *picture_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void tell(const std::function<void(ui::PopupWindowEvents&)>& event) const;
  void buildMenus();
  void addBelow(QMenu& menu, const char* parent);
  void choose(const NameEntry& entry);
  void openNames(const std::string& category, QPoint at);
  void openList(const std::string& list, std::int16_t first, QPoint at, const QString& heading);
  void fit();
  void arrange();

  Frame frame_;
  ui::PopupWindowEvents* events_ = nullptr;
  ui::PopupMenus* menus_ = nullptr;
  std::string openList_;  // the one that the list shows
  QMenuBar* bar_;
  QLabel* cover_;
  QWidget* picture_;
  TransportPane* transport_;
  std::unique_ptr<NameList> names_;
  QPixmap pixmap_;
  int controlTop_ = 0;
  int controlHeight_;
  int whole_ = 0;
};

}  // namespace desktop
