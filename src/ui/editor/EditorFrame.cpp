#include "base/Value.hpp"
#include "ui/ToFront.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// The window as a frame: how it opens and closes, the long read, and how failures are told.
namespace ui::editor {

using base::Attempt;

namespace {

constexpr const char* kNotAllowed =
    "Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media Library-->Internet Site "
    "Rights\"";

}  // namespace

PlayListEditor::PlayListEditor(const EditorParts& parts) : in_(parts) {
  models_.PlayListDropBox.refuses = [this] { return reads(); };
  models_.PlayListDropBox.Click = [this] { PlayListDropBox_Click(); };
  in_.window.serve(this, &models_);
}

PlayListEditor::Reading::~Reading() {
  --editor_.readings_;
  EditorModels& models = editor_.models_;
  if (!node_ || node_->held()) models.TreeView1.selectedItem(node_);
  if (!item_ || item_->held()) models.ListView1.selectedItem(item_);
}

PlayListEditor::~PlayListEditor() { in_.window.serve(nullptr, nullptr); }

void PlayListEditor::show() {
  // The host may ask for it while it is being filled: then it comes anyway.
  if (loading_ || reads()) return;
  loading_ = true;
  Form_Load();
  Attempt step;
  step([&] { in_.window.show(); });
  loading_ = false;
}

void PlayListEditor::Form_Load() {
  bool waits = false;
  command("Form_Load", "", [&] {
    in_.state.ProgressWindowAllowed = true;
    // Other keys than those that are written when it closes. They meet because the store ignores case.
    in_.window.top(storedPlace("PlaylistEditorTop"));
    in_.window.left(storedPlace("PlaylistEditorLeft"));
    now_.WarnAnswer = MessageAnswer::kOk;
    if (now_.FormReady) return ToFront(in_.host, in_.window.handle());
    models_.PlayListDropBox.clear();
    waits = true;
    Please_Wait(true);
    in_.window.show();
    ToFront(in_.host, in_.window.handle());
    FillTreeView();
    load();
    waits = false;
    Please_Wait(false);
    now_.FormReady = true;
  });
  // A window that stays disabled behind a failure could not even be closed.
  if (waits) Please_Wait(false);
}

void PlayListEditor::load() {
  KeyedTree& tree = models_.TreeView1;
  const NodeRef lists = tree.find("PlayList");
  tree.selectedItem(lists);
  tree.expanded(lists, true);
  TreeView1_NodeClick(tree.selectedItem());
  in_.window.ensureVisible(tree.selectedItem());
  now_.CurrentNode = tree.selectedItem();
  now_.CurrentListItem.reset();
}

float PlayListEditor::storedPlace(const std::string& key) const {
  const auto place = static_cast<float>(in_.settings.number(key, 0));
  return place < 0 ? 0 : place;
}

void PlayListEditor::Form_Unload() {
  Attempt step;
  step([&] { in_.settings.save("PlayListEditorTop", in_.window.top()); });
  step([&] { in_.settings.save("PlayListEditorLeft", in_.window.left()); });
  // Its player's handles go, and with them whatever else an open window knows.
  now_ = EditorState();
  models_.TreeView1.clear();
  models_.ListView1.clear();
  models_.PlayListDropBox.clear();
}

void PlayListEditor::Close_Button_Click() {
  reported("Close_Button_Click", [&] { in_.window.close(); });
}

void PlayListEditor::Please_Wait(bool on) {
  constexpr Control kPanes[] = {Control::kTreeView1, Control::kListView1, Control::kPlayListDropBox};
  EditorWindow& window = in_.window;
  reported("Please_Wait", [&] {
    if (on) {
      window.screenPointer(EditorWindow::kHourglass);
      window.enabled(false);
      for (const Control pane : kPanes) window.visible(pane, false);
      window.visible(Control::kWaitBox, true);
    } else {
      for (const Control pane : kPanes) window.visible(pane, true);
      window.visible(Control::kWaitBox, false);
      window.enabled(true);
      window.screenPointer(EditorWindow::kDefaultPointer);
    }
    window.repaint();
  });
}

void PlayListEditor::ReportEditorError(std::int32_t number, const std::string& description,
                                       const std::string& procedure) {
  const std::string what =
      "procedure PlayListEditor/" + procedure + " Error # " + std::to_string(number) + ": " + description;
  Attempt step;
  step([&] { in_.host.WriteLog("Error", "Media Player: Could not complete " + what); });
  step([&] { in_.window.message(MessageKind::kErrorReport, "Error in " + what); });
}

void PlayListEditor::reported(const std::string& procedure, const std::function<void()>& operation) {
  if (reads()) return;
  base::Handled(operation, [&](const base::Failure& failure) {
    ReportEditorError(failure.number(), failure.description(), procedure);
  });
}

void PlayListEditor::command(const std::string& procedure, const std::string& nameInUse,
                             const std::function<void()>& operation) {
  if (reads()) return;
  base::Handled(operation, [&](const base::Failure& failure) {
    if (failure.number() == base::number::kPermissionDenied)
      plain(kNotAllowed);
    else if (failure.number() == base::number::kNameInUse && !nameInUse.empty())
      plain(nameInUse);
    else
      ReportEditorError(failure.number(), failure.description(), procedure);
  });
}

void PlayListEditor::warn(const std::string& text) {
  if (now_.WarnAnswer == MessageAnswer::kCancel) return;
  now_.WarnAnswer = in_.window.message(MessageKind::kWarning, text);
}

void PlayListEditor::enable(Control button, bool& now, bool value) {
  now = value;
  in_.window.enabled(button, value);
}

void PlayListEditor::disableButtons() {
  enable(Control::kDelete_Button, now_.Delete_Button, false);
  enable(Control::kRename_Button, now_.Rename_Button, false);
  enable(Control::kMoveUp_Button, now_.MoveUp_Button, false);
  enable(Control::kMoveDown_Button, now_.MoveDown_Button, false);
}

std::int32_t PlayListEditor::readPlayList(const std::string& name, player::PlaylistRef& handle) {
  if (handle && !gone(handle) && handle->name() == name) return catalogue::kDone;
  // The catalogue may let others in, who look at the handle too.
  player::PlaylistRef read;
  const Reading reading(*this);
  const std::int32_t status = in_.catalogue.GetGroupItems(catalogue::kPlayListCategory, name, read);
  handle = read;
  note(read);
  return status;
}

void PlayListEditor::note(const player::PlaylistRef& handle) {
  std::erase_if(stored_, [](const auto& each) { return each.expired(); });
  if (handle && handle->revision() != 0) stored_.insert(handle);
}

bool PlayListEditor::gone(const player::PlaylistRef& handle) const {
  return stored_.contains(handle) && handle->revision() == 0;
}

player::Playlist& PlayListEditor::stillThere(const player::PlaylistRef& handle) const {
  if (gone(handle)) throw base::Failure(base::number::kFileNotFound);
  return Present(handle);
}

}  // namespace ui::editor
