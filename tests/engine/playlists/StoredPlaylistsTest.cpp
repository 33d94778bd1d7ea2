#include <gmock/gmock.h>
#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "player/ManyOut.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

void RemoveItems(const player::PlaylistRef& list, const std::vector<std::int32_t>& places) {
  dynamic_cast<player::ManyOut&>(*list).removeItems(places);
}

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
  std::string content(const std::string& name) { return FileContent(folder / ("playlists/" + name)); }
  std::vector<std::string> located(const std::string& name) {
    std::vector<std::string> places;
    for (const M3uItem& item : ItemsOf(content(name))) places.push_back(item.location);
    return places;
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
  EXPECT_THAT(located("L.m3u8"), ElementsAre(music("2.flac"), music("1.flac")));
  list->moveItem(0, 1);
  EXPECT_THAT(located("L.m3u8"), ElementsAre(music("1.flac"), music("2.flac")));
  list->removeItem(track("One"));
  EXPECT_THAT(located("L.m3u8"), ElementsAre(music("2.flac")));
  EXPECT_EQ(ItemsOf(content("L.m3u8"))[0].title, "Ann - Two");
}

TEST_F(Playlists, ANameInUseIsRefused) {
  begin();
  playlists().newPlaylist("Mine");
  auto other = playlists().newPlaylist("Other");
  EXPECT_EQ(FailureOf([&] { playlists().newPlaylist("MINE"); }), base::number::kNameInUse);
  EXPECT_EQ(FailureOf([&] { other->name("mine"); }), base::number::kNameInUse);
  EXPECT_EQ(other->name(), "Other");
  EXPECT_EQ(FailureOf([&] { playlists().newPlaylist(""); }), base::number::kInvalidArgument);
}

TEST_F(Playlists, ARenamedOneHasItsFileUnderTheNewName) {
  begin();
  auto list = playlists().newPlaylist("Old");
  list->appendItem(track("One"));
  list->name("New");
  EXPECT_THAT(all(), ElementsAre("New"));
  EXPECT_FALSE(fs::exists(folder / "playlists/Old.m3u8"));
  list->appendItem(track("Two"));
  EXPECT_THAT(located("New.m3u8"), ElementsAre(music("1.flac"), music("2.flac")));
  list->name("NEW");
  EXPECT_THAT(all(), ElementsAre("NEW"));
  player.reset();
  startWith(2);
  EXPECT_THAT(all(), ElementsAre("NEW"));
  EXPECT_THAT(Names(*playlists().getByName("new")->item(0)), ElementsAre("One", "Two"));
}

