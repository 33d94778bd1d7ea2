#include <gmock/gmock.h>

#include <filesystem>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<std::string>& OddNames() {
  static const std::vector<std::string> names{
      "plain",      "two\nlines", "two lines", " blank first", "blank last ", "  ",           "\n",
      "tab\tin it", "/",          "a/b",       "..",           ".",           ".hidden",      "~",
      "\"quoted\"", "'single'",   "100%",      "%0A",          "a.",          "a!",           "a?",
      "a:b",        "a\\b",       "-rf",       "\x01\x02",     "\x7F",        "\u2028",       "été",
      "日本語",     "\U0001F3B5", "CON",       "x.m3u8",       "#PLAYLIST:x", "\xEF\xBB\xBFx"};
  return names;
}

TEST(PlaylistNames, EveryNameSurvivesARestart) {
  const support::TempFolder root;
  const std::string address = "http://127.0.0.1/1.mp3";
  std::vector<std::string> names = OddNames();
  names.push_back(std::string(300, 'n'));
  names.push_back(std::string(299, 'n') + 'm');
  names.push_back(std::string(1, 'x') + std::string(4000, ' ') + 'y');
  {
    PlaylistFolder playlists(root.path());
    for (const std::string& name : names) playlists.make(name, {address});
  }
  PlaylistFolder playlists(root.path());
  EXPECT_THAT(playlists.names(), ::testing::UnorderedElementsAreArray(names));
  for (const std::string& name : names) {
    const auto list = playlists.named(name);
    ASSERT_NE(list, nullptr) << name;
    EXPECT_THAT(Addresses(*list), ElementsAre(address)) << name;
  }
  EXPECT_THAT(playlists.messages, IsEmpty());
}

TEST(PlaylistNames, EveryNameCanBeGivenAnew) {
  const support::TempFolder root;
  const std::string address = "http://127.0.0.1/1.mp3";
  {
    PlaylistFolder playlists(root.path());
    for (const std::string& name : OddNames()) playlists.make("was " + name, {address})->name(name);
  }
  PlaylistFolder playlists(root.path());
  EXPECT_THAT(playlists.names(), ::testing::UnorderedElementsAreArray(OddNames()));
  for (const auto& file : std::filesystem::recursive_directory_iterator(playlists.folder)) {
    EXPECT_TRUE(file.is_regular_file()) << file.path();
    EXPECT_NE(file.path().filename().string().front(), '.') << file.path();
  }
}

TEST(PlaylistNames, ThatAreTooLongAreCutAndToldOnceForEachFile) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  const std::string huge(60000, 'n');
  std::string items;
  for (int i = 0; i < 100; ++i) items += "#EXTINF:5," + huge + "\nhttp://x/" + std::string(60000, 'a') + "\n";
  WriteText(playlists.path("list.m3u8"), "#PLAYLIST:" + huge + "\n" + items);
  WriteText(playlists.path("plain.m3u8"), "#EXTINF:5,Ann - Song\nhttp://x/a\n");
  const std::string name(4096, 'n');
  EXPECT_THAT(playlists.names(), ::testing::UnorderedElementsAre(name, "plain"));
  const auto list = playlists.named(name);
  ASSERT_EQ(list->count(), 100);
  for (std::int32_t i = 0; i < list->count(); ++i) EXPECT_EQ(list->item(i)->name(), name);
  WriteText(playlists.path("list.m3u8"), "#PLAYLIST:" + huge + "\n" + items + "http://x/" + huge + "\n");
  EXPECT_EQ(list->count(), 100);
  playlists.names();
  EXPECT_EQ(playlists.named(name)->item(100)->name(), name) << "the name that its address gives";
  EXPECT_THAT(playlists.messages,
              ElementsAre(::testing::HasSubstr("list.m3u8: a name in it is too long and was cut")));
}

TEST(PlaylistNames, WhatIsNoNameIsRefusedAndChangesNothing) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", {"http://127.0.0.1/1.mp3"});
  const std::string before = playlists.content("L.m3u8");
  for (const std::string& name :
       {std::string(), std::string("\xFF\xFE"), std::string("a\xE9"), std::string("nul\0in", 6),
        std::string(1 << 20, 'x'), std::string(4097, 'x')}) {
    EXPECT_EQ(FailureOf([&] { playlists.lists.newPlaylist(name); }), base::number::kInvalidArgument);
    EXPECT_EQ(FailureOf([&] { list->name(name); }), base::number::kInvalidArgument);
  }
  EXPECT_EQ(list->name(), "L");
  EXPECT_EQ(playlists.content("L.m3u8"), before);
  EXPECT_THAT(playlists.names(), ElementsAre("L"));
}

