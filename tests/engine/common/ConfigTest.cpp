#include "engine/common/Config.hpp"

#include <gmock/gmock.h>

#include <fstream>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(PlayerConfig, AMissingFileLeavesTheDefaults) {
  const TempFolder folder;
  const Config config = LoadConfig(folder / "none.ini");
  EXPECT_EQ(config.musicFolders.size(), 1U);
  EXPECT_EQ(config.audioOutput, "");
  EXPECT_EQ(config.tagWorkers, 2);
  EXPECT_EQ(config.mediaAccessRights, "full");
  EXPECT_THAT(config.metadataAddress, IsEmpty());
  EXPECT_TRUE(config.findCdDrives);
}

TEST(PlayerConfig, WhatWasPlayedIsTakenUpUnlessTheFileSaysNo) {
  const TempFolder folder;
  EXPECT_TRUE(LoadConfig(folder / "none.ini").resume);
  std::ofstream(folder / "player.ini") << "[Playback]\nResume = No\n";
  EXPECT_FALSE(LoadConfig(folder / "player.ini").resume);
  std::ofstream(folder / "player.ini") << "[playback]\nresume=yes\n";
  EXPECT_TRUE(LoadConfig(folder / "player.ini").resume);
  std::ofstream(folder / "player.ini") << "[playback]\nresume=perhaps\n";
  EXPECT_THROW(LoadConfig(folder / "player.ini"), base::Failure);
}

TEST(PlayerConfig, AByteOrderMarkBeforeTheFirstLineIsNoPartOfIt) {
  const TempFolder folder;
  std::ofstream(folder / "player.ini") << "\xEF\xBB\xBF[playback]\r\nresume=no\r\n";
  EXPECT_FALSE(LoadConfig(folder / "player.ini").resume);
  std::ofstream(folder / "player.ini") << "[playback]\n\xEF\xBB\xBFresume=no\n";
  EXPECT_THROW(LoadConfig(folder / "player.ini"), base::Failure);
}

TEST(PlayerConfig, LoudnessAndFadesAreAsTheyComeUnlessTheFileSaysOtherwise) {
  const TempFolder folder;
  const Config plain = LoadConfig(folder / "none.ini");
  EXPECT_EQ(plain.replayGain, ReplayGain::kOff);
  EXPECT_EQ(plain.crossfade, 0);
  std::ofstream(folder / "player.ini")
      << "[playback]\nreplaygain=Album\npreamp = -2.5\nclipping=yes\ncrossfade = 4\n";
  const Config config = LoadConfig(folder / "player.ini");
  EXPECT_EQ(config.replayGain, ReplayGain::kAlbum);
  EXPECT_EQ(config.preamp, -2.5);
  EXPECT_TRUE(config.clipping);
  EXPECT_EQ(config.crossfade, 4);
}

TEST(PlayerConfig, ALoudnessOrFadeOutOfItsRangeIsRefused) {
  const TempFolder folder;
  for (const char* line : {"replaygain=loud", "preamp=25", "preamp=2 dB", "clipping=1", "crossfade=-1",
                           "crossfade=13", "crossfade=nan", "crossfade="}) {
    std::ofstream(folder / "player.ini") << "[playback]\n" << line << "\n";
    EXPECT_THROW(LoadConfig(folder / "player.ini"), base::Failure) << line;
  }
}

TEST(PlayerConfig, ATitleGetsMoreThanOnePackedBlockTakesAsTheDecoderAbortsWhereItGetsLess) {
  constexpr std::size_t kBlock = std::size_t{2} << 30U;
  constexpr std::size_t kTheRest = std::size_t{512} << 20U;
  EXPECT_GE(Config().titleRoom, kBlock + kTheRest);
}

