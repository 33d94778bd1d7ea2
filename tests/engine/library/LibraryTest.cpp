#include <gmock/gmock.h>

#include <fstream>

#include "base/Failure.hpp"
#include "demo/Cover.hpp"
#include "engine/common/MusicLibrary.hpp"
#include "engine/library/Library.hpp"
#include "player/Pictured.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST_F(LibraryOfMusic, ItIsScannedAndToldInFewTellings) {
  constexpr int kTracks = 40;
  for (int i = 0; i < kTracks; ++i) addTrack(std::to_string(i) + ".wav", "T", "Ann", "Blue", "Jazz", i);
  startWith(kTracks);
  EXPECT_TRUE(until([&] { return told.mediaChanges > 0; }));
  EXPECT_LT(told.mediaChanges, kTracks / 2);
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

TEST_F(LibraryOfMusic, TheUsersOwnChoiceComesBeforeAllOtherPictures) {
  addTrack("disc/p.flac", "P", "Ann", "What/Ever?", "Jazz");
  config.chosenCovers = folder / "chosen";
  startWith(1);
  const auto url = [&] {
    return library().getByName("P")->item(0)->getItemInfoByType("WM/Picture", "", 0).url;
  };
  const auto lay = [&](const std::string& path) { std::ofstream(path) << "picture"; };
  lay(music("disc/AlbumArt_{0815}_Large.jpg"));
  EXPECT_EQ(url(), "file://" + music("disc/AlbumArt_{0815}_Large.jpg")) << "as another player has left it";
  lay(music("disc/cover.jpg"));
  EXPECT_EQ(url(), "file://" + music("disc/cover.jpg"));
  fs::create_directories(config.chosenCovers);
  lay(config.chosenCovers + "/what_ever_.PNG");
  EXPECT_EQ(url(), "file://" + config.chosenCovers + "/what_ever_.PNG");
  lay(config.chosenCovers + "/Ann - What_Ever_.webp");
  EXPECT_EQ(url(), "file://" + config.chosenCovers + "/Ann - What_Ever_.webp");
  lay(config.chosenCovers + "/Ann - What_Ever_.txt");
  EXPECT_EQ(url(), "file://" + config.chosenCovers + "/Ann - What_Ever_.webp");
  fs::remove_all(config.chosenCovers);
  EXPECT_EQ(url(), "file://" + music("disc/cover.jpg"));
}

TEST_F(LibraryOfMusic, APictureIsHandedOutByItsBytesAndAMarkThatChangesWithIt) {
  const std::string png = demo::CoverPng(4, 40);
  const std::string path = addTrack("disc/p.flac", "P", "Ann", "Blue", "Jazz");
  TrackTags tags;
  tags.title = "P";
  demo::WriteTags(path, tags, png);
  startWith(1);
  const auto media = library().getByName("P")->item(0);
  const auto* pictured = dynamic_cast<const player::Pictured*>(media.get());
  ASSERT_NE(pictured, nullptr);
  const std::string inside = pictured->pictureMark();
  EXPECT_EQ(inside, pictured->pictureMark());
  EXPECT_EQ(pictured->pictureBytes(), png);
  EXPECT_EQ(inside.find('/'), std::string::npos) << "no path";
  std::ofstream(music("disc/cover.jpg")) << "first";
  const std::string first = pictured->pictureMark();
  EXPECT_NE(first, inside);
  EXPECT_EQ(pictured->pictureBytes(), "first");
  std::ofstream(music("disc/cover.jpg")) << "second one";
  EXPECT_NE(pictured->pictureMark(), first);
  EXPECT_EQ(pictured->pictureBytes(), "second one");
}

TEST_F(LibraryOfMusic, AFileFromElsewhereHasThePictureOfItsFolder) {
  addTrack("a.flac", "A", "Ann", "Blue", "Jazz");
  startWith(1);
  fs::create_directories(folder / "elsewhere");
  std::ofstream(folder / "elsewhere/cover.jpg") << "picture";
  player->URL(folder / "elsewhere/b.flac");
  EXPECT_EQ(player->currentMedia()->getItemInfoByType("WM/Picture", "", 0).url,
            "file://" + (folder / "elsewhere/cover.jpg"));
  player->URL("http://127.0.0.1:9/radio");
  EXPECT_EQ(player->currentMedia()->getItemInfoByType("WM/Picture", "", 0).url, "");
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
