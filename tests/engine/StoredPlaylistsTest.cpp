#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "base/Failure.hpp"
#include "engine/Fixtures.hpp"
#include "engine/M3u.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Playlists : public PlayerTest {
 protected:
  void begin() {
    addTrack("1.flac", "One", "Ann", "Blue", "Jazz", 1);
    addTrack("2.flac", "Two", "Ann", "Blue", "Jazz", 2);
    startWith(2);
  }
  player::PlaylistCollection& playlists() { return player->playlistCollection(); }
  player::MediaRef track(const std::string& name) {
    return player->mediaCollection().getByName(name)->item(0);
  }
  std::vector<std::string> all() {
    std::vector<std::string> names;
    const auto array = playlists().getAll();
    for (std::int32_t i = 0; i < array->count(); ++i) names.push_back(array->item(i)->name());
    return names;
  }
  static int failureOf(const std::function<void()>& step) {
    try {
      step();
    } catch (const base::Failure& failure) {
      return failure.number();
    }
    return 0;
  }
  std::string content(const std::string& name) {
    std::ifstream file(folder / ("playlists/" + name), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
};

TEST_F(Playlists, ANewOneIsAFileWithOrderAndDuplicatesKept) {
  begin();
  auto list = playlists().newPlaylist("Road / \"Trip\": été?");
  list->appendItem(track("Two"));
  list->appendItem(track("One"));
  list->appendItem(track("Two"));
  EXPECT_THAT(content("Road %2F %22Trip%22%3A été%3F.m3u8"), HasSubstr("#PLAYLIST:Road / \"Trip\": été?\n"));
  player.reset();
  startWith(2);
  const auto found = playlists().getByName("road / \"trip\": ÉTÉ?");
  ASSERT_EQ(found->count(), 1);
  EXPECT_THAT(Names(*found->item(0)), ElementsAre("Two", "One", "Two"));
  EXPECT_EQ(playlists().getByName("Road / \"\"Trip\"\": été?")->count(), 1);
}

TEST_F(Playlists, EveryChangeIsOnTheDiskAtOnce) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  list->insertItem(0, track("Two"));
  EXPECT_THAT(ParseM3u(content("L.m3u8"), "/").entries, ::testing::SizeIs(2));
  list->moveItem(0, 1);
  EXPECT_EQ(ParseM3u(content("L.m3u8"), "/").entries[0].location, music("1.flac"));
  list->removeItem(track("One"));
  const auto entries = ParseM3u(content("L.m3u8"), "/").entries;
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].location, music("2.flac"));
  EXPECT_EQ(entries[0].title, "Ann - Two");
}

TEST_F(Playlists, ANameInUseIsRefused) {
  begin();
  playlists().newPlaylist("Mine");
  auto other = playlists().newPlaylist("Other");
  EXPECT_EQ(failureOf([&] { playlists().newPlaylist("MINE"); }), base::number::kNameInUse);
  EXPECT_EQ(failureOf([&] { other->name("mine"); }), base::number::kNameInUse);
  EXPECT_EQ(other->name(), "Other");
  EXPECT_EQ(failureOf([&] { playlists().newPlaylist(""); }), base::number::kInvalidArgument);
}

TEST_F(Playlists, ARenamedOneHasItsFileUnderTheNewName) {
  begin();
  auto list = playlists().newPlaylist("Old");
  list->appendItem(track("One"));
  list->name("New");
  EXPECT_THAT(all(), ElementsAre("New"));
  EXPECT_FALSE(fs::exists(folder / "playlists/Old.m3u8"));
  list->appendItem(track("Two"));
  EXPECT_EQ(ParseM3u(content("New.m3u8"), "/").entries.size(), 2U);
  list->name("NEW");
  EXPECT_THAT(all(), ElementsAre("NEW"));
}

TEST_F(Playlists, ARemovedOneIsGoneAndItsObjectStillAnswers) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  playlists().remove(list);
  EXPECT_THAT(all(), IsEmpty());
  EXPECT_THAT(fs::is_empty(folder / "playlists"), true);
  list->appendItem(track("Two"));
  EXPECT_EQ(list->count(), 2);
  EXPECT_TRUE(fs::is_empty(folder / "playlists"));
  EXPECT_EQ(failureOf([&] { playlists().remove(list); }), base::number::kInvalidArgument);
  EXPECT_EQ(failureOf([&] { playlists().remove(nullptr); }), base::number::kObjectMissing);
}

