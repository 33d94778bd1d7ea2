// Covers of a house whose disk is full.
#include <gtest/gtest.h>

#include <filesystem>

#include "demo/Cover.hpp"
#include "pictures/Picture.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"
#include "support/faults/SmallDisk.hpp"

namespace {

using support::Eventually;
using support::JsonOf;

void Add(support::SmallMusic& music, const std::string& album, int side) {
  engine::TrackTags tags;
  tags.title = "Song of " + album;
  tags.artist = "The Painters";
  tags.album = album;
  tags.track = 1;
  music.add(album, 20, tags, engine::demo::CoverPng(static_cast<std::uint32_t>(side), side));
}

TEST(CoversOnAFullDisk, AreShownAllTheSameAndKeptOnceThereIsRoom) {
  const support::TempFolder root;
  support::SmallMusic music;
  Add(music, "Framed", 300);
  Add(music, "Hung", 310);
  EXPECT_TRUE(support::InChild([&] {
    const std::filesystem::path disk = root.path() / "disk";
    std::filesystem::create_directory(disk);
    ASSERT_TRUE(support::MountSmallDisk(disk, std::size_t{64} << 20U)) << "no disk of its own";
    support::RealHouse house({.music = music.path(), .serverWords = {"--data", (disk / "server").string()}});
    ASSERT_TRUE(house.startReady()) << house.server().output();
    const auto knows = [&](const std::string& album) {
      return house.get("/api/library?category=Album&limit=1&fresh=1&group=" + album).find("Song of") !=
             std::string::npos;
    };
    ASSERT_TRUE(Eventually([&] { return knows("Framed") && knows("Hung"); }));
    const auto kept = [&] {
      int files = 0;
      std::error_code none;
      for (const auto& each : std::filesystem::directory_iterator(disk / "server" / "covers", none))
        files += each.path().extension() == ".jpg" && each.file_size() > 0 ? 1 : 0;
      return files;
    };
    const auto width = [&](const std::string& of, int size) {
      return pictures::SizeOf(house.get("/api/cover?" + of + "&size=" + std::to_string(size))).width;
    };
    support::FillUp(disk / "filler");

    EXPECT_EQ(width("album=Framed", 256), 256);
    EXPECT_EQ(width("album=Framed", 1024), 300);
    const std::string key = JsonOf(house.get("/api/cover/key?album=Framed")).at("key").get<std::string>();
    EXPECT_EQ(width("key=" + key, 256), 256) << "from memory";
    ASSERT_TRUE(Eventually([&] {
      return house.post("/api/play", {{"category", "Album"}, {"name", "Framed"}}) == 200;
    }));
    EXPECT_TRUE(Eventually([&] { return JsonOf(house.get("/api/player")).at("cover") == key; }))
        << house.get("/api/player");
    EXPECT_EQ(kept(), 0);

    std::filesystem::remove(disk / "filler");
    EXPECT_EQ(width("album=Hung", 256), 256);
    EXPECT_EQ(kept(), 1);
    ASSERT_EQ(house.post("/api/play", {{"category", "Album"}, {"name", "Hung"}}), 200);
    EXPECT_TRUE(Eventually([&] {
      const std::string text = house.device("Album").value("text", "");
      return text.find("WMPCoverSmall") != std::string::npos && text.ends_with("Hung");
    })) << "the plug-in's own search"
        << house.device("Album");
  }));
}

}  // namespace
