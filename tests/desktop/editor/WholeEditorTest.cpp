// The playlist editor as a whole: its window, its logic and playlists in files.
#include <QtWidgets/QMessageBox>
#include <cerrno>

#include "EditorScene.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "support/TempFolder.hpp"
#include "ui/editor/EditorGround.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

engine::Config LibraryIn(const std::string& folder) {
  engine::Config config;
  config.dataFolder = folder + "/data";
  return config;
}

class WholeEditor : public support::EditorScene {
 protected:
  using Names = std::vector<std::string>;

  WholeEditor() {
    host.Host = host.HostCallback = std::make_shared<support::QuietHost>();
    stale.markCategories();
    for (const char* title : {"Sky", "Sea", "Sun"})
      titles.addTrack(title, "Ann", "Blue", "Folk")->url = std::string("http://house/") + title;
    titles.attributes["album"] = {"Blue"};
    make("Autumn", {"Sky", "Sea"});
    make("Winter", {"Sun"});
    editor.emplace(ui::editor::EditorParts{*window, catalogue, xref, form, stale, host, settings, state});
  }

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
    engine::StoredPlaylists others(loop, folder.path() / "playlists", library,
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
  void choose(const std::string& name) {
    ui::editor::DropBox& box = editor->models().PlayListDropBox;
    for (std::size_t i = 0; i < box.count(); ++i)
      if (box.entry(i) == name) return box.listIndex(static_cast<std::int32_t>(i));
    ADD_FAILURE() << "no entry " << name;
  }

  int denied = 0;  ///< the number with which every file refuses to be written
  std::string said;
  support::TempFolder folder;
  engine::Library library{loop, LibraryIn(folder.path()), {[] {}, [](const std::string&) {}, [] {}}};
  engine::StoredPlaylists stored{loop,
                                 folder.path() / "playlists",
                                 library,
                                 {[] {}, [] {}, [](const std::string&) {}},
                                 [this](int file, const void* bytes, std::size_t size) -> ssize_t {
                                   errno = denied;
                                   return denied != 0 ? -1 : files::WriteBytes(file, bytes, size);
                                 }};
  support::FakeLibrary titles{journal};
  plugin::HostServices host{loop};
  plugin::Settings settings{host};
  plugin::PluginState state;
  support::QuietPlatform platform;
  plugin::Loggers loggers{host, state, platform};
  player::StaleMarks stale;
  player::PlayTarget target;
  support::QuietEvents events;
  player::WMPPlayer form{[this](player::WMP9Events& to) {
                           auto made = std::make_unique<support::FakePlayer>(journal, to);
                           made->mediaLibrary = &titles;
                           made->playlistLibrary = &stored;
                           return made;
                         },
                         events};
  base::LoopDayClock clock{loop};
  support::QuietProgress progress;
  catalogue::NameXref xref{host, loggers, progress};
  catalogue::MediaCatalogue catalogue{{form, host, loggers, state, stale, target, xref, progress, clock}};
  std::optional<ui::editor::PlayListEditor> editor;
};

}  // namespace

TEST_F(WholeEditor, APlaylistIsMadeRenamedAndDeleted) {
  open();
  then([](QWidget&) {
    type("Spring");
    key("Return");
  });
  key("alt+n");
  ASSERT_TRUE(becomes("Spring", {}));
  ASSERT_TRUE(until([&] { return current() == "Spring"; }));

  clickNode("Winter");
  clickAt(middleOf(Control::kRename_Button));
  ASSERT_TRUE(until([&] { return pane().tree().findChild<QLineEdit*>() != nullptr; }));
  type("Frost");
  clickNode("Autumn");
  ASSERT_TRUE(becomes("Frost", {"Sun"})) << "a click elsewhere ends the edit";
  EXPECT_EQ(named("Winter"), nullptr);
  EXPECT_THAT(listed(), ElementsAre("Sun"));

  clickNode("Frost");
  answer("alt+y");
  key("Delete");
  ASSERT_TRUE(until([&] { return named("Frost") == nullptr; }));
  EXPECT_EQ(said, "Are you sure you want to delete the entire playlist: Frost?");
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
}

TEST_F(WholeEditor, WhatIsDroppedIsInTheFile) {
  open();
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  drag(ofBlue("Sun"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea", "Sun"})) << "at the end, wherever it was dropped";
  EXPECT_THAT(listed(), ElementsAre("Sun", "Sky", "Sea"));
}

TEST_F(WholeEditor, AnItemMovesByMouseByButtonAndByKeys) {
  open();
  drag(item("Sea"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sky"}));
  EXPECT_THAT(listed(), ElementsAre("Sea", "Sky"));
  clickItem("Sky");
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea"}));
  key("alt+u");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea")) << "it is the first already";
}

TEST_F(WholeEditor, AFolderThatCanNotBeWrittenIsToldInWordsOfItsOwn) {
  open();
  denied = EACCES;
  clickItem("Sea");
  answer("Return");
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(said.substr(0, 55), "Error in procedure PlayListEditor/MoveNode Error # 70: ")
      << "a move has no words for it";
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));

  said.clear();
  clickNode("Winter");
  clickAt(middleOf(Control::kRename_Button));
  ASSERT_TRUE(until([&] { return pane().tree().findChild<QLineEdit*>() != nullptr; }));
  type("Frost");
  answer("Return");
  key("Return");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(
      said,
      "Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media Library-->Internet "
      "Site Rights\"");
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
}

TEST_F(WholeEditor, APlaylistThatOthersHaveMadeAnewGetsWhatIsDropped) {
  open();
  stored.remove(named("Autumn"));
  make("Autumn", {"Sea"});
  drag(ofBlue("Sun"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sun"}));
  choose("Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sea", "Sun"));
}

TEST_F(WholeEditor, WhatIsDroppedOnAPlaylistThatOthersHaveDeletedIsNotStored) {
  open();
  const QPoint sun = ofBlue("Sun");
  stored.remove(named("Autumn"));
  drag(sun, item("Sky"));
  EXPECT_THAT(members("Autumn"), ElementsAre("no playlist Autumn"));
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
  choose("Winter");
  choose("Autumn");
  EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(WholeEditor, APlaylistThatOthersHaveRenamedKeepsWhatItHolds) {
  open();
  named("Autumn")->name("Fall");
  clickItem("Sea");
  answer("alt+y");
  key("Delete");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_THAT(members("Fall"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
}

TEST_F(WholeEditor, AMemberIsMovedOutOfAPlaylistThatOthersMakeAnewMeanwhile) {
  open();
  choose("Autumn");
  clickNode("Winter");
  const QPoint sun = node("Sun");
  mouseTo(sun);
  tool({"mousedown", "1"});
  mouseTo(sun + QPoint(30, 2));
  ASSERT_TRUE(until([&] { return editor->state().Dragging; }));
  stored.remove(named("Winter"));
  make("Winter", {"Sky", "Sun"});
  mouseTo(item("Sea"));
  tool({"mouseup", "1"});
  ASSERT_TRUE(becomes("Winter", {"Sky"}));
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea", "Sun"));
}
