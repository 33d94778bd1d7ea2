#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "files/SyncSpy.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"
#include "support/faults/SmallDisk.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<std::string> kAddresses{"http://x/1", "http://x/2", "http://x/3"};

/// Every edit, in a playlist folder that refuses them all: each fails with the number, and nothing changes in
/// memory or in the folder.
void ExpectEveryEditRefused(PlaylistFolder& playlists, int number) {
  const auto list = playlists.named("L");
  const auto other = playlists.named("Other");
  const std::string before = playlists.content("L.m3u8");
  const std::vector<std::function<void()>> edits{
      [&] { list->appendItem(playlists.media("http://x/new")); },
      [&] { list->insertItem(0, playlists.media("http://x/new")); },
      [&] { list->moveItem(0, 2); },
      [&] { list->removeItem(list->item(1)); },
      [&] { list->name("Another"); },
      [&] { playlists.lists.newPlaylist("New"); },
  };
  for (std::size_t i = 0; i < edits.size(); ++i) {
    EXPECT_EQ(FailureOf(edits[i]), number) << "edit " << i;
    EXPECT_EQ(list->name(), "L") << "edit " << i;
    EXPECT_EQ(Addresses(*list), kAddresses) << "edit " << i;
    EXPECT_EQ(playlists.content("L.m3u8"), before) << "edit " << i;
    EXPECT_THAT(playlists.names(), ElementsAre("L", "Other")) << "edit " << i;
  }
  EXPECT_THAT(Addresses(*other), ElementsAre("http://x/4"));
}

void ExpectEditable(PlaylistFolder& playlists) {
  const auto list = playlists.named("L");
  list->appendItem(playlists.media("http://x/new"));
  list->moveItem(3, 0);
  list->removeItem(list->item(1));
  list->name("Another");
  EXPECT_THAT(Addresses(*playlists.named("Another")),
              ElementsAre("http://x/new", "http://x/2", "http://x/3"));
  EXPECT_THAT(ItemsOf(playlists.content("Another.m3u8")), ::testing::SizeIs(3));
}

std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& file : fs::directory_iterator(folder)) files.push_back(file.path().filename().string());
  return files;
}

TEST(PlaylistWrites, EveryEditIsOneFileAndOnTheDiskWhenItEnds) {
  const support::TempFolder root;
  int files = 0;
  PlaylistFolder playlists(root.path(), [&](int file, const void* bytes, std::size_t size) {
    ++files;
    return files::WriteBytes(file, bytes, size);  // which takes so little at once
  });
  const std::string folder = playlists.folder;
  const auto ours = [&](std::vector<std::string> synced) {  // the library writes, too
    std::erase_if(synced, [&](const std::string& path) {
      return !path.starts_with(root.path().string() + "/playlists");
    });
    for (std::string& path : synced) {
      if (path.ends_with(".part")) path = "file";
    }
    return synced;
  };
  files::testing::SyncSpy spy;
  auto list = playlists.lists.newPlaylist("L");
  EXPECT_EQ(files, 1);
  EXPECT_THAT(ours(spy.take()), ElementsAre("file", folder));
  const std::vector<std::function<void()>> edits{
      [&] { list->appendItem(playlists.media("http://x/1")); },
      [&] { list->insertItem(0, playlists.media("http://x/2")); },
      [&] { list->moveItem(0, 1); },
      [&] { list->removeItem(list->item(1)); },
      [&] { list->name("l"); },
  };
  for (std::size_t i = 0; i < edits.size(); ++i) {
    files = 0;
    edits[i]();
    EXPECT_EQ(files, 1) << "edit " << i;
    const auto synced = ours(spy.take());
    if (i + 1 < edits.size()) {
      EXPECT_THAT(synced, ElementsAre("file", folder)) << "edit " << i;
    } else {
      EXPECT_THAT(synced, ElementsAre("file", folder, folder)) << "the file's own name follows";
    }
  }
  files = 0;
  playlists.lists.remove(list);
  EXPECT_EQ(files, 0);
  EXPECT_THAT(ours(spy.take()), ElementsAre(folder));
}

TEST(PlaylistWrites, TheFirstPlaylistsFolderIsOnTheDiskWithIt) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  files::testing::SyncSpy spy;
  playlists.lists.newPlaylist("L");
  EXPECT_THAT(spy.take(), ::testing::IsSupersetOf({root.path().string(), playlists.folder}));
}

