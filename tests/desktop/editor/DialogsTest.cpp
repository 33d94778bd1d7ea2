// What the playlist editor asks its user.
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>
#include <fstream>

#include "EditorScene.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

using support::FailureNumberOf;
using ui::editor::FileDialog;
using ui::editor::MessageAnswer;
using ui::editor::MessageKind;

namespace {

class Questions : public support::EditorScene {
 protected:
  MessageAnswer answerOf(MessageKind kind, const std::string& pressed) {
    then([pressed](QWidget&) { key(pressed); });
    return window->message(kind, "Is \"A & <b>\" a name?");
  }
};

}  // namespace

TEST_F(Questions, EachKindHasItsButtonsItsDefaultAndItsTitle) {
  open();
  then([&](QWidget& asked) {
    auto& box = dynamic_cast<QMessageBox&>(asked);
    EXPECT_EQ(box.windowTitle(), "Confirm PlayList Deletion");
    EXPECT_EQ(box.text(), "Delete \"Autumn\"?");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(box.standardButton(box.defaultButton()), QMessageBox::No);
    EXPECT_TRUE(box.isModal());
    EXPECT_GT(box.button(QMessageBox::Yes)->width(), 70) << "not as narrow as the buttons of the window";
    support::ScreenShot("editor-confirm");
    key("Return");
  });
  EXPECT_EQ(window->message(MessageKind::kConfirmation, "Delete \"Autumn\"?"), MessageAnswer::kNo);
  EXPECT_EQ(answerOf(MessageKind::kConfirmation, "alt+y"), MessageAnswer::kYes);
  EXPECT_EQ(answerOf(MessageKind::kConfirmation, "Escape"), MessageAnswer::kNo);
  EXPECT_EQ(answerOf(MessageKind::kWarning, "Return"), MessageAnswer::kOk);
  EXPECT_EQ(answerOf(MessageKind::kWarning, "Escape"), MessageAnswer::kCancel);
  EXPECT_EQ(answerOf(MessageKind::kPlain, "Escape"), MessageAnswer::kOk);
  EXPECT_EQ(answerOf(MessageKind::kErrorReport, "alt+F4"), MessageAnswer::kOk);
}

TEST_F(Questions, TheHouseGoesOnMeanwhile) {
  open();
  constexpr int kTurns = 5;
  int left = 0;
  const auto house = loop.makeTimer(base::Milliseconds(1), [&] {
    if (left > 0 && --left == 0) key("Return");
  });
  house->enabled(true);
  then([&](QWidget&) { left = kTurns; });
  EXPECT_EQ(window->message(MessageKind::kPlain, "Wait"), MessageAnswer::kOk);
  EXPECT_EQ(left, 0) << "its timer ended the question";
}

TEST_F(Questions, ANameIsAskedForAndCancelIsNone) {
  open();
  then([&](QWidget& asked) {
    EXPECT_EQ(asked.windowTitle(), "New PlayList");
    type("  My list");
    key("Return");
  });
  EXPECT_EQ(window->inputBox("Enter the new PlayList name:", "New PlayList", ""), "  My list");
  then([&](QWidget&) {
    type("Never");
    key("Escape");
  });
  EXPECT_EQ(window->inputBox("Enter the new PlayList name:", "New PlayList", ""), "");
}

TEST_F(Questions, AFileIsChosenAndCancelIsAFailureOfItsOwn) {
  open();
  const support::TempFolder folder;
  const std::string file = (folder.path() / "no dot").string();
  std::ofstream(file) << "x";
  FileDialog how;
  how.CancelError = true;
  how.filter = "Audio Files|*.wav;*.mp3|All Files (*.*)|*.*";
  how.filterIndex = 1;
  then([&](QWidget& asked) {
    auto& dialog = dynamic_cast<QFileDialog&>(asked);
    EXPECT_EQ(dialog.nameFilters(), QStringList({"Audio Files (*.wav *.mp3)", "All Files (*.*) (*)"}));
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    type(file);
    key("Return");
  });
  EXPECT_EQ(window->openFile(how), file);
  then([&](QWidget&) { key("Escape"); });
  EXPECT_EQ(FailureNumberOf([&] { window->openFile(how); }), FileDialog::kCancelled);
}

TEST_F(Questions, WhenTheScreenGoesTheDefaultIsTheAnswer) {
  open();
  then([&](QWidget&) { screen.end(); });
  EXPECT_EQ(window->message(MessageKind::kConfirmation, "Delete it?"), MessageAnswer::kNo);
  EXPECT_EQ(window->message(MessageKind::kWarning, "Again"), MessageAnswer::kOk);
  EXPECT_EQ(window->handle(), 0);
  models.TreeView1.clear();
  window->close();
  EXPECT_TRUE(journal.has("unload"));
}
