// What the library makes of its folders, and of its index.

#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "base/Failure.hpp"
#include "engine/common/MusicLibrary.hpp"

namespace {

/// True while the system has no watch of folders left for this program.
bool noneIsLeft = false;
/// The folder that may not be watched.
std::string refused;

}  // namespace

// Linked in the place of the C library's.
extern "C" int inotify_init1(int flags) noexcept {
  if (noneIsLeft) {
    errno = EMFILE;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_inotify_init1, flags));
}
extern "C" int inotify_add_watch(int file, const char* path, std::uint32_t events) noexcept {
  if (!refused.empty() && refused == path) {
    errno = EACCES;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_inotify_add_watch, file, path, events));
}

namespace engine::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

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

TEST_F(LibraryOfMusic, WhereNoWatchIsLeftItSaysOnceThatChangesAreNotSeen) {
  addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz");
  addTrack("b/2.flac", "Two", "Ann", "Blue", "Jazz");
  noneIsLeft = true;
  startWith(2);
  noneIsLeft = false;
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  player.reset();
  EXPECT_THAT(log, ElementsAre(HasSubstr("can't be watched")));
}

TEST_F(LibraryOfMusic, AFolderThatCantBeWatchedLeavesTheOthersWatched) {
  addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz");
  refused = config.musicFolders.front();
  startWith(1);
  addTrack("a/2.flac", "Two", "Ann", "Blue", "Jazz");
  EXPECT_TRUE(libraryHolds(2));
  refused.clear();
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

}  // namespace
}  // namespace engine::testing