TEST(PlaylistNames, NamesThatDifferInCaseOnlyAreOne) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("Été", {});
  auto other = playlists.make("Ete", {});
  EXPECT_EQ(FailureOf([&] { playlists.lists.newPlaylist("ÉTÉ"); }), base::number::kNameInUse);
  EXPECT_EQ(FailureOf([&] { other->name("éTÉ"); }), base::number::kNameInUse);
  list->name("ÉTÉ");
  EXPECT_THAT(playlists.names(), ElementsAre("Ete", "ÉTÉ"));
}

TEST(PlaylistNames, NamesThatDifferInPunctuationOnlyAreTwo) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  playlists.make("a?", {"http://x/1"});
  playlists.make("a!", {"http://x/2"});
  playlists.make("a%3F", {"http://x/3"});
  EXPECT_THAT(Addresses(*playlists.named("a?")), ElementsAre("http://x/1"));
  EXPECT_THAT(Addresses(*playlists.named("a!")), ElementsAre("http://x/2"));
  EXPECT_THAT(Addresses(*playlists.named("a%3F")), ElementsAre("http://x/3"));
}

TEST(PlaylistNames, SeveralOfOneNameAreFoundInTheOrderOfTheirFiles) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  WriteText(playlists.path("c.m3u"), "#PLAYLIST:Same\nhttp://x/c\n");
  WriteText(playlists.path("a.m3u8"), "#PLAYLIST:same\nhttp://x/a\n");
  WriteText(playlists.path("b.m3u"), "#PLAYLIST:SAME\nhttp://x/b\n");
  for (int look = 0; look < 2; ++look) {
    const auto found = playlists.lists.getByName("Same");
    ASSERT_EQ(found->count(), 3);
    EXPECT_THAT(Addresses(*found->item(0)), ElementsAre("http://x/a"));
    EXPECT_THAT(Addresses(*found->item(1)), ElementsAre("http://x/b"));
    EXPECT_THAT(Addresses(*found->item(2)), ElementsAre("http://x/c"));
  }
  EXPECT_EQ(FailureOf([&] { playlists.lists.newPlaylist("same"); }), base::number::kNameInUse);
}

TEST(PlaylistNames, ANameThatAnotherHasTooIsRefusedWhicheverFileComesFirst) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  WriteText(playlists.path("a.m3u8"), "#PLAYLIST:Same\n");
  WriteText(playlists.path("b.m3u8"), "#PLAYLIST:same\n");
  const auto both = playlists.lists.getByName("Same");
  ASSERT_EQ(both->count(), 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(FailureOf([&] { both->item(i)->name("SAME"); }), base::number::kNameInUse) << i;
  }
  both->item(0)->name("Mine");
  both->item(1)->name("SAME");
  EXPECT_THAT(playlists.names(), ElementsAre("Mine", "SAME"));
}

TEST(PlaylistNames, AFileInTheWayIsNeitherReplacedNorTouched) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  std::filesystem::create_directories(playlists.path("L.m3u8"));
  std::filesystem::create_symlink("nowhere", playlists.path("L (2).m3u8"));
  WriteText(playlists.path("L (3).m3u8"), "#PLAYLIST:Other\n");
  auto list = playlists.make("L", {"http://x/1"});
  EXPECT_TRUE(std::filesystem::is_directory(playlists.path("L.m3u8")));
  EXPECT_TRUE(std::filesystem::is_symlink(playlists.path("L (2).m3u8")));
  EXPECT_EQ(playlists.content("L (3).m3u8"), "#PLAYLIST:Other\n");
  list->name("Away");
  list->name("L");
  EXPECT_THAT(ItemsOf(playlists.content("L (4).m3u8")), ::testing::SizeIs(1));
  EXPECT_THAT(playlists.names(), ElementsAre("L", "Other"));
}

TEST(PlaylistNames, ARenameSeesWhatOthersHaveMadeMeanwhile) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  auto list = playlists.make("L", {"http://x/1"});
  WriteText(playlists.path("M.m3u8"), "#PLAYLIST:Taken\nhttp://x/2\n");
  EXPECT_EQ(FailureOf([&] { list->name("taken"); }), base::number::kNameInUse);
  list->name("M");  // whose file's name is taken
  EXPECT_THAT(playlists.names(), ElementsAre("M", "Taken"));
  EXPECT_THAT(Addresses(*playlists.named("M")), ElementsAre("http://x/1"));
  EXPECT_THAT(Addresses(*playlists.named("Taken")), ElementsAre("http://x/2"));
}

TEST(PlaylistNames, AForeignChangeThatANewPlaylistFindsIsTold) {
  const support::TempFolder root;
  PlaylistFolder playlists(root.path());
  WriteText(playlists.path("foreign.m3u8"), "http://x/1\n");
  EXPECT_EQ(FailureOf([&] { playlists.lists.newPlaylist("FOREIGN"); }), base::number::kNameInUse);
  EXPECT_EQ(playlists.changes, 1);
}

}  // namespace
}  // namespace engine::testing
