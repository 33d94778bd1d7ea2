#include "desktop/popup/PictureView.hpp"

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <utility>

#include "base/Attempt.hpp"
#include "desktop/popup/ControlsPane.hpp"
#include "desktop/popup/PictureWidget.hpp"

namespace desktop {

PictureView::PictureView(QtWindows& windows, ControlsPane& pane, base::MovingPicture& picture)
    : windows_(windows), pane_(pane), picture_(picture), small_(windows), full_(windows), wakeful_(windows) {
  windows_.enter([this] {
    small_.reset(std::make_unique<PictureWidget>(
        &pane_.picture(), [this] { followSize(); }, [] {}));
    small_->show();
    wakeful_.reset(std::make_unique<WakefulScreen>(pane_));
  });
  picture_.tell([this] { changed(); });
}

PictureView::~PictureView() {
  picture_.tell({});
  picture_.seen({});
  full_.reset();
  small_.reset();
}

void PictureView::changed() {
  const bool there = windows_.enter([this] {
    followFull();
    PictureWidget* where = filling_ ? full_.get() : small_.get();
    if (where != nullptr) where->show(picture_.frame());
  });
  // The desktop has gone, and who sat before it sees nothing any more.
  if (!there) picture_.seen({});
}

void PictureView::followFull() {
  if (picture_.full() == filling_) return;
  filling_ = !filling_;
  wakeful_->keep(filling_);
  if (!filling_) {
    full_->show(base::FrameRef());
    full_->hide();
    return followSize();
  }
  if (!full_) {
    full_.reset(std::make_unique<PictureWidget>(
        nullptr, [this] { followSize(); }, [this] { pane_.menuClick("ShowFullScreenVideo"); }));
    full_->setWindowTitle("Vantorix Media Player");
    full_->setWindowIcon(pane_.windowIcon());
    full_->setCursor(Qt::BlankCursor);
    full_->setWindowFlag(Qt::WindowStaysOnTopHint);  // as the popup window and a panel may do
  }
  if (pane_.screen() != nullptr) full_->setGeometry(pane_.screen()->geometry());
  full_->showFullScreen();
  full_->raise();
  full_->activateWindow();
}

void PictureView::followSize() {
  if (windows_.gone()) return;
  const PictureWidget* where = filling_ ? full_.get() : small_.get();
  // No failure may pass through Qt.
  base::Attempt step;
  step([&] { picture_.seen(where == nullptr ? base::PictureSize() : where->room()); });
}

}  // namespace desktop