TEST(PlaylistFailures, AFullDiskIsToldAndLosesNothing) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const std::string disk = root.path() / "playlists";
    fs::create_directories(disk);
    const bool mounted = support::MountSmallDisk(disk, 256 * 1024);
    bool full = false;  // where mounting is not allowed, writing itself says so
    PlaylistFolder playlists(root.path(), [&](int file, const void* bytes, std::size_t size) {
      if (mounted || !full) return files::WriteBytes(file, bytes, size);
      errno = ENOSPC;
      return ssize_t{-1};
    });
    playlists.make("L", kAddresses);
    playlists.make("Other", {"http://x/4"});
    const std::string filler = disk + "/filler";
    if (mounted) support::FillUp(filler);
    full = true;
    ExpectEveryEditRefused(playlists, base::number::kDiskFull);
    EXPECT_THAT(FilesIn(disk), ::testing::IsSupersetOf({"L.m3u8", "Other.m3u8"}));
    EXPECT_EQ(FilesIn(disk).size(), mounted ? 3U : 2U) << "something was left lying about";
    {
      const auto other = playlists.named("Other");
      playlists.lists.remove(other);  // which a full disk need not refuse
      EXPECT_THAT(playlists.names(), ElementsAre("L"));
    }
    full = false;
    fs::remove(filler);
    ExpectEditable(playlists);
  }));
}

TEST(PlaylistFailures, ADiskThatFillsUpInTheMiddleOfAWriteLosesNothing) {
  const support::TempFolder root;
  std::size_t room = 1 << 20;
  PlaylistFolder playlists(root.path(), [&](int file, const void* bytes, std::size_t size) {
    const std::size_t fits = std::min({size, room, std::size_t{7}});
    if (fits == 0) {
      errno = ENOSPC;
      return ssize_t{-1};
    }
    room -= fits;
    return files::WriteBytes(file, bytes, fits);
  });
  playlists.make("L", kAddresses);
  playlists.make("Other", {"http://x/4"});
  for (const std::size_t left : {0U, 1U, 20U, 40U}) {
    room = left;
    ExpectEveryEditRefused(playlists, base::number::kDiskFull);
    EXPECT_THAT(FilesIn(playlists.folder), ::testing::UnorderedElementsAre("L.m3u8", "Other.m3u8"));
  }
  room = 1 << 20;
  ExpectEditable(playlists);
}

TEST(PlaylistFailures, AFolderThatCantBeWrittenIsPermissionDenied) {
  const support::TempFolder root;
  fs::permissions(root.path(), fs::perms::all);
  {
    PlaylistFolder playlists(root.path());
    playlists.make("L", kAddresses);
    playlists.make("Other", {"http://x/4"});
  }
  fs::remove_all(root.path() / "data");
  fs::permissions(root.path() / "playlists", fs::perms(0555));
  EXPECT_TRUE(support::InChild([&] {
    support::BecomeNobody();
    PlaylistFolder playlists(root.path());
    ExpectEveryEditRefused(playlists, base::number::kPermissionDenied);
    EXPECT_EQ(FailureOf([&] { playlists.lists.remove(playlists.named("Other")); }),
              base::number::kPermissionDenied);
    EXPECT_THAT(playlists.names(), ElementsAre("L", "Other"));
  }));
  fs::permissions(root.path() / "playlists", fs::perms(0755));
}

TEST(PlaylistFailures, AFolderThatCantBeReadKeepsWhatIsKnown) {
  const support::TempFolder root;
  fs::permissions(root.path(), fs::perms::all);
  EXPECT_TRUE(support::InChild([&] {
    support::BecomeNobody();
    PlaylistFolder playlists(root.path());
    playlists.make("L", kAddresses);
    fs::permissions(playlists.folder, fs::perms::none);
    for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), ElementsAre("L"));
    EXPECT_THAT(playlists.messages, ElementsAre(::testing::HasSubstr("can't be read")));
    EXPECT_EQ(FailureOf([&] { playlists.named("L")->moveItem(0, 1); }), base::number::kPermissionDenied);
    fs::permissions(playlists.folder, fs::perms::owner_all);
    playlists.named("L")->moveItem(0, 1);
    EXPECT_THAT(Addresses(*playlists.named("L")), ElementsAre("http://x/2", "http://x/1", "http://x/3"));
  }));
}

TEST(PlaylistFailures, AFileInThePlaceOfTheFolderIsAPathThatIsNotThere) {
  const support::TempFolder root;
  WriteText(root.path() / "playlists", "a file");
  PlaylistFolder playlists(root.path());
  EXPECT_EQ(FailureOf([&] { playlists.lists.newPlaylist("L"); }), base::number::kPathNotFound);
  EXPECT_THAT(playlists.names(), IsEmpty());
  EXPECT_EQ(FileContent(root.path() / "playlists"), "a file");
}

