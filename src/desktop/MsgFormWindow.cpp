#include "desktop/MsgFormWindow.hpp"

#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "desktop/InFront.hpp"
#include "desktop/MessagePane.hpp"

namespace desktop {

class MsgFormWindow::Dialog : public QDialog {
 public:
  Dialog();

  void listen(ui::MsgFormEvents* events) { events_ = events; }
  void reject() override {
    tell([](auto& events) { events.Cancel_Button_Click(); });
  }

  MessagePane message{base::BoxKind::kPlain};
  QLabel time;
  QPushButton ok{"&OK"};
  QPushButton cancel{"&Cancel"};
  QPushButton stop{"&Stop Timer"};

 private:
  /// No failure may pass through Qt.
  template <class Event>
  void tell(Event&& event) {
    base::Attempt step;
    if (events_ != nullptr) step([&] { event(*events_); });
  }
  /// There is nothing more to stop.
  void stopped() {
    tell([](auto& events) { events.Stop_Button_Click(); });
    stop.setEnabled(false);
    ok.setFocus();
  }

  ui::MsgFormEvents* events_ = nullptr;
};

MsgFormWindow::Dialog::Dialog() {
  constexpr int kMargin = 20;
  constexpr int kGap = 14;
  constexpr int kBetween = 10;
  setWindowTitle("Dialog Caption");
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setModal(true);
  time.setObjectName("TimeLabel");
  time.setForegroundRole(QPalette::PlaceholderText);
  ok.setDefault(true);
  cancel.setAutoDefault(false);
  stop.setAutoDefault(false);
  stop.setAccessibleDescription("Keeps the message until a button is pressed");
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(kBetween);
  buttons->addWidget(&time, 1);
  buttons->addSpacing(kGap);
  for (QPushButton* button : {&ok, &cancel, &stop}) buttons->addWidget(button);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  rows->setSpacing(kMargin);
  rows->setSizeConstraint(QLayout::SetFixedSize);
  rows->addWidget(&message);
  rows->addLayout(buttons);
  connect(&ok, &QPushButton::clicked, this, [this] { tell([](auto& events) { events.OK_button_Click(); }); });
  connect(&cancel, &QPushButton::clicked, this, [this] { reject(); });
  connect(&stop, &QPushButton::clicked, this, [this] { stopped(); });
}

MsgFormWindow::MsgFormWindow(QtWindows& windows) : windows_(windows), dialog_(windows) {}
MsgFormWindow::~MsgFormWindow() = default;

template <class Act>
void MsgFormWindow::touch(Act&& act) const {
  windows_.enter([&] {
    if (!dialog_) dialog_.reset(std::make_unique<Dialog>());
    act(*dialog_.get());
  });
}

void MsgFormWindow::caption(const std::string& text) {
  touch([&](Dialog& dialog) { dialog.setWindowTitle(QString::fromStdString(text)); });
}

void MsgFormWindow::MessageText(const std::string& text) {
  touch([&](Dialog& dialog) {
    dialog.message.text(QString::fromStdString(text));
    dialog.setAccessibleDescription(QString::fromStdString(text));
  });
}

void MsgFormWindow::TimeLabel(const std::string& text) {
  touch([&](Dialog& dialog) { dialog.time.setText(QString::fromStdString(text)); });
}

void MsgFormWindow::focusOk() {
  touch([](Dialog& dialog) { dialog.ok.setFocus(); });
}

std::int32_t MsgFormWindow::handle() const {
  std::int32_t handle = 0;
  touch([&](Dialog& dialog) { handle = static_cast<std::int32_t>(dialog.winId()); });
  return handle;
}

void MsgFormWindow::showModal(ui::MsgFormEvents& events) {
  touch([&](Dialog& dialog) {
    // The label keeps its place for the longest count from the start, so that the window does not grow.
    dialog.time.setMinimumWidth(dialog.time.fontMetrics().horizontalAdvance("Time remaining: 32767"));
    dialog.listen(&events);
  });
  if (!windows_.gone()) events.Form_Load();
  touch([](Dialog& dialog) { ShowInFront(dialog); });
  windows_.waitUntil([&] { return !dialog_->isVisible(); });
  touch([](Dialog& dialog) { dialog.listen(nullptr); });
  if (windows_.gone()) throw base::Failure(base::number::kWindowNotShown);
}

void MsgFormWindow::hide() {
  if (dialog_) touch([](Dialog& dialog) { dialog.hide(); });
}

void MsgFormWindow::unload() { dialog_.reset(); }

}  // namespace desktop
