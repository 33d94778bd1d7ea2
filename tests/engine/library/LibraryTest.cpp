#include <gmock/gmock.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>

#include "base/Failure.hpp"
#include "demo/Cover.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/library/Library.hpp"

namespace engine::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class LibraryOfMusic : public PlayerTest {
 protected:
  void fourTracks() {
    addTrack("x/b2.flac", "Second", "Ann", "Blue", "Jazz", 2);
    addTrack("x/b1.ogg", "First", "Zoe", "Blue", "Jazz", 1);
    addTrack("y/r1.wav", "Älg", "Élan", "Red", "rock", 1);
    addTrack("y/r2.flac", "zebra", "Élan", "Red", "Rock", 2);
  }
  player::MediaCollection& library() { return player->mediaCollection(); }
  std::vector<std::string> values(const std::string& attribute) {
    return Names(*library().getAttributeStringCollection(attribute, "audio"));
  }
  std::vector<std::string> group(const std::string& attribute, const std::string& value) {
    return Names(*library().getByAttribute(attribute, value));
  }
};

TEST_F(LibraryOfMusic, ItIsScannedAndToldOnce) {
  fourTracks();
  startWith(4);
  EXPECT_TRUE(until([&] { return told.mediaChanges > 0; }));
  EXPECT_LE(told.mediaChanges, 2);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(LibraryOfMusic, ValuesAreDistinctAndInFoldedOrder) {
  fourTracks();
  startWith(4);
  EXPECT_THAT(values("Artist"), ElementsAre("Ann", "Zoe", "Élan"));
  EXPECT_THAT(values("ALBUM"), ElementsAre("Blue", "Red"));
  EXPECT_THAT(values("Genre"), ElementsAre("Jazz", "Rock"));
  EXPECT_THAT(values("Mood"), IsEmpty());
  EXPECT_EQ(library().getAttributeStringCollection("Artist", "video")->count(), 0);
}

TEST_F(LibraryOfMusic, AnAlbumIsInTheOrderOfItsTracks) {
  fourTracks();
  startWith(4);
  EXPECT_THAT(group("Album", "blue"), ElementsAre("First", "Second"));
  EXPECT_THAT(group("Genre", "ROCK"), ElementsAre("Älg", "zebra"));
  EXPECT_THAT(group("Artist", "élan"), ElementsAre("Älg", "zebra"));
  EXPECT_THAT(group("Artist", "nobody"), IsEmpty());
  EXPECT_THAT(Names(*library().getByName("ZEBRA")), ElementsAre("zebra"));
  EXPECT_THAT(Names(*library().getAll()), ElementsAre("Second", "First", "Älg", "zebra"));
}

TEST_F(LibraryOfMusic, ADoubledQuoteInAQueryFindsASingleOne) {
  addTrack("q.flac", "The \"Big\" One", "Ann", "Say \"Hi\"", "Jazz");
  startWith(1);
  EXPECT_THAT(group("Album", "Say \"\"Hi\"\""), ElementsAre("The \"Big\" One"));
  EXPECT_THAT(group("Album", "Say \"Hi\""), ElementsAre("The \"Big\" One"));
  EXPECT_EQ(library().getByName("The \"\"Big\"\" One")->count(), 1);
}

TEST_F(LibraryOfMusic, ATrackAnswersItsAttributes) {
  TrackTags tags;
  tags.title = "Song";
  tags.artist = "Ann";
  tags.albumArtist = "Various";
  tags.album = "Blue";
  tags.genre = "Jazz";
  tags.year = 1999;
  tags.track = 7;
  tags.collectionId = "7e7b-1";
  const std::string path = addTrack("a/s.flac", tags, 0.5);
  startWith(1);
  const auto song = library().getAll()->item(0);
  EXPECT_EQ(song->name(), "Song");
  EXPECT_EQ(song->sourceURL(), path);
  EXPECT_EQ(song->getItemInfo("artist"), "Ann");
  EXPECT_EQ(song->getItemInfo("WM/AlbumTitle"), "Blue");
  EXPECT_EQ(song->getItemInfo("wm/albumartist"), "Various");
  EXPECT_EQ(song->getItemInfo("WM/Year"), "1999");
  EXPECT_EQ(song->getItemInfo("WM/TrackNumber"), "7");
  EXPECT_EQ(song->getItemInfo("Duration"), "0.5");
  EXPECT_EQ(song->getItemInfo("WM/WMCollectionID"), "7e7b-1");
  EXPECT_EQ(song->getItemInfo("WM/MCDI"), "");
  EXPECT_EQ(song->getItemInfo("Weight"), "");
  EXPECT_DOUBLE_EQ(song->duration(), 0.5);
  EXPECT_EQ(song->durationString(), "00:00");
  EXPECT_THAT(song->getItemInfo("SourceURL"), HasSubstr("\\music\\a\\s.flac"));
  EXPECT_THROW((void)library().getAll()->item(1), base::Failure);
}

TEST_F(LibraryOfMusic, AFileWithoutTagsIsKnownByItsName) {
  demo::WriteSound(music("No Tags.wav"), demo::Tone(300, 0.2), demo::FileFormat::kWav);
  startWith(1);
  EXPECT_EQ(library().getAll()->item(0)->name(), "No Tags");
  EXPECT_THAT(values("Artist"), IsEmpty());
}

TEST_F(LibraryOfMusic, APictureIsTakenOutOfTheFile) {
  const std::string png = demo::CoverPng(4, 40);
  const std::string path = addTrack("p.flac", "P", "Ann", "Blue", "Jazz");
  TrackTags tags;
  tags.title = "P";
  demo::WriteTags(path, tags, png);
  addTrack("plain.flac", "Plain", "Ann", "Blue", "Jazz");
  startWith(2);
  const auto with = library().getByName("P")->item(0)->getItemInfoByType("WM/Picture", "", 0);
  ASSERT_EQ(with.url.substr(0, 7), "file://");
  std::ifstream file(with.url.substr(7), std::ios::binary);
  const std::string content((std::istreambuf_iterator<char>(file)), {});
  EXPECT_EQ(content, png);
  EXPECT_EQ(library().getByName("Plain")->item(0)->getItemInfoByType("WM/Picture", "", 0).url, "");
}

TEST_F(LibraryOfMusic, APictureInTheFolderComesBeforeTheOneInTheFile) {
  const std::string path = addTrack("disc/p.flac", "P", "Ann", "Blue", "Jazz");
  TrackTags tags;
  tags.title = "P";
  demo::WriteTags(path, tags, demo::CoverPng(4, 40));
  startWith(1);
  const auto url = [&] {
    return library().getByName("P")->item(0)->getItemInfoByType("WM/Picture", "", 0).url;
  };
  const auto lay = [&](const std::string& name) { std::ofstream(music("disc/" + name)) << "picture"; };
  EXPECT_THAT(url(), HasSubstr("/pictures/")) << "the one in the file";
  lay("back.jpg");
  lay("FRONT.PNG");
  EXPECT_EQ(url(), "file://" + music("disc/FRONT.PNG"));
  lay("Folder.JPG");
  EXPECT_EQ(url(), "file://" + music("disc/Folder.JPG"));
  lay("cover.webp");
  lay("cover.jpeg");
  EXPECT_EQ(url(), "file://" + music("disc/cover.jpeg"));
  std::filesystem::remove(music("disc/cover.jpeg"));
  std::filesystem::remove(music("disc/cover.webp"));
  std::filesystem::create_directory(music("disc/cover.jpg"));
  EXPECT_EQ(url(), "file://" + music("disc/Folder.JPG")) << "a folder of that name is no picture";
}

TEST_F(LibraryOfMusic, NewChangedAndDeletedFilesAreNoticed) {
  const std::string path = addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  startWith(1);
  addTrack("deep/er/b.flac", "B", "Bob", "Red", "Rock");
  ASSERT_TRUE(libraryHolds(2));
  addTrack("deep/er/c.flac", "C", "Bob", "Red", "Rock");
  ASSERT_TRUE(libraryHolds(3));
  addTrack("a.flac", "New A", "Ann", "Blue", "Jazz", 0, 0.3);
  EXPECT_TRUE(until([&] { return library().getByName("New A")->count() == 1; }));
  EXPECT_EQ(library().getByName("A")->count(), 0);
  fs::remove(path);
  ASSERT_TRUE(libraryHolds(2));
  fs::rename(music("deep"), folder / "elsewhere");
  ASSERT_TRUE(libraryHolds(0));
  fs::rename(folder / "elsewhere", music("back"));
  EXPECT_TRUE(libraryHolds(2));
}

TEST_F(LibraryOfMusic, AHeldTrackOutlivesItsFile) {
  const std::string path = addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  startWith(1);
  const auto held = library().getAll()->item(0);
  fs::remove(path);
  ASSERT_TRUE(libraryHolds(0));
  EXPECT_EQ(held->name(), "A");
  EXPECT_EQ(held->getItemInfo("Artist"), "Ann");
}

TEST_F(LibraryOfMusic, FilesThatAreNoMusicAreToldOnceAndPassedOver) {
  writeText(music("bad.mp3"), "no music");
  writeText(music("bad.flac"), "none here either");
  writeText(music("notes.txt"), "no file of ours");
  addTrack("good.flac", "Good", "Ann", "Blue", "Jazz");
  startWith(1);
  ASSERT_TRUE(until([&] { return log.size() == 2; }));
  EXPECT_THAT(log, Contains(HasSubstr("bad.mp3")));
  EXPECT_THAT(log, Contains(HasSubstr("bad.flac")));
  player.reset();
  log.clear();
  startWith(1);
  addTrack("more.flac", "More", "Ann", "Blue", "Jazz");  // seen after the scan has ended
  ASSERT_TRUE(libraryHolds(2));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(LibraryOfMusic, LinksInACircleDoNotHang) {
  addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz");
  fs::create_directory_symlink(music(""), music("a/round"));
  fs::create_directory_symlink(music("a"), music("b"));
  startWith(1);
  addTrack("a/2.flac", "Two", "Ann", "Blue", "Jazz");
  EXPECT_TRUE(libraryHolds(2));
}

TEST_F(LibraryOfMusic, WhatIsNoFileIsPassedOverWithoutWaiting) {
  addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz");
  ASSERT_EQ(::mkfifo(music("pipe.flac").c_str(), 0600), 0);
  fs::create_symlink(folder / "nowhere.flac", music("dangling.flac"));
  fs::create_symlink(music("self.flac"), music("self.flac"));
  fs::create_directory_symlink(music("loop"), music("loop"));
  fs::create_directory(music("folder.flac"));
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  music("s.flac").copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  startWith(1);
  addTrack("a/2.flac", "Two", "Ann", "Blue", "Jazz");
  ASSERT_TRUE(libraryHolds(2));
  EXPECT_THAT(log, IsEmpty());
  EXPECT_THROW(library().add(music("pipe.flac")), base::Failure);
  EXPECT_THROW(library().add(music("s.flac")), base::Failure);
  EXPECT_THROW(library().add(music("dangling.flac")), base::Failure);
  EXPECT_EQ(library().getAll()->count(), 2);
  ::close(listener);
}

TEST_F(LibraryOfMusic, AFolderBelowThatCantBeReachedKeepsItsTracks) {
  fourTracks();
  startWith(4);
  player.reset();
  fs::rename(music("x"), folder / "away");
  fs::create_directory_symlink(std::string(300, 'n'), music("x"));  // longer than any name may be
  startWith(4);
  fs::remove(music("y/r1.wav"));
  ASSERT_TRUE(libraryHolds(3));
  fs::remove(music("x"));
  EXPECT_TRUE(libraryHolds(1));
}

TEST_F(LibraryOfMusic, AnEmptiedFolderBelowLosesItsTracks) {
  fourTracks();
  startWith(4);
  fs::remove(music("x/b1.ogg"));
  fs::remove(music("x/b2.flac"));
  ASSERT_TRUE(libraryHolds(2));
  EXPECT_THAT(log, IsEmpty());
}

/// A folder on another device than the music folder, linked into it as if it were mounted there.
class LibraryOnTwoDevices : public LibraryOfMusic {
 protected:
  void SetUp() override {
    std::string made = "/dev/shm/vantorix-engine-XXXXXX";
    ASSERT_NE(::mkdtemp(made.data()), nullptr);
    other = made;
    struct stat here {};
    struct stat there {};
    ASSERT_EQ(::stat(folder.path().c_str(), &here), 0);
    ASSERT_EQ(::stat(other.c_str(), &there), 0);
    ASSERT_NE(here.st_dev, there.st_dev) << "the folder for temporary files must not be in memory";
    fourTracks();
    fs::create_directory(other / "mounted");
    fs::copy(music("x"), other / "mounted/deep", fs::copy_options::recursive);
    fs::remove_all(music("x"));
    fs::create_directory_symlink(other / "mounted", music("x"));
  }
  void TearDown() override { fs::remove_all(other); }

  fs::path other;
};

TEST_F(LibraryOnTwoDevices, AnEmptyMountPointBelowKeepsItsTracksUntilItIsBack) {
  startWith(4);
  fs::rename(other / "mounted/deep", other / "away");
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("perhaps not mounted; its 2 files stay in the library"));
  fs::remove(music("y/r1.wav"));
  ASSERT_TRUE(libraryHolds(3));
  fs::remove(other / "away/b1.ogg");
  fs::rename(other / "away", other / "mounted/deep");
  EXPECT_TRUE(libraryHolds(2));
}

TEST_F(LibraryOnTwoDevices, AnEmptyMountPointBelowKeepsItsTracksAtTheNextStart) {
  startWith(4);
  player.reset();
  fs::rename(other / "mounted/deep", other / "away");
  startWith(4);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("perhaps not mounted"));
  fs::remove(music("y/r1.wav"));
  EXPECT_TRUE(libraryHolds(3));
}

