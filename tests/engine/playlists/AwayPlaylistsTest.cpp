// The folder of the playlists is away with the disc that it lies on.
#include <gmock/gmock.h>
#include <sys/mount.h>

#include <filesystem>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"
#include "support/faults/SmallDisk.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<std::string> kAddresses{"http://x/1", "http://x/2"};

/// Everything that would change the folder, tried while it is away.
void ExpectNothingCanBeChanged(PlaylistFolder& playlists, const player::PlaylistRef& list) {
  const auto expectRefused = [&](const std::function<void()>& step) {
    EXPECT_EQ(FailureOf(step), base::number::kPathNotFound);
  };
  expectRefused([&] { playlists.lists.remove(list); });
  expectRefused([&] { playlists.lists.newPlaylist("M"); });
  expectRefused([&] { list->name("N"); });
  expectRefused([&] { list->appendItem(playlists.media("http://x/new")); });
  EXPECT_EQ(Addresses(*list), kAddresses);
}

TEST(PlaylistsThatAreAway, StayAndCantBeChangedUntilTheyAreBack) {
  const support::TempFolder root;
  const fs::path music = root.path() / "music";
  PlaylistFolder playlists(music);
  auto list = playlists.make("L", kAddresses);
  const int changes = playlists.changes;
  for (const bool pointLeft : {false, true}) {
    fs::rename(music, root.path() / "away");
    if (pointLeft) fs::create_directory(music);
    for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), ElementsAre("L"));
    EXPECT_GT(list->revision(), 0);
    ExpectNothingCanBeChanged(playlists, list);
    if (pointLeft) {
      EXPECT_TRUE(fs::is_empty(music)) << "nothing was made there";
    }
    fs::remove(music);
    fs::rename(root.path() / "away", music);
    EXPECT_EQ(playlists.named("L"), list);
  }
  EXPECT_EQ(playlists.changes, changes);
  EXPECT_THAT(playlists.messages,
              ElementsAre(HasSubstr("playlists is away"), HasSubstr("playlists is away")));
  list->appendItem(playlists.media("http://x/3"));
  EXPECT_THAT(ItemsOf(playlists.content("L.m3u8")), ::testing::SizeIs(3));
  playlists.lists.remove(list);
  EXPECT_THAT(playlists.names(), IsEmpty());
}

TEST(PlaylistsThatAreAway, AreLostWithTheirFolderWhereTheMusicIsStillThere) {
  const support::TempFolder root;
  const fs::path music = root.path() / "music";
  PlaylistFolder playlists(music);
  playlists.make("L", kAddresses);
  fs::remove_all(playlists.folder);
  EXPECT_THAT(playlists.names(), IsEmpty());
  playlists.make("M", kAddresses);
  EXPECT_THAT(playlists.names(), ElementsAre("M"));
}

TEST(PlaylistsThatAreAway, AreLostWhereAnotherFolderOfMusicHasNone) {
  const support::TempFolder root;
  const fs::path music = root.path() / "music";
  PlaylistFolder playlists(music);
  playlists.make("L", kAddresses);
  fs::rename(music, root.path() / "old");
  WriteText(music / "title.flac", "as from another disc");
  EXPECT_THAT(playlists.names(), IsEmpty());
  playlists.make("M", kAddresses);
  EXPECT_THAT(playlists.names(), ElementsAre("M"));
}

TEST(PlaylistsThatAreAway, AreKnownByTheirDiscThoughOthersLieBelowIt) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const fs::path disc = root.path() / "disc";
    const fs::path music = root.path() / "music";
    for (const fs::path& folder : {disc, music}) fs::create_directory(folder);
    // What the disc hides when it is mounted.
    WriteText(music / "playlists/Hidden.m3u8", "http://x/hidden\n");
    ASSERT_TRUE(support::MountSmallDisk(disc, std::size_t{1} << 20U)) << "no disk of its own";
    const auto mount = [&] { return ::mount(disc.c_str(), music.c_str(), nullptr, MS_BIND, nullptr) == 0; };
    ASSERT_TRUE(mount());
    fs::create_directory_symlink(music, root.path() / "link");
    PlaylistFolder playlists(root.path() / "link");
    const auto list = playlists.make("L", kAddresses);
    ASSERT_EQ(::umount2(music.c_str(), MNT_DETACH), 0);
    EXPECT_THAT(playlists.names(), ElementsAre("L"));
    ExpectNothingCanBeChanged(playlists, list);
    ASSERT_TRUE(mount());
    EXPECT_EQ(playlists.named("L"), list);
    playlists.lists.remove(list);
    EXPECT_THAT(playlists.names(), IsEmpty());
    EXPECT_TRUE(fs::is_empty(disc / "playlists"));
  }));
}

TEST(PlaylistsThatAreAway, AreKnownByAMountOfTheirOwn) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const fs::path disc = root.path() / "disc";
    const fs::path folder = root.path() / "playlists";
    for (const fs::path& each : {disc, folder}) fs::create_directory(each);
    ASSERT_TRUE(support::MountSmallDisk(disc, std::size_t{1} << 20U)) << "no disk of its own";
    ASSERT_EQ(::mount(disc.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr), 0);
    PlaylistFolder playlists(root.path());
    const auto list = playlists.make("L", kAddresses);
    ASSERT_EQ(::umount2(folder.c_str(), MNT_DETACH), 0);
    EXPECT_THAT(playlists.names(), ElementsAre("L"));
    ExpectNothingCanBeChanged(playlists, list);
    ASSERT_EQ(::mount(disc.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr), 0);
    fs::remove(playlists.path("L.m3u8"));
    EXPECT_THAT(playlists.names(), IsEmpty()) << "of a folder that is there";
  }));
}

}  // namespace
}  // namespace engine::testing
