#include "demo/DemoLibrary.hpp"

#include <gmock/gmock.h>

#include <cmath>

#include "demo/Piece.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/scan/TagReader.hpp"

namespace engine::testing {
namespace {

/// No second of it is silent but the last ones, in which it fades.
bool IsHeardThroughout(const demo::Sound& sound) {
  const auto second = static_cast<std::size_t>(sound.rate);
  for (std::size_t start = 0; start + 3 * second < sound.samples.size(); start += second) {
    double power = 0;
    for (std::size_t i = start; i < start + second; ++i) power += sound.samples[i] * sound.samples[i];
    if (std::sqrt(power / static_cast<double>(second)) < 0.01) return false;
  }
  return true;
}

TEST(DemoLibrary, ItIsMadeOnceAndWhole) {
  const TempFolder folder;
  std::vector<std::string> lines;
  const auto tell = [&](const std::string& line) { lines.push_back(line); };
  ASSERT_TRUE(demo::MakeDemoLibrary(folder / "demo", tell));
  for (const demo::Piece& piece : demo::Pieces()) {
    const TrackTags tags = ReadTags(folder / ("demo/" + piece.file)).tags;
    EXPECT_EQ(tags.title, piece.tags.title);
    EXPECT_EQ(tags.artist, piece.tags.artist);
    EXPECT_EQ(tags.album, piece.tags.album);
    EXPECT_EQ(tags.track, piece.tags.track);
    EXPECT_NEAR(tags.milliseconds, piece.seconds * 1000, 50);
    EXPECT_TRUE(IsHeardThroughout(demo::ReadSound(folder / ("demo/" + piece.file)))) << piece.file;
    EXPECT_GE(piece.seconds, 15);
    EXPECT_LE(piece.seconds, 40);
  }
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path())) ++entries;
  EXPECT_EQ(entries, 1U);  // nothing unfinished lies about
  lines.clear();
  EXPECT_FALSE(demo::MakeDemoLibrary(folder / "demo", tell));
  EXPECT_EQ(lines.size(), 1U);
}

class DemoPlaylist : public PlayerTest {};

TEST_F(DemoPlaylist, HoldsHowEachAlbumBegins) {
  ASSERT_TRUE(demo::MakeDemoLibrary(folder / "demo", [](const std::string&) {}));
  config.musicFolders = {folder / "demo"};
  config.playlistFolder = folder / "demo/Playlists";
  startWith(static_cast<int>(demo::Pieces().size()));
  const auto lists = player->playlistCollection().getByName("Good Morning");
  ASSERT_EQ(lists->count(), 1);
  EXPECT_THAT(Names(*lists->item(0)),
              ::testing::ElementsAre("Horizon", "Route 7, Exit 9", "¿Quién baila?", "00:01"));
}

TEST(DemoLibrary, WhatAKilledAttemptLeftDoesNotStandInTheWay) {
  const TempFolder folder;
  fs::create_directories(folder / ".demo.part/half");
  demo::Piece piece = demo::Pieces().front();
  piece.seconds = 4;
  ASSERT_TRUE(demo::MakeDemoLibrary(folder / "demo", [](const std::string&) {}, {piece}));
  EXPECT_FALSE(fs::exists(folder / ".demo.part"));
  EXPECT_FALSE(fs::exists(folder / "demo/half"));
}

}  // namespace
}  // namespace engine::testing
