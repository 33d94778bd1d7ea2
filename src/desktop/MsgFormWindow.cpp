#include "desktop/MsgFormWindow.hpp"

#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "base/Attempt.hpp"
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

MsgFormWindow::MsgFormWindow(QtWindows& windows) : windows_(windows) {}
MsgFormWindow::~MsgFormWindow() = default;

MsgFormWindow::Dialog& MsgFormWindow::dialog() const {
  if (!dialog_) dialog_ = std::make_unique<Dialog>();
  return *dialog_;
}

void MsgFormWindow::caption(const std::string& text) {
  dialog().setWindowTitle(QString::fromStdString(text));
  windows_.changed();
}

void MsgFormWindow::MessageText(const std::string& text) {
  dialog().message.text(QString::fromStdString(text));
  dialog().setAccessibleDescription(QString::fromStdString(text));
  windows_.changed();
}

void MsgFormWindow::TimeLabel(const std::string& text) {
  dialog().time.setText(QString::fromStdString(text));
  windows_.changed();
}

void MsgFormWindow::focusOk() {
  dialog().ok.setFocus();
  windows_.changed();
}

std::int32_t MsgFormWindow::handle() const { return static_cast<std::int32_t>(dialog().winId()); }

void MsgFormWindow::showModal(ui::MsgFormEvents& events) {
  Dialog& shown = dialog();
  // The label keeps its place for the longest count from the start, so that the window does not grow.
  shown.time.setMinimumWidth(shown.time.fontMetrics().horizontalAdvance("Time remaining: 32767"));
  shown.listen(&events);
  events.Form_Load();
  shown.show();
  shown.raise();
  shown.activateWindow();
  windows_.changed();
  windows_.waitUntil([&] { return !shown.isVisible(); });
  shown.listen(nullptr);
}

void MsgFormWindow::hide() {
  if (dialog_) dialog_->hide();
  windows_.changed();
}

void MsgFormWindow::unload() { dialog_.reset(); }

}  // namespace desktop
