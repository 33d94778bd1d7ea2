#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "engine/queue/QueueHouse.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<std::string> kThree{"/m/a.flac", "/m/b.flac", "/m/c.flac"};

class QueueTakenUp : public ::testing::Test {
 protected:
  QueueTakenUp() { restart(); }

  void restart() {
    house.reset();
    house = std::make_unique<QueueHouse>(root.path());
  }
  /// The end of the process, as it comes to a plug-in that has been told to stop: nothing is put in order.
  void killAndRestart() {
    static_cast<void>(lost.emplace_back(house.release()));
    house = std::make_unique<QueueHouse>(root.path());
  }
  [[nodiscard]] std::vector<std::string> files() const {
    std::vector<std::string> names;
    if (!fs::exists(root.path() / "kept")) return names;
    for (const auto& file : fs::directory_iterator(root.path() / "kept"))
      names.push_back(file.path().filename());
    return names;
  }
  [[nodiscard]] std::uintmax_t bytes() const {
    std::uintmax_t all = 0;
    for (const auto& file : fs::directory_iterator(root.path() / "kept")) all += file.file_size();
    return all;
  }

  support::TempFolder root;
  std::vector<std::unique_ptr<QueueHouse>> lost;
  std::unique_ptr<QueueHouse> house;
};

TEST_F(QueueTakenUp, OfAPlayerThatNobodyHasUsedNothingIsKept) {
  EXPECT_FALSE(house->takenUp);
  restart();
  EXPECT_FALSE(house->takenUp);
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(QueueTakenUp, ItIsStoppedAndNothingIsToldOfIt) {
  house->play(kThree, 1);
  house->output.place = 42.5;
  restart();
  EXPECT_TRUE(house->chosen);
  EXPECT_EQ(house->sources(), kThree);
  EXPECT_EQ(house->current(), "/m/b.flac");
  EXPECT_EQ(house->playback.queue().current()->name(), "Title of /m/b.flac");
  EXPECT_EQ(house->playback.queue().playlist()->name(), "Evening");
  EXPECT_EQ(house->playback.state(), player::kStopped);
  EXPECT_EQ(house->playback.position(), 42.5);
  EXPECT_THAT(house->states, IsEmpty());
  EXPECT_THAT(house->output.loaded, IsEmpty());
  EXPECT_THAT(house->messages, IsEmpty());
}

TEST_F(QueueTakenUp, PlayGoesOnAtTheItemAndPosition) {
  house->play(kThree, 1);
  house->output.place = 42.5;
  restart();
  house->playback.play();
  EXPECT_THAT(house->output.loaded, ElementsAre("/m/b.flac"));
  house->playback.started(house->output.now);
  EXPECT_EQ(house->output.place, 42.5);
  EXPECT_EQ(house->output.appended, "/m/c.flac");
  EXPECT_THAT(house->states, ElementsAre(player::kTransitioning, player::kPlaying));
}

TEST_F(QueueTakenUp, ThePositionIsWrittenEveryFewSecondsWhileItPlays) {
  house->play(kThree);
  house->output.place = 7;
  house->pass(std::chrono::seconds(5));
  house->output.place = 9;
  killAndRestart();
  EXPECT_EQ(house->playback.position(), 7);
}

TEST_F(QueueTakenUp, NothingIsWrittenWhileNothingPlays) {
  house->play(kThree);
  house->output.place = 7;
  house->playback.pause();
  house->pass();
  const std::uintmax_t before = bytes();
  for (int i = 0; i < 10; ++i) house->pass(std::chrono::seconds(5));
  EXPECT_EQ(bytes(), before);
  killAndRestart();
  EXPECT_EQ(house->playback.position(), 7);
}

TEST_F(QueueTakenUp, WhoStopsItBeginsTheItemAnew) {
  house->play(kThree, 2);
  house->output.place = 100;
  house->playback.stop();
  house->pass();
  killAndRestart();
  EXPECT_EQ(house->current(), "/m/c.flac");
  EXPECT_EQ(house->playback.position(), 0);
}

TEST_F(QueueTakenUp, APlayerThatStopsAsItEndsGoesOnWhereItWas) {
  house->play(kThree, 2);
  house->output.place = 100;
  house->playback.stop();  // and the loop has no other turn
  killAndRestart();
  EXPECT_EQ(house->current(), "/m/c.flac");
  EXPECT_EQ(house->playback.position(), 100);
}

TEST_F(QueueTakenUp, EachEditOfTheListIsKept) {
  const auto list = house->play({"/1", "/2", "/3", "/4", "/5", "/6"});
  list->moveItem(5, 0);
  list->removeItem(list->item(2));
  list->insertItem(3, std::make_shared<LooseMedia>("http://x/new", TrackTags()));
  list->appendItem(list->item(0));
  list->removeItems({1, 4});
  const std::vector<std::string> now = house->sources();
  EXPECT_THAT(now, ElementsAre("/6", "/3", "http://x/new", "/5", "/6"));
  killAndRestart();
  EXPECT_EQ(house->sources(), now);
}

TEST_F(QueueTakenUp, AnEditIsFollowedByWhatComesNext) {
  const auto list = house->play(kThree);
  ASSERT_EQ(house->output.appended, "/m/b.flac");
  list->insertItem(1, std::make_shared<LooseMedia>("/m/next.flac", TrackTags()));
  house->pass();
  EXPECT_EQ(house->output.appended, "/m/next.flac");
}

TEST_F(QueueTakenUp, ManyEditsDoNotMakeTheFileLarge) {
  const auto list = house->play({"/1", "/2", "/3"});
  for (int i = 0; i < 20000; ++i) list->moveItem(0, 2);
  const std::vector<std::string> now = house->sources();
  killAndRestart();
  EXPECT_EQ(house->sources(), now);
  lost.clear();  // what waited for the disk is done
  EXPECT_EQ(files().size(), 1U);
  EXPECT_LT(bytes(), 2U << 20U);
}

TEST_F(QueueTakenUp, AStoredPlaylistIsTakenUpAsItIsNow) {
  house->assign(house->stored.make("Party", {"http://x/1", "http://x/2", "http://x/3"}));
  house->playback.next();
  house->playback.next();
  restart();
  ASSERT_EQ(house->current(), "http://x/3");
  EXPECT_EQ(house->playback.queue().playlist(), house->stored.named("Party"));
  const std::string file = house->stored.path("Party.m3u8");
  killAndRestart();
  lost.clear();
  house.reset();
  WriteText(file, "#EXTM3U\nhttp://x/0\nhttp://x/3\nhttp://x/4\n");
  restart();
  EXPECT_THAT(house->sources(), ElementsAre("http://x/0", "http://x/3", "http://x/4"));
  EXPECT_EQ(house->current(), "http://x/3");
}

TEST_F(QueueTakenUp, OfAStoredPlaylistThatHasGoneTheTitlesAreThere) {
  const auto list = house->stored.make("Party", {"http://x/1", "http://x/2"});
  house->assign(list);
  list->appendItem(house->stored.media("http://x/3"));
  house->playback.listChanged();
  house->pass(std::chrono::seconds(5));
  fs::remove(house->stored.path("Party.m3u8"));
  killAndRestart();
  EXPECT_THAT(house->sources(), ElementsAre("http://x/1", "http://x/2", "http://x/3"));
  EXPECT_EQ(house->playback.queue().playlist()->name(), "Party");
}

TEST_F(QueueTakenUp, OfAnItemThatHasLeftItsPlaylistTheOneInItsPlaceBegins) {
  house->assign(house->stored.make("Party", {"/1", "/2", "/3"}));
  house->playback.next();
  house->playback.position(12);
  const std::string file = house->stored.path("Party.m3u8");
  restart();
  house.reset();
  WriteText(file, "#EXTM3U\n/1\n/3\n");
  restart();
  EXPECT_EQ(house->current(), "/3");
  EXPECT_EQ(house->playback.position(), 0);
}

TEST_F(QueueTakenUp, AListThatWasTakenAwayStaysAway) {
  house->play(kThree);
  house->assign(nullptr);
  killAndRestart();
  EXPECT_TRUE(house->chosen);
  EXPECT_EQ(house->playback.queue().playlist(), nullptr);
  EXPECT_EQ(house->playback.state(), player::kUndefined);
}

TEST_F(QueueTakenUp, OfTheWholeLibraryOnlyTheItemIsKept) {
  for (const char* address : {"http://x/a", "http://x/b", "http://x/c"}) house->stored.library.add(address);
  house->playback.refresh(house->stored.library.getAll());
  house->playback.next();
  ASSERT_EQ(house->current(), "http://x/b");
  house->stored.library.add("http://x/aa");
  restart();
  EXPECT_FALSE(house->chosen);
  EXPECT_EQ(house->current(), "http://x/b");
}

TEST_F(QueueTakenUp, AStationHasNoPositionToComeBackTo) {
  TrackTags tags;
  tags.title = "Radio Öland";
  house->assign(std::make_shared<ListPlaylist>(
      "radio", std::vector<player::MediaRef>{std::make_shared<LooseMedia>("http://x/radio", tags)}));
  house->playback.play();
  house->playback.started(house->output.now);
  house->output.place = 3600;
  restart();
  EXPECT_EQ(house->playback.queue().current()->name(), "Radio Öland");
  EXPECT_EQ(house->playback.position(), 0);
}

TEST_F(QueueTakenUp, ATrackOfADiscKeepsWhatTheDiscSaidOfIt) {
  TrackTags tags;
  tags.title = "Track 2";
  tags.album = "Disc";
  tags.discId = "2+96+5000";
  tags.track = 2;
  tags.milliseconds = 120000;
  house->assign(std::make_shared<ListPlaylist>(
      "Disc", std::vector<player::MediaRef>{std::make_shared<LooseMedia>("cdda:///dev/sr0#2", tags)}));
  killAndRestart();
  const auto& media = house->playback.queue().current();
  EXPECT_EQ(media->sourceURL(), "cdda:///dev/sr0#2");
  EXPECT_EQ(media->getItemInfo("WM/MCDI"), "2+96+5000");
  EXPECT_EQ(media->getItemInfo("Album"), "Disc");
  EXPECT_EQ(media->duration(), 120);
}

TEST_F(QueueTakenUp, WhatOthersKnowItByIsKept) {
  house->mark = 77;
  house->play(kThree);
  killAndRestart();
  EXPECT_EQ(house->mark, 77);
}

TEST_F(QueueTakenUp, AHundredThousandTitlesAreKept) {
  std::vector<std::string> addresses;
  for (int i = 0; i < 100000; ++i) addresses.push_back("/music/Artist/Album/" + std::to_string(i) + ".flac");
  const auto list = house->play(addresses);
  list->moveItem(99999, 1);
  killAndRestart();
  addresses.insert(addresses.begin() + 1, addresses.back());
  addresses.pop_back();
  EXPECT_EQ(house->sources(), addresses);
  EXPECT_LT(bytes(), 20U << 20U);
}

}  // namespace
}  // namespace engine::testing