TEST(PlaylistFailures, AHeldPlaylistWhoseFileHasGoneIsNotChanged) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", kAddresses);
  const std::string away = root.path() / "away.m3u8";
  for (const bool noticed : {false, true}) {
    fs::rename(playlists.path("L.m3u8"), away);
    if (noticed) {
      EXPECT_THAT(playlists.names(), IsEmpty());
    }
    EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("http://x/new")); }),
              base::number::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { list->removeItem(list->item(0)); }), base::number::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { list->name("M"); }), base::number::kFileNotFound);
    EXPECT_EQ(Addresses(*list), kAddresses);
    EXPECT_EQ(list->name(), "L");
    fs::rename(away, playlists.path("L.m3u8"));
    list->appendItem(playlists.media("http://x/new"));  // it is the same one again
    EXPECT_EQ(playlists.named("L"), list);
    EXPECT_THAT(ItemsOf(playlists.content("L.m3u8")), ::testing::SizeIs(4));
    list->removeItem(list->item(3));
  }
}

TEST(PlaylistFailures, AHeldPlaylistWhoseFolderHasGoneIsNotChanged) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", kAddresses);
  for (const bool noticed : {false, true}) {
    fs::rename(playlists.folder, root.path() / "away");
    if (noticed) {
      EXPECT_THAT(playlists.names(), IsEmpty());
    }
    EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("http://x/new")); }),
              base::number::kPathNotFound);
    EXPECT_EQ(Addresses(*list), kAddresses);
    EXPECT_FALSE(fs::exists(playlists.folder));
    fs::rename(root.path() / "away", playlists.folder);
    EXPECT_EQ(playlists.named("L"), list);
  }
  list->appendItem(playlists.media("http://x/new"));
  EXPECT_THAT(ItemsOf(playlists.content("L.m3u8")), ::testing::SizeIs(4));
}

TEST(PlaylistFailures, AHeldPlaylistFollowsItsFileUnderAnotherName) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", kAddresses);
  fs::rename(playlists.path("L.m3u8"), playlists.path("moved.m3u8"));
  list->appendItem(playlists.media("http://x/new"));
  EXPECT_THAT(ItemsOf(playlists.content("moved.m3u8")), ::testing::SizeIs(4));
  EXPECT_FALSE(fs::exists(playlists.path("L.m3u8")));
  EXPECT_EQ(playlists.named("L"), list);
}

TEST(PlaylistFailures, AHeldPlaylistOutlivesThePlayer) {
  const support::TempFolder root;
  player::PlaylistRef list;
  player::PlaylistRef lost;
  std::string before;
  {
    PlaylistFolder playlists(root.path());
    list = playlists.make("L", kAddresses);
    lost = playlists.make("Lost", kAddresses);
    fs::remove(playlists.path("Lost.m3u8"));
    EXPECT_THAT(playlists.names(), ElementsAre("L"));
    before = playlists.content("L.m3u8");
  }
  for (const auto& held : {list, lost}) {
    held->removeItem(held->item(0));
    held->name("Held");
    EXPECT_THAT(Addresses(*held), ElementsAre("http://x/2", "http://x/3"));
  }
  EXPECT_EQ(FileContent(root.path() / "playlists/L.m3u8"), before);
}

TEST(PlaylistFailures, TheVeryItemThatIsHandedOverIsRemoved) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.lists.newPlaylist("L");
  const auto twice = playlists.media("http://x/1");
  list->appendItem(twice);
  list->appendItem(playlists.media("http://x/2"));
  list->appendItem(twice);
  list->removeItem(list->item(2));
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1", "http://x/2"));
  list->insertItem(0, twice);
  list->moveItem(1, 2);
  const auto last = list->item(2);
  list->removeItem(last);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1", "http://x/2"));
  PlaylistFolder restarted(root.path());
  EXPECT_THAT(Addresses(*restarted.named("L")), ElementsAre("http://x/1", "http://x/2"));
}

TEST(PlaylistFailures, WhatIsNoPlaceOrNoItemIsRefused) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", kAddresses);
  const std::string before = playlists.content("L.m3u8");
  EXPECT_EQ(FailureOf([&] { list->moveItem(0, 3); }), base::number::kIndex);
  EXPECT_EQ(FailureOf([&] { list->moveItem(-1, 0); }), base::number::kIndex);
  EXPECT_EQ(FailureOf([&] { list->insertItem(4, playlists.media("http://x/n")); }), base::number::kIndex);
  EXPECT_EQ(FailureOf([&] { list->appendItem(nullptr); }), base::number::kObjectMissing);
  EXPECT_EQ(FailureOf([&] { list->removeItem(nullptr); }), base::number::kObjectMissing);
  EXPECT_EQ(FailureOf([&] { list->removeItem(playlists.media("http://x/n")); }),
            base::number::kInvalidArgument);
  EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("")); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("http://x/" + std::string(1 << 20, 'a'))); }),
            base::number::kInvalidArgument);
  EXPECT_EQ(Addresses(*list), kAddresses);
  EXPECT_EQ(playlists.content("L.m3u8"), before);
}

}  // namespace
}  // namespace engine::testing