TEST_F(Playlists, ARemovedOneIsGoneAndItsObjectStillAnswers) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  playlists().remove(list);
  EXPECT_EQ(list->revision(), 0) << "it is a list that is not stored";
  const auto anew = playlists().newPlaylist("L");
  EXPECT_GT(anew->revision(), 0);
  EXPECT_EQ(list->revision(), 0) << "the new one is another";
  playlists().remove(anew);
  EXPECT_THAT(all(), IsEmpty());
  EXPECT_THAT(fs::is_empty(folder / "playlists"), true);
  list->appendItem(track("Two"));
  EXPECT_EQ(list->count(), 2);
  EXPECT_TRUE(fs::is_empty(folder / "playlists"));
  EXPECT_EQ(FailureOf([&] { playlists().remove(list); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureOf([&] { playlists().remove(nullptr); }), base::number::kObjectMissing);
}

TEST_F(Playlists, ThePlayerTellsOfNewAndForeignOnes) {
  begin();
  playlists().newPlaylist("L");
  ASSERT_TRUE(until([&] { return told.playlistChanges == 1; }));
  writeText(folder / "playlists/from outside.m3u",
            "\xEF\xBB\xBF#EXTM3U\r\n../music/1.flac\r\n#EXTINF:12,Bob - Far\r\n../music/gone.flac\r\n\r\n"
            "http://127.0.0.1/x.mp3\r\n");
  ASSERT_TRUE(until([&] { return told.playlistChanges == 2; }));
  EXPECT_THAT(all(), ElementsAre("from outside", "L"));
  const auto foreign = playlists().getByName("from outside")->item(0);
  EXPECT_THAT(Addresses(*foreign), ElementsAre(music("1.flac"), folder / "playlists/../music/gone.flac",
                                               "http://127.0.0.1/x.mp3"));
  EXPECT_EQ(foreign->item(0)->name(), "One");
  EXPECT_EQ(foreign->item(0)->getItemInfo("Artist"), "Ann");
  EXPECT_EQ(foreign->item(1)->name(), "Far");
  EXPECT_EQ(foreign->item(1)->getItemInfo("Artist"), "Bob");
  EXPECT_EQ(foreign->item(1)->duration(), 12);
  fs::remove(folder / "playlists/from outside.m3u");
  ASSERT_TRUE(until([&] { return told.playlistChanges == 3; }));
  EXPECT_THAT(all(), ElementsAre("L"));
}

TEST_F(Playlists, ItemsAreTheLibrarysOnceItKnowsThem) {
  writeText(folder / "playlists/L.m3u8", "#EXTINF:1,Somebody - Else\n" + music("1.flac") + "\n");
  begin();
  const auto list = playlists().getByName("L")->item(0);
  ASSERT_EQ(list->count(), 1);
  EXPECT_TRUE(until([&] { return list->item(0)->getItemInfo("Album") == "Blue"; }));
  EXPECT_EQ(list->item(0)->name(), "One");
  EXPECT_EQ(list->item(0)->getItemInfo("Artist"), "Ann");
}

TEST_F(Playlists, ItemsAreTheLibrarysFromTheTurnOnOnWhichItKnowsThem) {
  writeText(folder / "playlists/L.m3u8", music("1.flac") + "\n");
  addTrack("1.flac", "One", "Ann", "Blue", "Jazz", 1);
  start();
  const auto list = playlists().getByName("L")->item(0);
  ASSERT_TRUE(until([&] { return player->mediaCollection().getByName("One")->count() == 1; }));
  EXPECT_EQ(list->item(0)->name(), "One");
}

TEST_F(Playlists, ManyItemsGoInAtOnceTheMissingOnesAmongThem) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("Two"));
  const std::int64_t before = list->revision();
  const auto plain = [](const std::string& url) { return player::ToldMedia{url, {}, {}, 0}; };
  list->insertItems(
      0, {plain(music("1.flac")), {"/gone/x.mp3", "Far", "Bob", 12}, plain("http://127.0.0.1/y.mp3")});
  EXPECT_EQ(list->revision(), before + 3);
  EXPECT_THAT(located("L.m3u8"),
              ElementsAre(music("1.flac"), "/gone/x.mp3", "http://127.0.0.1/y.mp3", music("2.flac")));
  EXPECT_EQ(FailureOf([&] { list->insertItems(5, {plain(music("1.flac"))}); }), base::number::kIndex);
  EXPECT_EQ(FailureOf([&] {
              list->insertItems(0, {plain(music("1.flac")), plain("")});
            }),
            base::number::kInvalidArgument);
  startWith(2);
  list = playlists().getByName("L")->item(0);
  EXPECT_THAT(Names(*list), ElementsAre("One", "Far", "y", "Two"));
  EXPECT_EQ(list->item(1)->getItemInfo("Artist"), "Bob");
  EXPECT_EQ(list->item(1)->duration(), 12);
  EXPECT_GT(list->revision(), before + 3);
}

TEST_F(Playlists, ManyItemsGoOutAtOnce) {
  begin();
  auto list = playlists().newPlaylist("L");
  for (const char* title : {"One", "Two", "One", "Two"}) list->appendItem(track(title));
  const std::int64_t before = list->revision();
  EXPECT_EQ(FailureOf([&] { RemoveItems(list, {1, 4}); }), base::number::kIndex);
  EXPECT_EQ(FailureOf([&] { RemoveItems(list, {2, 1}); }), base::number::kIndex);
  EXPECT_THAT(Names(*list), ElementsAre("One", "Two", "One", "Two"));
  RemoveItems(list, {0, 3});
  EXPECT_EQ(list->revision(), before + 2);
  EXPECT_THAT(Names(*list), ElementsAre("Two", "One"));
  EXPECT_THAT(located("L.m3u8"), ElementsAre(music("2.flac"), music("1.flac")));
  const auto all = player->mediaCollection().getAll();  // which is no stored one
  const std::int32_t count = all->count();
  RemoveItems(all, {0});
  EXPECT_EQ(all->count(), count - 1);
  EXPECT_EQ(player->mediaCollection().getAll()->count(), count);
}