TEST_F(LibraryOfMusic, ItIsThereAtOnceAtTheNextStart) {
  fourTracks();
  startWith(4);
  player.reset();
  start();
  EXPECT_EQ(library().getAll()->count(), 4);
  EXPECT_EQ(player->currentPlaylist()->count(), 4);
  EXPECT_TRUE(player->controls().isAvailable("Play"));
}

TEST_F(LibraryOfMusic, WhatWasDeletedMeanwhileIsGoneAtTheNextStart) {
  fourTracks();
  startWith(4);
  player.reset();
  fs::remove(music("x/b1.ogg"));
  start();
  EXPECT_TRUE(libraryHolds(3));
}

TEST_F(LibraryOfMusic, AMissingMusicFolderKeepsItsTracks) {
  fourTracks();
  startWith(4);
  player.reset();
  fs::rename(music(""), folder / "unplugged");
  startWith(4);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("4 files stay in the library"));
  EXPECT_EQ(library().getAll()->count(), 4);
}

TEST_F(LibraryOfMusic, AnEmptyMountPointKeepsItsTracks) {
  fourTracks();
  startWith(4);
  player.reset();
  fs::rename(music(""), folder / "unplugged");
  fs::create_directories(music(""));
  startWith(4);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("stay in the library"));
  EXPECT_EQ(library().getAll()->count(), 4);
}