TEST(PlayerConfig, AFileIsReadOverThem) {
  const TempFolder folder;
  std::ofstream(folder / "player.ini") << "# music\n[Library]\nfolder = /srv/music/\nfolder=/srv/more\n"
                                          "access=read\n[audio]\nOutput=null\r\n; addresses\n[network]\n"
                                          "metadata=http://127.0.0.1:81\ncover = http://127.0.0.1/cover/\n"
                                          "[cd]\ndrive=/dev/sr1\n";
  const Config config = LoadConfig(folder / "player.ini");
  EXPECT_THAT(config.musicFolders, ElementsAre("/srv/music", "/srv/more"));
  EXPECT_EQ(config.playlistFolder, "/srv/music/Playlists");
  EXPECT_EQ(config.audioOutput, "null");
  EXPECT_EQ(config.metadataAddress, "http://127.0.0.1:81");
  EXPECT_EQ(config.coverAddress, "http://127.0.0.1/cover/");
  EXPECT_THAT(config.cdDevices, ElementsAre("/dev/sr1"));
  EXPECT_FALSE(config.findCdDrives);
  EXPECT_EQ(config.mediaAccessRights, "read");
}

TEST(PlayerConfig, TheCoverServicesAddressEndsWithASlashWhoeverHasWrittenIt) {
  const TempFolder folder;
  std::ofstream(folder / "player.ini") << "[network]\ncover = http://localhost/cover\n";
  EXPECT_EQ(LoadConfig(folder / "player.ini").coverAddress, "http://localhost/cover/");
  std::ofstream(folder / "player.ini") << "[network]\ncover =\n";
  EXPECT_EQ(LoadConfig(folder / "player.ini").coverAddress, "");
}

TEST(PlayerConfig, TheUsersCoversLieBesideThePlayersDataUnlessTheFileSaysWhere) {
  const TempFolder folder;
  std::ofstream(folder / "player.ini") << "[library]\ndata = /srv/data\n";
  EXPECT_EQ(LoadConfig(folder / "player.ini").chosenCovers, "/srv/data/covers");
  std::ofstream(folder / "player.ini") << "[covers]\nfolder = /srv/covers/\n[library]\ndata = /srv/data\n";
  EXPECT_EQ(LoadConfig(folder / "player.ini").chosenCovers, "/srv/covers");
}

TEST(PlayerConfig, WhatDrawsFilmsIsOneOfThreeWords) {
  Config config;
  EXPECT_EQ(config.graphics, Graphics::kAuto);
  EXPECT_EQ(SetGraphics(config, "None"), "");
  EXPECT_EQ(config.graphics, Graphics::kNone);
  EXPECT_EQ(SetGraphics(config, "any"), "");
  EXPECT_EQ(config.graphics, Graphics::kAny);
  EXPECT_EQ(SetGraphics(config, "AUTO"), "");
  EXPECT_EQ(config.graphics, Graphics::kAuto);
}

TEST(PlayerConfig, AnotherWordForWhatDrawsFilmsIsToldAndTakenForAuto) {
  Config config;
  for (const char* bad : {"auto ", "gl", "anything"}) {
    config.graphics = Graphics::kNone;
    EXPECT_THAT(SetGraphics(config, bad), HasSubstr(std::string("\"") + bad + "\""));
    EXPECT_EQ(config.graphics, Graphics::kAuto) << bad;
  }
}

TEST(PlayerConfig, ALineThatIsNotUnderstoodIsNamed) {
  const TempFolder folder;
  for (const char* bad : {"volume=3", "[sound]", "[audio", "nonsense", "folder="}) {
    std::ofstream(folder / "player.ini") << "[library]\n\n" << bad << '\n';
    try {
      LoadConfig(folder / "player.ini");
      FAIL() << bad;
    } catch (const base::Failure& failure) {
      EXPECT_EQ(failure.number(), base::number::kInvalidArgument);
      EXPECT_THAT(failure.description(), HasSubstr("line 3"));
      EXPECT_THAT(failure.description(), HasSubstr(bad));
    }
  }
}

}  // namespace
}  // namespace engine::testing
