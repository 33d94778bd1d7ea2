#pragma once
#include <QtWidgets/QMessageBox>
#include <cerrno>

#include "EditorScene.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "support/TempFolder.hpp"
#include "ui/editor/EditorGround.hpp"

namespace support {

inline engine::Config LibraryIn(const std::string& folder) {
  engine::Config config;
  config.dataFolder = folder + "/data";
  return config;
}

/// The playlist editor over playlists in files: "Autumn" and "Winter", and the album "Blue".
class WholeEditor : public EditorScene {
 private:
  std::string root_;

 protected:
  using Names = std::vector<std::string>;

  /// `root`: the folder that holds everything; by default one that goes with it.
  explicit WholeEditor(const std::string& root = {}) : root_(root) {
    host.Host = host.HostCallback = std::make_shared<QuietHost>();
    stale.markCategories();
    for (const char* title : {"Sky", "Sea", "Sun"})
      titles.addTrack(title, "Ann", "Blue", "Folk")->url = std::string("http://house/") + title;
    titles.attributes["album"] = {"Blue"};
    make("Autumn", {"Sky", "Sea"});
    make("Winter", {"Sun"});
    editor.emplace(ui::editor::EditorParts{*window, catalogue, xref, form, stale, host, settings, state});
  }

  [[nodiscard]] std::string root() const { return root_.empty() ? folder.path().string() : root_; }
  void make(const std::string& name, const Names& members) {
    const auto list = stored.newPlaylist(name);
    for (const std::string& title : members) list->appendItem(titles.getByName(title)->item(0));
  }
  player::PlaylistRef named(const std::string& name) {
    const auto found = stored.getByName(name);
    return found->count() > 0 ? found->item(0) : nullptr;
  }
  /// What another program would find in the playlist's file.
  Names members(const std::string& name) {
    engine::StoredPlaylists others(loop, root() + "/playlists", library,
                                   {[] {}, [] {}, [](const std::string&) {}});
    Names found;
    const auto all = others.getByName(name);
    if (all->count() == 0) return {"no playlist " + name};
    for (std::int32_t i = 0; i < all->item(0)->count(); ++i) found.push_back(all->item(0)->item(i)->name());
    return found;
  }
  bool becomes(const std::string& name, const Names& wanted) {
    return until([&] { return members(name) == wanted; });
  }
  Names listed() {
    Names found;
    const ui::editor::KeyedList& list = editor->models().ListView1;
    for (std::size_t i = 1; i <= list.count(); ++i) found.push_back(list.item(i)->text());
    return found;
  }
  ui::editor::KeyedTree& tree() { return editor->models().TreeView1; }
  [[nodiscard]] std::string current() const {
    return editor->state().CurrentNode ? editor->state().CurrentNode->text() : std::string();
  }
  void open() {
    editor->show();
    ASSERT_TRUE(until([&] { return pane().isActiveWindow() && pane().windowHandle()->isExposed(); }));
    ASSERT_TRUE(until([&] { return pane().tree().isVisible(); }));
  }
  void clickNode(const QString& text) {
    clickAt(node(text));
    ASSERT_TRUE(until([&] { return current() == text.toStdString(); }));
  }
  void clickItem(const QString& text) {
    clickAt(item(text));
    ASSERT_TRUE(until([&] {
      const auto now = editor->state().CurrentListItem;
      return now && now->text() == text.toStdString();
    }));
  }
  void drag(QPoint from, QPoint to) {
    mouseTo(from);
    tool({"mousedown", "1"});
    mouseTo(from + QPoint(30, 2));
    ASSERT_TRUE(until([&] { return editor->state().Dragging; }));
    mouseTo(to);
    tool({"mouseup", "1"});
    ASSERT_TRUE(until([&] { return !editor->state().Dragging; }));
  }
  /// Opens the album, and answers where a title of it stands.
  QPoint ofBlue(const QString& title) {
    tree().expanded(tree().find("Album"), true);
    clickNode("Blue");
    return node(title);
  }
  /// Answers the next question, and keeps what it says.
  void answer(const std::string& pressed) {
    then([this, pressed](QWidget& asked) {
      said = dynamic_cast<QMessageBox&>(asked).text().toStdString();
      key(pressed);
    });
  }
  /// Types over the node's label, whose edit goes on.
  void editLabelOf(const QString& name, const std::string& text) {
    clickNode(name);
    clickAt(middleOf(Control::kRename_Button));
    ASSERT_TRUE(until([&] { return pane().tree().findChild<QLineEdit*>() != nullptr; }));
    type(text);
  }
  void choose(const std::string& name) {
    ui::editor::DropBox& box = editor->models().PlayListDropBox;
    for (std::size_t i = 0; i < box.count(); ++i)
      if (box.entry(i) == name) return box.listIndex(static_cast<std::int32_t>(i));
    ADD_FAILURE() << "no entry " << name;
  }

  int denied = 0;                          ///< the number with which every file refuses to be written
  std::function<void()> onStored = [] {};  ///< a playlist holds something else
  files::WriteCall onWrite = [this](int file, const void* bytes, std::size_t size) -> ssize_t {
    errno = denied;
    return denied != 0 ? -1 : files::WriteBytes(file, bytes, size);
  };
  std::string said;
  TempFolder folder;
  engine::Library library{loop, LibraryIn(root()), {[] {}, [](const std::string&) {}, [] {}}};
  engine::StoredPlaylists stored{
      loop,
      root() + "/playlists",
      library,
      {[] {}, [this] { onStored(); }, [](const std::string&) {}},
      [this](int file, const void* bytes, std::size_t size) { return onWrite(file, bytes, size); }};
  FakeLibrary titles{journal};
  plugin::HostServices host{loop};
  plugin::Settings settings{host};
  plugin::PluginState state;
  QuietPlatform platform;
  plugin::Loggers loggers{host, state, platform};
  player::StaleMarks stale;
  player::PlayTarget target;
  QuietEvents events;
  player::WMPPlayer form{[this](player::WMP9Events& to) {
                           auto made = std::make_unique<FakePlayer>(journal, to);
                           made->mediaLibrary = &titles;
                           made->playlistLibrary = &stored;
                           return made;
                         },
                         events};
  base::LoopDayClock clock{loop};
  QuietProgress progress;
  catalogue::NameXref xref{host, loggers, progress};
  catalogue::MediaCatalogue catalogue{{form, host, loggers, state, stale, target, xref, progress, clock}};
  std::optional<ui::editor::PlayListEditor> editor;
};

}  // namespace support