TEST_F(LibraryOfMusic, AFolderTakenAwayWhileRunningKeepsItsTracksAndComesBack) {
  fourTracks();
  startWith(4);
  fs::rename(config.musicFolders.front(), folder / "unplugged");
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_EQ(library().getAll()->count(), 4);
  fs::remove(folder / "unplugged/x/b1.ogg");
  fs::rename(folder / "unplugged", config.musicFolders.front());
  EXPECT_TRUE(libraryHolds(3));
}

TEST_F(LibraryOfMusic, ADamagedIndexIsMovedAsideAndBuiltAnew) {
  fourTracks();
  startWith(4);
  player.reset();
  writeText(folder / "data/library.db", std::string(8192, 'x'));
  fs::remove(folder / "data/library.db-wal");
  startWith(4);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("damaged"));
  EXPECT_TRUE(fs::exists(folder / "data/library.db.damaged"));
}

TEST_F(LibraryOfMusic, WithoutAPlaceForTheIndexItLivesInMemory) {
  fourTracks();
  writeText(folder / "data", "a file where the folder should be");
  startWith(4);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  EXPECT_THAT(log.front(), HasSubstr("can't be kept"));
}

TEST_F(LibraryOfMusic, AFileFromElsewhereCanBeAddedForGood) {
  fourTracks();
  startWith(4);
  const std::string outside = folder / "outside.flac";
  demo::WriteSound(outside, demo::Tone(300, 0.2), demo::FileFormat::kFlac);
  const auto added = library().add(outside);
  EXPECT_EQ(added->name(), "outside");
  EXPECT_EQ(library().getAll()->count(), 5);
  EXPECT_EQ(library().add("http://127.0.0.1/radio.mp3")->name(), "radio");
  EXPECT_THROW(library().add(folder / "missing.flac"), base::Failure);
  EXPECT_THROW(library().add(""), base::Failure);
  player.reset();
  startWith(6);
  EXPECT_EQ(library().getByName("radio")->item(0)->sourceURL(), "http://127.0.0.1/radio.mp3");
}

