#include "desktop/popup/TrayIcon.hpp"

#include <QtCore/QElapsedTimer>
#include <QtGui/QCursor>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "desktop/popup/PlayerIcon.hpp"

namespace desktop {

using ui::TrayEvents;

/// The icon and its menu.
class TrayIcon::Shown {
 public:
  Shown(const TrayIcon& owner, const std::string& tip) : owner_(owner) {
    menu_.setTitle("Popup");
    QObject::connect(menu_.addAction(ui::TrayView::kShowHide), &QAction::triggered,
                     [this] { tell(&TrayEvents::mnuShowHide_Click); });
    QObject::connect(menu_.addAction(ui::TrayView::kMute), &QAction::triggered,
                     [this] { tell(&TrayEvents::mnuMute_Click); });
    icon_.setIcon(PlayerIcon());
    icon_.setToolTip(QString::fromStdString(tip));
    icon_.setContextMenu(&menu_);  // some desktops show it themselves
    QObject::connect(&icon_, &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
    icon_.show();
  }

  [[nodiscard]] bool canBeSeen() const {
    return icon_.isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
  }
  [[nodiscard]] QString tip() const { return icon_.toolTip(); }
  void popUpMenu() {
    if (!menu_.isVisible()) menu_.popup(QCursor::pos());
  }

 private:
  template <class... T, class... Arguments>
  void tell(void (TrayEvents::*event)(T...), Arguments... arguments) {
    base::Attempt step;
    if (owner_.events_ != nullptr) step([&] { (owner_.events_->*event)(arguments...); });
  }

  // Some desktops tell of single clicks only; two in quick succession are a double click there too.
  void activated(QSystemTrayIcon::ActivationReason reason) {
    switch (reason) {
      case QSystemTrayIcon::Trigger:
        if (sinceClick_.isValid() && !sinceClick_.hasExpired(QApplication::doubleClickInterval())) {
          sinceClick_.invalidate();
          tell(&TrayEvents::Form_MouseMove, TrayEvents::kLeftDoubleClick);
        } else {
          sinceClick_.start();
          tell(&TrayEvents::Form_MouseMove, TrayEvents::kLeftUp);
        }
        break;
      case QSystemTrayIcon::DoubleClick:
        sinceClick_.invalidate();
        tell(&TrayEvents::Form_MouseMove, TrayEvents::kLeftDoubleClick);
        break;
      case QSystemTrayIcon::Context: tell(&TrayEvents::Form_MouseMove, TrayEvents::kRightDown); break;
      default: break;
    }
  }

  const TrayIcon& owner_;
  QMenu menu_;
  QSystemTrayIcon icon_;
  QElapsedTimer sinceClick_;
};

TrayIcon::TrayIcon(QtWindows& windows) : windows_(windows), shown_(windows) {}
TrayIcon::~TrayIcon() = default;

void TrayIcon::add(const std::string& tip) {
  if (shown_) throw base::Failure(base::number::kInvalidArgument, "The icon is already there");
  windows_.enter([&] { shown_.reset(std::make_unique<Shown>(*this, tip)); });
}

void TrayIcon::remove() {
  if (!shown_) throw base::Failure(base::number::kInvalidArgument, "There is no icon");
  shown_.reset();
}

void TrayIcon::popUpMenu() {
  windows_.enter([&] {
    if (shown_) shown_->popUpMenu();
  });
}

std::string TrayIcon::tip() const {
  std::string text;
  windows_.enter([&] {
    if (shown_) text = shown_->tip().toStdString();
  });
  return text;
}

bool TrayIcon::canBeSeen() const {
  bool answer = false;
  windows_.enter([&] { answer = shown_ && shown_->canBeSeen(); });
  return answer;
}

}  // namespace desktop
