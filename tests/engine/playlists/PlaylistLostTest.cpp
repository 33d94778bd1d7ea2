#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>

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

TEST(UnreadablePlaylists, OneThatCanBeReadAgainIsThereThoughItsFileIsAsItWas) {
  const support::TempFolder root;
  fs::permissions(root.path(), fs::perms::all);
  EXPECT_TRUE(support::InChild([&] {
    support::BecomeNobody();
    PlaylistFolder playlists(root.path());
    auto known = playlists.make("Known", {"http://x/1"});
    WriteText(playlists.path("New.m3u8"), "http://x/2\n");
    WriteText(playlists.path("Known.m3u8"), "#PLAYLIST:Known\nhttp://x/3\nhttp://x/4\n");
    for (const char* file : {"New.m3u8", "Known.m3u8"}) {
      fs::permissions(playlists.path(file), fs::perms::none);
    }
    for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), ElementsAre("Known"));
    EXPECT_THAT(playlists.messages,
                ElementsAre(HasSubstr("Known.m3u8 can't be read"), HasSubstr("New.m3u8 can't be read")));
    EXPECT_THAT(Addresses(*known), ElementsAre("http://x/1"));
    for (const char* file : {"New.m3u8", "Known.m3u8"}) {
      fs::permissions(playlists.path(file), fs::perms::owner_all);
    }
    EXPECT_THAT(playlists.names(), ElementsAre("Known", "New"));
    EXPECT_THAT(Addresses(*known), ElementsAre("http://x/3", "http://x/4"));
    EXPECT_EQ(playlists.messages.size(), 2U);
  }));
}

TEST(UnreadablePlaylists, AListenersFailureIsNotTheFiles) {
  const support::TempFolder root;
  PlaylistFolder beside((root.path() / "beside").string());
  std::vector<std::string> messages;
  int changes = 0;
  StoredPlaylists lists(beside.loop, (root.path() / "playlists").string(), beside.library,
                        {[&] { ++changes; }, [] { throw std::runtime_error("listening"); },
                         [&](const std::string& line) { messages.push_back(line); }});
  const auto list = lists.newPlaylist("L");
  changes = 0;
  WriteText(root.path() / "playlists/L.m3u8", "#PLAYLIST:Another\nhttp://x/1\n");
  EXPECT_EQ(lists.getByName("Another")->count(), 1);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1"));
  EXPECT_THAT(messages, IsEmpty());
  EXPECT_EQ(changes, 1);
}

TEST(LostPlaylists, TwoThatWereLostAtOnePathAreBothLetGo) {
  const support::TempFolder root;
  player::PlaylistRef first;
  player::PlaylistRef second;
  {
    PlaylistFolder playlists(root.path());
    first = playlists.make("L", {"http://x/1"});
    fs::remove(playlists.path("L.m3u8"));
    EXPECT_THAT(playlists.names(), IsEmpty());
    second = playlists.make("L", {"http://x/2"});
    fs::remove(playlists.path("L.m3u8"));
    EXPECT_THAT(playlists.names(), IsEmpty());
    for (const auto& lost : {first, second}) {
      EXPECT_EQ(FailureOf([&] { lost->appendItem(playlists.media("http://x/3")); }),
                base::number::kFileNotFound);
    }
  }
  for (const auto& held : {first, second}) {
    held->removeItem(held->item(0));
    EXPECT_EQ(held->count(), 0);
  }
  EXPECT_TRUE(fs::is_empty(root.path() / "playlists"));
}

TEST(LostPlaylists, ARenameOntoThePathOfALostOneLeavesBothTheirOwn) {
  const support::TempFolder root;
  const std::string away = (root.path() / "away.m3u8").string();
  player::PlaylistRef lost;
  player::PlaylistRef renamed;
  {
    PlaylistFolder playlists(root.path());
    lost = playlists.make("L", {"http://x/1"});
    fs::rename(playlists.path("L.m3u8"), away);
    renamed = playlists.make("M", {"http://x/2"});
    renamed->name("L");
    fs::remove(playlists.path("L.m3u8"));
    EXPECT_THAT(playlists.names(), IsEmpty());
    fs::rename(away, playlists.path("L.m3u8"));
    EXPECT_EQ(playlists.named("L"), lost) << "the file is the first one's";
    EXPECT_THAT(Addresses(*lost), ElementsAre("http://x/1"));
  }
  renamed->removeItem(renamed->item(0));
  EXPECT_EQ(renamed->count(), 0);
}

TEST(LostPlaylists, OneIsGoneUntilItsFileIsBack) {
  const support::TempFolder root;
  const std::string away = (root.path() / "away.m3u8").string();
  PlaylistFolder playlists(root.path());
  const auto list = playlists.make("L", {"http://x/1"});
  const std::int64_t before = list->revision();
  fs::rename(playlists.path("L.m3u8"), away);
  EXPECT_THAT(playlists.names(), IsEmpty());
  EXPECT_EQ(list->revision(), 0) << "as that of a list which is not stored";
  fs::rename(away, playlists.path("L.m3u8"));
  EXPECT_THAT(playlists.names(), ElementsAre("L"));
  EXPECT_GE(list->revision(), before);
}

TEST(RemovedPlaylists, OneWhoseFileWasMovedIsRemovedWhereItLiesNow) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  const auto list = playlists.make("L", {"http://x/1"});
  fs::rename(playlists.path("L.m3u8"), playlists.path("M.m3u8"));
  playlists.lists.remove(list);
  EXPECT_THAT(playlists.names(), IsEmpty());
  EXPECT_TRUE(fs::is_empty(playlists.folder));
}

TEST(RemovedPlaylists, AFileThatWasMovedOverAnothersIsNotRemovedInItsPlace) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  const auto list = playlists.make("L", {"http://x/1"});
  const auto other = playlists.make("M", {"http://x/2"});
  fs::rename(playlists.path("M.m3u8"), playlists.path("L.m3u8"));
  EXPECT_EQ(FailureOf([&] { playlists.lists.remove(list); }), base::number::kFileNotFound);
  EXPECT_THAT(playlists.names(), ElementsAre("M"));
  EXPECT_EQ(playlists.named("M"), other);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1"));
  other->appendItem(playlists.media("http://x/3"));
  EXPECT_THAT(ItemsOf(playlists.content("L.m3u8")), ::testing::SizeIs(2));
  playlists.lists.remove(other);
  EXPECT_TRUE(fs::is_empty(playlists.folder));
}

TEST(RemovedPlaylists, ALostOneIsNotFoundAndOneOfElsewhereIsRefused) {
  const support::TempFolder root;
  PlaylistFolder playlists((root.path() / "here").string());
  PlaylistFolder elsewhere((root.path() / "there").string());
  const auto list = playlists.make("L", {"http://x/1"});
  const auto foreign = elsewhere.make("L", {"http://x/2"});
  EXPECT_EQ(FailureOf([&] { playlists.lists.remove(foreign); }), base::number::kInvalidArgument);
  EXPECT_TRUE(fs::exists(elsewhere.path("L.m3u8")));
  fs::remove(playlists.path("L.m3u8"));
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(FailureOf([&] { playlists.lists.remove(list); }), base::number::kFileNotFound);
  }
}

}  // namespace
}  // namespace engine::testing
