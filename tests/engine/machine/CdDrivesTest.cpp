#include "engine/machine/CdDrives.hpp"

#include <gmock/gmock.h>

#include <fstream>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;

class Drives : public ::testing::Test {
 protected:
  /// A disc of two tracks, of two and three seconds.
  std::string makeImage() {
    std::ofstream(folder / "disc.bin", std::ios::binary) << std::string(5 * 75 * 2352, '\0');
    std::ofstream(folder / "disc.cue") << "FILE \"disc.bin\" BINARY\n"
                                          "  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                                          "  TRACK 02 AUDIO\n    INDEX 01 00:02:00\n";
    return folder / "disc.cue";
  }
  TempFolder folder;
};

TEST_F(Drives, ADiscsTracksAreItsPlaylist) {
  CdDrives drives({makeImage()}, false);
  ASSERT_EQ(drives.count(), 1);
  auto disc = drives.item(0)->playlist();
  EXPECT_THAT(Names(*disc), ElementsAre("Track 1", "Track 2"));
  EXPECT_EQ(disc->item(0)->durationString(), "00:02");
  EXPECT_EQ(disc->item(1)->durationString(), "00:03");
  EXPECT_EQ(disc->item(1)->getItemInfo("WM/TrackNumber"), "2");
  EXPECT_EQ(disc->item(0)->getItemInfo("WM/MCDI"), "2+96+12C+20D");
}

TEST_F(Drives, ADiscsImageHasThePictureOfItsFolder) {
  const auto shelf = std::make_shared<Shelf>(folder / "pictures", folder / "chosen");
  CdDrives drives({makeImage()}, false, shelf);
  const auto picture = [&] {
    return drives.item(0)->playlist()->item(1)->getItemInfoByType("WM/Picture", "", 0).url;
  };
  EXPECT_EQ(picture(), "");
  std::ofstream(folder / "Front.png") << "picture";
  EXPECT_EQ(picture(), "file://" + (folder / "Front.png"));
}

TEST_F(Drives, HowLongATrackIsIsKnownOnceTheDiscWasLookedAt) {
  const std::string image = makeImage();
  CdDrives drives({image}, false);
  EXPECT_EQ(drives.sectorsOf(image, 2), 0);
  drives.item(0)->playlist();
  EXPECT_EQ(drives.sectorsOf(image, 1), 2 * 75);
  EXPECT_EQ(drives.sectorsOf(image, 2), 3 * 75);
  EXPECT_EQ(drives.sectorsOf(image, 3), 0);
  EXPECT_EQ(drives.sectorsOf("/dev/other", 1), std::nullopt);
}

TEST_F(Drives, AnEjectedDiscIsNotThere) {
  CdDrives drives({makeImage()}, false);
  drives.item(0)->eject();
  EXPECT_THROW(drives.item(0)->playlist(), base::Failure);
}

TEST_F(Drives, AnIndexOutOfRangeIsNumberNine) {
  CdDrives drives({}, false);
  EXPECT_EQ(drives.count(), 0);
  try {
    drives.item(0);
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kIndex);
  }
}

TEST_F(Drives, AnImageThatIsMissingFails) {
  CdDrives drives({folder / "none.cue"}, false);
  EXPECT_THROW(drives.item(0)->playlist(), base::Failure);
}

}  // namespace
}  // namespace engine::testing
