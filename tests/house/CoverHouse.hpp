#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace support {

/// A house with a music folder, for what becomes of the pictures in it.
class CoverHouse : public ::testing::Test {
 protected:
  /// A title of a disc without any picture.
  static engine::TrackTags discTags() {
    engine::TrackTags tags;
    tags.title = "Silence";
    tags.artist = "Nobody";
    tags.album = "Disc";
    tags.track = 1;
    tags.discId = "2+96+12C+20D";
    return tags;
  }
  void lay(const std::string& name, const std::string& bytes) {
    std::ofstream(music.path() + "/" + name, std::ios::binary) << bytes;
  }
  void start() { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  void play(const std::string& album) {
    ASSERT_TRUE(Eventually([&] {
      return house.post("/api/play", {{"category", "Album"}, {"name", album}}) == 200;
    })) << album;
  }
  std::string albumText() { return house.device("Album").value("text", ""); }
  /// The device is told behind the search's last line.
  bool showsCover() {
    return Eventually([&] { return albumText().find("WMPCoverSmall") != std::string::npos; });
  }

  SmallMusic music;
  RealHouse house{{.music = music.path()}};
};

}  // namespace support
