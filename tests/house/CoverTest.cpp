#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/Cover.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr const char* kServed = "/images/Media%20Player/WMPCoverSmall.jpg";
constexpr const char* kTag =
    R"(<img align=absmiddle src="images\Media Player\WMPCoverSmall.jpg"  width="75" height="75" border="0" ><br>)";

class AlbumWithACover : public ::testing::Test {
 protected:
  void SetUp() override {
    engine::TrackTags tags;
    tags.title = "Inked";
    tags.artist = "The Painters";
    tags.album = "Framed";
    tags.track = 4;
    music.add("Inked", 20, tags, png);
    ASSERT_TRUE(house.startReady()) << house.server().output();
  }
  int play(const std::string& album) {
    return house.post("/api/play", {{"category", "Album"}, {"name", album}});
  }
  std::string albumText() { return house.device("Album").value("text", ""); }

  const std::string png = engine::demo::CoverPng(5, 200);
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
};

}  // namespace

TEST_F(AlbumWithACover, IsOnItsDeviceAndServedWhileItPlaysAndGoesWithIt) {
  ASSERT_EQ(play("Framed"), 200);
  ASSERT_TRUE(support::Eventually([&] { return albumText() == std::string(kTag) + "Framed"; }))
      << albumText();
  EXPECT_EQ(house.get(kServed), png) << "the picture in the file serves as it is";

  ASSERT_EQ(play("Counting"), 200);
  ASSERT_TRUE(house.textBecomes("Title", "One"));
  EXPECT_TRUE(support::Eventually([&] { return house.get(kServed).empty(); }));
  EXPECT_THAT(albumText(), Not(HasSubstr("WMPCoverSmall")));

  ASSERT_EQ(play("Framed"), 200);
  ASSERT_TRUE(support::Eventually([&] { return house.get(kServed) == png; }));
  ASSERT_EQ(house.press("Status", "Stop"), 200);
  EXPECT_TRUE(house.textBecomes("Album", ""));
  EXPECT_EQ(house.get(kServed), "") << "emptied, so that no page shows the last album";
}
