#include "desktop/popup/TrayIcon.hpp"

#include <QtCore/QElapsedTimer>
#include <QtGui/QCursor>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "desktop/popup/NotificationArea.hpp"
#include "desktop/popup/PlayerIcon.hpp"

namespace desktop {

using ui::TrayEvents;

/// The icon and its menu.
class TrayIcon::Shown {
 public:
  Shown(const TrayIcon& owner, const std::string& tip) : owner_(owner) {
    menu_.setTitle("Popup");
    QObject::connect(menu_.addAction(ui::TrayView::kShowHide), &QAction::triggered,
                     [this] { owner_.tell([](TrayEvents& events) { events.mnuShowHide_Click(); }); });
    QObject::connect(menu_.addAction(ui::TrayView::kMute), &QAction::triggered,
                     [this] { owner_.tell([](TrayEvents& events) { events.mnuMute_Click(); }); });
    icon_.setIcon(PlayerIcon());
    icon_.setToolTip(QString::fromStdString(tip));
    icon_.setContextMenu(&menu_);  // some desktops show it themselves
    QObject::connect(&icon_, &QSystemTrayIcon::activated,
                     [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
    icon_.show();
  }

  void popUpMenu() {
    if (!menu_.isVisible()) menu_.popup(QCursor::pos());
  }

 private:
  void message(std::int32_t number) {
    owner_.tell([number](TrayEvents& events) { events.Form_MouseMove(number); });
  }

  // Some desktops tell of single clicks only; two in quick succession are a double click there too.
  void activated(QSystemTrayIcon::ActivationReason reason) {
    switch (reason) {
      case QSystemTrayIcon::Trigger:
        if (sinceClick_.isValid() && !sinceClick_.hasExpired(QApplication::doubleClickInterval())) {
          sinceClick_.invalidate();
          message(TrayEvents::kLeftDoubleClick);
        } else {
          sinceClick_.start();
          message(TrayEvents::kLeftUp);
        }
        break;
      case QSystemTrayIcon::DoubleClick:
        sinceClick_.invalidate();
        message(TrayEvents::kLeftDoubleClick);
        break;
      case QSystemTrayIcon::Context: message(TrayEvents::kRightDown); break;
      default: break;
    }
  }

  const TrayIcon& owner_;
  QMenu menu_;
  QSystemTrayIcon icon_;
  QElapsedTimer sinceClick_;
};

TrayIcon::TrayIcon(QtWindows& windows) : windows_(windows), area_(windows), shown_(windows) {}
TrayIcon::~TrayIcon() = default;

void TrayIcon::later(std::function<void()> act) const {
  windows_.later([act = std::move(act), alive = std::weak_ptr<bool>(alive_)] {
    if (!alive.expired()) act();
  });
}

void TrayIcon::tell(std::function<void(TrayEvents&)> event) const {
  later([this, event = std::move(event)] {
    base::Attempt step;
    if (events_ != nullptr) step([&] { event(*events_); });
  });
}

void TrayIcon::add(const std::string& tip) {
  if (tip_) throw base::Failure(base::number::kInvalidArgument, "The icon is already there");
  tip_ = tip;
  windows_.enter([&] { area_.reset(std::make_unique<NotificationArea>([this] { areaChanged(); })); });
  windows_.enter([&] { areaChanged(); });
}

void TrayIcon::remove() {
  if (!tip_) throw base::Failure(base::number::kInvalidArgument, "There is no icon");
  tip_.reset();
  shown_.reset();
  area_.reset();
  if (changed_) later([this] { changed_(); });
}

// Qt chooses between bus and screen for all icons of the process when it makes the first one. So that is made
// when somebody is there to take it, and no earlier.
void TrayIcon::areaChanged() {
  if (tip_ && !shown_ && area_->known() && (area_->onBus() || area_->onScreen())) {
    if (!way_) way_ = area_->onBus() ? Way::kOverBus : Way::kOnScreen;
    shown_.reset(std::make_unique<Shown>(*this, *tip_));
  }
  if (changed_) later([this] { changed_(); });
}

void TrayIcon::popUpMenu() {
  windows_.enter([&] {
    if (shown_) shown_->popUpMenu();
  });
}

bool TrayIcon::canBeSeen() const {
  if (windows_.gone() || !shown_) return false;
  return *way_ == Way::kOverBus ? area_->onBus() : area_->onScreen();
}

}  // namespace desktop