TEST_F(Playlists, ThePlayerTellsOfNewAndForeignOnes) {
  begin();
  playlists().newPlaylist("L");
  ASSERT_TRUE(until([&] { return told.playlistChanges == 1; }));
  writeText(
      folder / "playlists/from outside.m3u",
      "\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:12,Bob - Far\r\n../music/1.flac\r\n\r\nhttp://127.0.0.1/x.mp3\r\n");
  ASSERT_TRUE(until([&] { return told.playlistChanges == 2; }));
  EXPECT_THAT(all(), ElementsAre("from outside", "L"));
  const auto foreign = playlists().getByName("from outside")->item(0);
  ASSERT_EQ(foreign->count(), 2);
  EXPECT_EQ(foreign->item(1)->sourceURL(), "http://127.0.0.1/x.mp3");
}

TEST_F(Playlists, ItemsAreTheLibrarysOnceItKnowsThem) {
  writeText(folder / "playlists/L.m3u8", "#EXTINF:1,Somebody - Else\n" + music("1.flac") + "\n");
  begin();
  const auto list = playlists().getByName("L")->item(0);
  ASSERT_EQ(list->count(), 1);
  EXPECT_TRUE(until([&] { return list->item(0)->getItemInfo("Album") == "Blue"; }));
}

TEST_F(Playlists, AForeignChangeIsSeenAtTheNextQuestion) {
  begin();
  auto list = playlists().newPlaylist("L");
  writeText(folder / "playlists/L.m3u8",
            "#EXTM3U\n#PLAYLIST:L\n" + music("1.flac") + "\n" + music("2.flac") + "\n");
  EXPECT_EQ(playlists().getByName("L")->item(0)->count(), 2);
  EXPECT_EQ(list->count(), 2);
}

TEST_F(Playlists, AChangeIsMadeOnTopOfAForeignOne) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  writeText(folder / "playlists/L.m3u8",
            "#EXTM3U\n#PLAYLIST:L\n" + music("1.flac") + "\nhttp://127.0.0.1/foreign.mp3\n");
  list->appendItem(track("Two"));
  const auto entries = ParseM3u(content("L.m3u8"), "/").entries;
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[1].location, "http://127.0.0.1/foreign.mp3");
  EXPECT_EQ(entries[2].location, music("2.flac"));
  writeText(folder / "playlists/L.m3u8", "#EXTM3U\n#PLAYLIST:L\n" + music("2.flac") + "\n");
  list->name("M");
  EXPECT_THAT(Names(*list), ElementsAre("Two"));
  EXPECT_EQ(ParseM3u(content("M.m3u8"), "/").entries.size(), 1U);
}

TEST_F(Playlists, AFolderThatCantBeWrittenIsPermissionDenied) {
  if (::geteuid() == 0) {
    // To the superuser nothing is read-only, so a file stands in the folder's way.
    writeText(folder / "playlists", "a file");
  } else {
    fs::create_directories(folder / "playlists");
    fs::permissions(folder / "playlists", fs::perms::owner_read | fs::perms::owner_exec);
  }
  begin();
  EXPECT_EQ(failureOf([&] { playlists().newPlaylist("L"); }), base::number::kPermissionDenied);
  EXPECT_THAT(all(), IsEmpty());
}

TEST_F(Playlists, AnItemThatCantBeSavedIsNotInTheList) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  fs::remove_all(folder / "playlists");
  EXPECT_NE(failureOf([&] { list->appendItem(track("Two")); }), 0);
  EXPECT_EQ(list->count(), 1);
}

TEST(PlaylistFiles, EveryPathSurvivesTheFile) {
  M3u list;
  list.name = "N";
  for (const char* path : {"/plain.mp3", "/two\nlines.mp3", "/#hash", "/per%41cent.mp3", "/trailing ",
                           "/caf\xE9.mp3", "http://127.0.0.1/a%20b"}) {
    list.entries.push_back({path, "T", 3});
  }
  const M3u read = ParseM3u(FormatM3u(list), "/folder");
  ASSERT_EQ(read.entries.size(), list.entries.size());
  for (std::size_t i = 0; i < list.entries.size(); ++i)
    EXPECT_EQ(read.entries[i].location, list.entries[i].location);
  EXPECT_EQ(read.entries[0].seconds, 3);
}

TEST(PlaylistFiles, FileNamesKeepEveryName) {
  for (const char* name : {"a/b", "..", ".hidden", "100%", "%41", "x:y*z?", "Été"}) {
    const std::string file = EscapeFileName(name);
    EXPECT_EQ(file.find('/'), std::string::npos);
    EXPECT_NE(file.front(), '.');
    EXPECT_EQ(UnescapeFileName(file), name);
  }
}

}  // namespace
}  // namespace engine::testing