TEST_F(LibraryOfMusic, AddingAFileByItsBackslashesFindsIt) {
  const std::string path = addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  startWith(1);
  std::string backslashes = path;
  std::replace(backslashes.begin(), backslashes.end(), '/', '\\');
  EXPECT_EQ(library().add(backslashes)->name(), "A");
}

TEST_F(LibraryOfMusic, TheListToPlayGrowsWithTheLibraryUntilOneIsChosen) {
  addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  startWith(1);
  addTrack("b.flac", "B", "Ann", "Blue", "Jazz");
  EXPECT_TRUE(until([&] { return player->currentPlaylist()->count() == 2; }));
  player->currentPlaylist(library().getByName("A"));
  addTrack("c.flac", "C", "Ann", "Blue", "Jazz");
  ASSERT_TRUE(libraryHolds(3));
  EXPECT_EQ(player->currentPlaylist()->count(), 1);
}

TEST_F(LibraryOfMusic, ANameThatIsNoTextIsPlayableAll) {
  demo::WriteSound(folder / "made.wav", demo::Tone(300, 0.2), demo::FileFormat::kWav);
  fs::rename(folder / "made.wav", music("caf\xE9.wav"));
  startWith(1);
  const auto item = library().getAll()->item(0);
  EXPECT_EQ(item->name(), "caf\xEF\xBF\xBD");
  EXPECT_THAT(item->sourceURL(), HasSubstr("caf%E9.wav"));
  player->URL(item->sourceURL());
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1));
}

TEST_F(LibraryOfMusic, AListenersFailureEndsNothing) {
  int told = 0;
  Library library(loop, config,
                  {[&] {
                     ++told;
                     throw std::runtime_error("listening");
                   },
                   [](const std::string&) {}, [] {}});
  addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  EXPECT_NO_THROW(EXPECT_TRUE(until([&] { return told == 1; })));
  addTrack("b.flac", "B", "Ann", "Blue", "Jazz");
  EXPECT_NO_THROW(EXPECT_TRUE(until([&] { return told == 2; })));
  EXPECT_EQ(library.getAll()->count(), 2);
}

TEST_F(LibraryOfMusic, AGroupIsACopyThatCanBeChangedAlone) {
  fourTracks();
  startWith(4);
  auto blue = library().getByAttribute("Album", "Blue");
  blue->moveItem(1, 0);
  EXPECT_THAT(Names(*blue), ElementsAre("Second", "First"));
  blue->removeItem(library().getByName("First")->item(0));
  EXPECT_THAT(Names(*blue), ElementsAre("Second"));
  EXPECT_THAT(group("Album", "Blue"), ElementsAre("First", "Second"));
}

}  // namespace
}  // namespace engine::testing
