#include "desktop/editor/Questions.hpp"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>

namespace desktop {

using ui::editor::FormOf;
using ui::editor::MessageAnswer;
using ui::editor::MessageButtons;
using ui::editor::MessageForm;
using ui::editor::MessageIcon;

namespace {

QMessageBox::StandardButtons ButtonsOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::kOkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case MessageButtons::kYesNo: return QMessageBox::Yes | QMessageBox::No;
    default: return QMessageBox::Ok;
  }
}

QMessageBox::StandardButton ButtonOf(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::kCancel: return QMessageBox::Cancel;
    case MessageAnswer::kYes: return QMessageBox::Yes;
    case MessageAnswer::kNo: return QMessageBox::No;
    default: return QMessageBox::Ok;
  }
}

MessageAnswer AnswerOf(QMessageBox::StandardButton button) {
  switch (button) {
    case QMessageBox::Cancel: return MessageAnswer::kCancel;
    case QMessageBox::Yes: return MessageAnswer::kYes;
    case QMessageBox::No: return MessageAnswer::kNo;
    default: return MessageAnswer::kOk;
  }
}

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kExclamation: return QMessageBox::Warning;
    case MessageIcon::kCritical: return QMessageBox::Critical;
    default: return QMessageBox::NoIcon;
  }
}

/// Shows a dialog that has been made, and waits until it has gone. False when the desktop went before.
template <class Dialog>
bool Ask(QtWindows& windows, Owned<Dialog>& dialog, const std::function<std::unique_ptr<Dialog>()>& make) {
  windows.enter([&] {
    dialog.reset(make());
    dialog->setModal(true);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
  });
  windows.waitUntil([&] { return !dialog->isVisible(); });
  return !windows.gone();
}

/// "Name|*.a;*.b|All|*.*" as this desktop writes it. A file may have no dot in its name.
QStringList FiltersOf(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList patterns = parts[i + 1].split(';');
    patterns.replaceInStrings("*.*", "*");
    filters += parts[i] + " (" + patterns.join(' ') + ")";
  }
  return filters;
}

}  // namespace

MessageAnswer AskMessage(QtWindows& windows, QWidget* before, ui::editor::MessageKind kind,
                         const std::string& text) {
  const MessageForm form = FormOf(kind);
  Owned<QMessageBox> box(windows);
  const bool answered = Ask<QMessageBox>(windows, box, [&] {
    auto made = std::make_unique<QMessageBox>(IconOf(form.icon), form.title, QString::fromStdString(text),
                                              ButtonsOf(form.buttons), before);
    made->setTextFormat(Qt::PlainText);
    made->setDefaultButton(ButtonOf(form.byDefault));
    made->setAccessibleDescription(QString::fromStdString(text));
    return made;
  });
  MessageAnswer answer = form.byDefault;
  if (answered)
    windows.enter([&] {
      if (box->clickedButton() != nullptr) answer = AnswerOf(box->standardButton(box->clickedButton()));
    });
  return answer;
}

std::string AskText(QtWindows& windows, QWidget* before, const std::string& prompt, const std::string& title,
                    const std::string& typed) {
  Owned<QInputDialog> box(windows);
  const bool answered = Ask<QInputDialog>(windows, box, [&] {
    auto made = std::make_unique<QInputDialog>(before);
    made->setInputMode(QInputDialog::TextInput);
    made->setWindowTitle(QString::fromStdString(title));
    made->setLabelText(QString::fromStdString(prompt));
    made->setTextValue(QString::fromStdString(typed));
    if (auto* edit = made->findChild<QLineEdit*>()) edit->setAccessibleName(QString::fromStdString(prompt));
    return made;
  });
  std::string text;
  if (answered)
    windows.enter([&] {
      if (box->result() == QDialog::Accepted) text = box->textValue().toStdString();
    });
  return text;
}

std::string AskFile(QtWindows& windows, QWidget* before, const ui::editor::FileDialog& how) {
  Owned<QFileDialog> box(windows);
  const bool answered = Ask<QFileDialog>(windows, box, [&] {
    auto made = std::make_unique<QFileDialog>(before, "Open");
    made->setOption(QFileDialog::DontUseNativeDialog);
    made->setOption(QFileDialog::HideNameFilterDetails);
    made->setFileMode(QFileDialog::ExistingFile);
    const QStringList filters = FiltersOf(how.filter);
    made->setNameFilters(filters);
    if (how.filterIndex >= 1 && how.filterIndex <= filters.size())
      made->selectNameFilter(filters[how.filterIndex - 1]);
    made->setDirectory(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    return made;
  });
  std::string path;
  if (answered)
    windows.enter([&] {
      const QStringList chosen = box->selectedFiles();
      if (box->result() == QDialog::Accepted && !chosen.isEmpty())
        path = QFile::encodeName(chosen.front()).toStdString();
    });
  return path;
}

}  // namespace desktop
