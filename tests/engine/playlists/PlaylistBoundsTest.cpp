// Playlists of more items than anybody hears.
#include <gmock/gmock.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string Lines(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += "http://x\n";
  return text;
}

/// What this process has read from files so far.
std::uint64_t BytesRead() {
  std::ifstream file("/proc/self/io");
  std::string name;
  std::uint64_t bytes = 0;
  file >> name >> bytes;
  EXPECT_EQ(name, "rchar:");
  return bytes;
}

TEST(PlaylistBounds, AListOfTooManyItemsIsToldOnceAndNeitherReadAgainNorTouched) {
  const support::TempFolder root;
  const std::string text = Lines(M3uText::kMostItems + 1);
  WriteText(root.path().string() + "/playlists/x.m3u8", text);
  PlaylistFolder playlists(root.path());
  const std::uint64_t before = BytesRead();
  for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), IsEmpty());
  EXPECT_LT(BytesRead() - before, text.size());
  EXPECT_EQ(playlists.content("x.m3u8"), text);
  EXPECT_THAT(playlists.messages,
              ElementsAre(HasSubstr("x.m3u8 can't be read: There are more than 500000 items in it")));
}

TEST(PlaylistBounds, AnItemTooManyIsRefusedAndTheListStaysAsItIs) {
  M3uText list(Lines(M3uText::kMostItems - 1));
  list.insert(0, {"http://y", "", -1});
  EXPECT_EQ(list.count(), M3uText::kMostItems);
  const std::string before = list.text();
  EXPECT_EQ(FailureOf([&] { list.insert(0, {"http://z", "", -1}); }), base::number::kOverflow);
  EXPECT_EQ(FailureOf([&] { const M3uText more(before + "http://z\n"); }), base::number::kOverflow);
  EXPECT_EQ(list.text(), before);
}

class FullPlaylists : public ::testing::Test {
 protected:
  const support::TempFolder root;
  PlaylistFolder playlists{root.path(), files::WriteBytes, {}, 5};
};

TEST_F(FullPlaylists, TakeNoMoreAndLoseNothing) {
  const auto first = playlists.make("first", {"http://x/1", "http://x/2"});
  const auto second = playlists.make("second", {"http://x/1", "http://x/2", "http://x/3"});
  const std::string before = playlists.content("first.m3u8");
  const auto more = playlists.media("http://x/4");
  EXPECT_EQ(FailureOf([&] { first->appendItem(more); }), base::number::kOverflow);
  EXPECT_EQ(FailureOf([&] { first->insertItem(0, more); }), base::number::kOverflow);
  EXPECT_EQ(FailureOf([&] { first->insertItems(0, {{"http://x/4", "", "", 0}}); }), base::number::kOverflow);
  EXPECT_THAT(Addresses(*first), ElementsAre("http://x/1", "http://x/2"));
  EXPECT_EQ(playlists.content("first.m3u8"), before);
  second->removeItem(second->item(0));
  first->appendItem(more);
  EXPECT_THAT(Addresses(*first), ElementsAre("http://x/1", "http://x/2", "http://x/4"));
}

TEST_F(FullPlaylists, TakeAFileOnceThereIsRoomForIt) {
  const auto first = playlists.make("first", {"http://x/1", "http://x/2"});
  WriteText(playlists.path("foreign.m3u8"), Lines(4));
  for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), ElementsAre("first"));
  EXPECT_THAT(playlists.messages, ElementsAre(HasSubstr("There are more than 5 items in all playlists")));
  first->removeItem(first->item(0));
  EXPECT_THAT(playlists.names(), ElementsAre("first", "foreign"));
}

TEST_F(FullPlaylists, KeepAListWhoseFileHasBecomeTooLarge) {
  const auto list = playlists.make("list", {"http://x/1"});
  const std::string foreign = Lines(6);
  WriteText(playlists.path("list.m3u8"), foreign);
  EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("http://x/2")); }), base::number::kOverflow);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1"));
  EXPECT_EQ(playlists.content("list.m3u8"), foreign);
}

}  // namespace
}  // namespace engine::testing
