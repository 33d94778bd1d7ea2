#include "desktop/BoxWindow.hpp"

#include <QtWidgets/QDialog>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "desktop/InFront.hpp"
#include "desktop/MessagePane.hpp"

namespace desktop {

namespace {

void Fill(QDialog& dialog, base::BoxKind kind, const std::string& title, const std::string& text) {
  constexpr int kMargin = 20;
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setAccessibleDescription(QString::fromStdString(text));
  dialog.setModal(true);
  auto* message = new MessagePane(kind);
  message->text(QString::fromStdString(text));
  auto* ok = new QPushButton("&OK");
  ok->setDefault(true);
  auto* rows = new QVBoxLayout(&dialog);
  rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  rows->setSpacing(kMargin);
  rows->setSizeConstraint(QLayout::SetFixedSize);
  rows->addWidget(message);
  rows->addWidget(ok, 0, Qt::AlignRight);
  QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
  ok->setFocus();
}

}  // namespace

bool ShowBox(QtWindows& windows, base::BoxKind kind, const std::string& title, const std::string& text) {
  Owned<QDialog> dialog(windows);
  windows.enter([&] {
    dialog.reset(std::make_unique<QDialog>());
    Fill(*dialog.get(), kind, title, text);
    ShowInFront(*dialog.get());
  });
  windows.waitUntil([&] { return !dialog->isVisible(); });
  return !windows.gone();
}

}  // namespace desktop