TEST_F(Playlists, ARevisionGrowsWithEveryChange) {
  begin();
  auto list = playlists().newPlaylist("L");
  std::int64_t last = list->revision();
  const auto grown = [&] { return list->revision() - std::exchange(last, list->revision()); };
  list->appendItem(track("One"));
  EXPECT_EQ(grown(), 1);
  list->insertItem(0, track("Two"));
  EXPECT_EQ(grown(), 1);
  list->moveItem(0, 1);
  EXPECT_EQ(grown(), 1);
  list->removeItem(list->item(0));
  EXPECT_EQ(grown(), 1);
  EXPECT_EQ(grown(), 0);
  writeText(folder / "playlists/L.m3u8", "#PLAYLIST:L\n" + music("1.flac") + "\n");
  playlists().getAll();
  EXPECT_GT(grown(), 0);
  addTrack("3.flac", "Three", "Ann", "Blue", "Jazz", 3);
  ASSERT_TRUE(until([&] { return player->mediaCollection().getByName("Three")->count() == 1; }));
  EXPECT_GT(grown(), 0);
  EXPECT_EQ(player->mediaCollection().getAll()->revision(), 0);
}

TEST_F(Playlists, APathFromThePlaylistsFolderIsTheLibrarysTrackAndStaysAsItIsWritten) {
  writeText(folder / "playlists/L.m3u8", "../music/1.flac\n");
  start();
  auto list = playlists().getByName("L")->item(0);
  EXPECT_THAT(Addresses(*list), ElementsAre(folder / "playlists/../music/1.flac"));
  addTrack("1.flac", "One", "Ann", "Blue", "Jazz", 1);
  EXPECT_TRUE(until([&] { return list->item(0)->getItemInfo("Album") == "Blue"; }));
  EXPECT_THAT(Addresses(*list), ElementsAre(music("1.flac")));
  writeText(folder / "playlists/L.m3u8", "./../music/1.flac\n../music/1.flac\n");
  list->moveItem(1, 0);
  EXPECT_THAT(Addresses(*list), ElementsAre(music("1.flac"), music("1.flac")));
  EXPECT_EQ(content("L.m3u8"), "../music/1.flac\n./../music/1.flac\n");
}

TEST_F(Playlists, AHeldTwinIsFoundWhenTheLibraryHasGotToKnowIt) {
  addTrack("1.flac", "One", "Ann", "Blue", "Jazz", 1);
  writeText(folder / "playlists/L.m3u8", "../music/1.flac\nhttp://x/2\n../music/1.flac\n");
  start();
  auto list = playlists().getByName("L")->item(0);
  ASSERT_EQ(list->count(), 3);
  ASSERT_EQ(list->item(2)->getItemInfo("Album"), "");
  const auto held = list->item(2);
  ASSERT_TRUE(until([&] { return list->item(2)->getItemInfo("Album") == "Blue"; }));
  list->removeItem(held);
  EXPECT_THAT(Addresses(*list), ElementsAre(music("1.flac"), "http://x/2"));
  EXPECT_EQ(content("L.m3u8"), "../music/1.flac\nhttp://x/2\n");
}

TEST_F(Playlists, AForeignChangeIsSeenAtTheNextQuestion) {
  begin();
  auto list = playlists().newPlaylist("L");
  writeText(folder / "playlists/L.m3u8",
            "#EXTM3U\n#PLAYLIST:L\n" + music("1.flac") + "\n" + music("2.flac") + "\n");
  EXPECT_THAT(Names(*playlists().getByName("L")->item(0)), ElementsAre("One", "Two"));
  EXPECT_THAT(Names(*list), ElementsAre("One", "Two"));
}

TEST_F(Playlists, AChangeIsMadeOnTopOfAForeignOne) {
  begin();
  auto list = playlists().newPlaylist("L");
  list->appendItem(track("One"));
  writeText(folder / "playlists/L.m3u8",
            "#EXTM3U\n#PLAYLIST:L\n" + music("1.flac") + "\nhttp://127.0.0.1/foreign.mp3\n");
  list->appendItem(track("Two"));
  EXPECT_THAT(located("L.m3u8"),
              ElementsAre(music("1.flac"), "http://127.0.0.1/foreign.mp3", music("2.flac")));
  writeText(folder / "playlists/L.m3u8", "#EXTM3U\n#PLAYLIST:L\n" + music("2.flac") + "\n");
  list->name("M");
  EXPECT_THAT(Names(*list), ElementsAre("Two"));
  EXPECT_THAT(located("M.m3u8"), ElementsAre(music("2.flac")));
}

}  // namespace
}  // namespace engine::testing
