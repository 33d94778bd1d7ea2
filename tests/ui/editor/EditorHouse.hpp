#pragma once
#include "support/LibraryHouse.hpp"
#include "ui/editor/FakeEditorWindow.hpp"

namespace support {

struct EditorScreen {
  FakeEditorWindow window;
};

/// A house with a playlist editor over a window of the test's and a library of its own: two albums, their
/// artists and genres, and two playlists, of which "Autumn" is the first of the alphabet.
class EditorHouse : protected EditorScreen, public House {
 protected:
  EditorHouse() : House(Pages::kFakes, nullptr, &window) {
    window.journal = &journal;
    preparePlayer = [this](FakePlayer& player) { library.into(player); };
    library.addTrack("Sky", "Ann", "Blue", "Folk");
    library.addTrack("Sea", "Bob", "Blue", "Jazz");
    library.addTrack("Leaf", "Ann", "Green", "Folk");
    library.addTrack("Moss", "Bob", "Green", "Jazz");
    library.attributes["album"] = {"Blue", "Green"};
    library.attributes["artist"] = {"Bob", "Ann"};
    library.attributes["genre"] = {"Folk", "Jazz"};
  }
  void SetUp() override {
    host->silent = {"GetINISetting"};
    library.addPlaylist("Winter", {track("Moss")});
    library.addPlaylist("Autumn", {track("Sky"), track("Leaf")});
    start();
  }

  FakeMediaRef track(const std::string& title) {
    for (const FakeMediaRef& each : library.tracks)
      if (each->title == title) return each;
    ADD_FAILURE() << "no track " << title;
    return nullptr;
  }
  /// The stored playlist's titles.
  std::vector<std::string> stored(const std::string& name) {
    for (const FakePlaylistRef& list : library.playlists)
      if (list->title == name) return titles(*list);
    return {"no playlist " + name};
  }
  static std::vector<std::string> titles(const FakePlaylist& list) {
    std::vector<std::string> found;
    for (const player::MediaRef& each : list.members) found.push_back(each->name());
    return found;
  }
  FakePlaylistRef playlist(const std::string& name) {
    for (const FakePlaylistRef& list : library.playlists)
      if (list->title == name) return list;
    ADD_FAILURE() << "no playlist " << name;
    return nullptr;
  }

  /// Opens the window from the house's menu, and begins a new journal.
  void open() {
    callVxif("SelectMenu", "PlayList Editor");
    ASSERT_TRUE(state().FormReady);
    journal.clear();
    window.messages.clear();
  }
  editor::PlayListEditor& form() { return *plugin.playListEditor; }
  [[nodiscard]] const editor::EditorState& state() const { return plugin.playListEditor->state(); }
  editor::KeyedTree& tree() { return form().models().TreeView1; }
  editor::KeyedList& list() { return form().models().ListView1; }
  editor::DropBox& box() { return form().models().PlayListDropBox; }
  editor::NodeRef node(const std::string& key) { return tree().find(key); }
  editor::ItemRef item(std::size_t position) { return list().item(position); }

  /// A press and its click, as the tree tells them.
  void click(const editor::NodeRef& on, std::int16_t shift = 0) {
    tree().selectedItem(on);
    window.node = on;
    window.events->TreeView1_MouseDown(editor::kLeftButton, shift, 0, 0);
    window.events->TreeView1_NodeClick(on);
  }
  void click(const editor::ItemRef& on, std::int16_t shift = 0) {
    list().selectedItem(on);
    window.item = on;
    window.events->ListView1_GotFocus();
    window.events->ListView1_MouseDown(editor::kLeftButton, shift, 0, 0);
    window.events->ListView1_ItemClick(on);
  }
  void click(const std::string& key) { click(node(key)); }
  /// Drags what was pressed last out of a pane onto an item of the list, or beside all of them.
  void drag(Control source, const editor::ItemRef& onto) {
    if (source == Control::kTreeView1)
      window.events->TreeView1_MouseMove(editor::kLeftButton, 0, 0, 0);
    else
      window.events->ListView1_MouseMove(editor::kLeftButton, 0, 0, 0);
    window.item = onto;
    window.events->ListView1_DragOver(source, 0, 1000, editor::DragState::kEnter);
    window.events->ListView1_DragDrop(source, 0, 1000);
  }
  /// As a view edits a label.
  void editLabel(const editor::NodeRef& on, std::string text) {
    std::int16_t cancel = 0;
    window.events->TreeView1_BeforeLabelEdit(cancel);
    if (cancel != 0) return;
    window.events->TreeView1_AfterLabelEdit(cancel, text);
    if (cancel == 0) tree().text(on, text);
  }
  void key(std::int16_t code, std::int16_t shift = 0) { window.events->ListView1_KeyDown(code, shift); }
  void choose(const std::string& name) {
    for (std::size_t i = 0; i < box().count(); ++i)
      if (box().entry(i) == name) return box().listIndex(static_cast<std::int32_t>(i));
    ADD_FAILURE() << "no entry " << name;
  }

  std::vector<std::string> below(const std::string& key) {
    std::vector<std::string> found;
    for (const editor::NodeRef& child : editor::KeyedTree::children(node(key)))
      found.push_back(child->text());
    return found;
  }
  std::vector<std::string> listed() {
    std::vector<std::string> found;
    for (std::size_t i = 1; i <= list().count(); ++i) found.push_back(item(i)->text());
    return found;
  }
  std::vector<std::string> boxed() {
    std::vector<std::string> found;
    for (std::size_t i = 0; i < box().count(); ++i) found.push_back(box().entry(i));
    return found;
  }
  /// The enabled ones of "Delete", "Rename", "Up", "Down".
  [[nodiscard]] std::string buttons() const {
    std::string found;
    const std::pair<Control, const char*> each[] = {{Control::kDelete_Button, "Delete "},
                                                    {Control::kRename_Button, "Rename "},
                                                    {Control::kMoveUp_Button, "Up "},
                                                    {Control::kMoveDown_Button, "Down "}};
    for (const auto& [button, name] : each)
      if (window.disabled.count(button) == 0) found += name;
    return found;
  }
  [[nodiscard]] std::vector<std::string> changes() const {
    std::vector<std::string> found;
    for (const char* change : {"move ", "append ", "remove ", "rename ", "newPlaylist ", "add "})
      for (const std::string& line : journal.with(std::string("library: ") + change)) found.push_back(line);
    return found;
  }
  /// What a failure of that number is told as.
  [[nodiscard]] static std::string report(const std::string& procedure, std::int32_t number) {
    return "Error in procedure PlayListEditor/" + procedure + " Error # " + std::to_string(number) + ": " +
           base::DescriptionOf(number);
  }

  FakeLibrary library{journal};
};

}  // namespace support
