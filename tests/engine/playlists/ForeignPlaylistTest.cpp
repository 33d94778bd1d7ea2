#include <gmock/gmock.h>
#include <mpv/client.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ForeignPlaylists : public ::testing::Test {
 protected:
  const support::TempFolder root;
  PlaylistFolder playlists{root.path()};
};

/// What another player finds in a playlist file: mpv, whose own reader takes it apart.
struct Found {
  std::vector<std::string> places;
  std::vector<std::string> titles;
};

Found ReadByMpv(const std::string& path) {
  Found found;
  mpv_handle* mpv = mpv_create();
  for (const char* option : {"vo", "ao"}) mpv_set_option_string(mpv, option, "null");
  mpv_set_option_string(mpv, "idle", "yes");
  mpv_set_option_string(mpv, "pause", "yes");
  mpv_set_option_string(mpv, "config", "no");
  EXPECT_EQ(mpv_initialize(mpv), 0);
  const char* load[] = {"loadlist", path.c_str(), "append", nullptr};
  EXPECT_EQ(mpv_command(mpv, load), 0);
  std::int64_t count = 0;
  EXPECT_EQ(mpv_get_property(mpv, "playlist-count", MPV_FORMAT_INT64, &count), 0);
  const auto text = [&](std::int64_t at, const char* what) {
    char* value = mpv_get_property_string(mpv, ("playlist/" + std::to_string(at) + what).c_str());
    std::string copy = value != nullptr ? value : "";
    mpv_free(value);
    return copy;
  };
  for (std::int64_t at = 0; at < count; ++at) {
    found.places.push_back(text(at, "/filename"));
    found.titles.push_back(text(at, "/title"));
  }
  mpv_terminate_destroy(mpv);
  return found;
}

TEST_F(ForeignPlaylists, WhatIsWrittenHereIsReadByAnotherPlayer) {
  auto list =
      playlists.make("two\nlines ", {"/music/été.mp3", "http://127.0.0.1/a%20b.mp3", "/music/%41.mp3"});
  WriteText(playlists.path("old.m3u"), "# remark\r\n#EXTINF:3,Bob - Far\r\n/music/far away.mp3\r\n");
  auto old = playlists.named("old");
  old->appendItem(playlists.media("/music/new.mp3"));
  const Found own = ReadByMpv(playlists.path("two%0Alines .m3u8"));
  EXPECT_THAT(own.places, ElementsAre("/music/été.mp3", "http://127.0.0.1/a%20b.mp3", "/music/%41.mp3"));
  EXPECT_THAT(own.titles, ElementsAre("été", "a%20b", "%41"));
  const Found foreign = ReadByMpv(playlists.path("old.m3u"));
  EXPECT_THAT(foreign.places, ElementsAre("/music/far away.mp3", "/music/new.mp3"));
  EXPECT_THAT(foreign.titles, ElementsAre("Bob - Far", "new"));
}

TEST_F(ForeignPlaylists, WhatOtherPlayersWriteIsRead) {
  const std::string music = root.path() / "music";
  WriteText(music + "/a b.mp3", "");
  WriteText(music + "/c.mp3", "");
  WriteText(playlists.path("player one.m3u8"),
            "#EXTM3U\n#EXTINF:215,Ann - One\n#EXTVLCOPT:network-caching=1000\nfile://" + music +
                "/a%20b.mp3\n#EXTINF:-1,Radio\nhttps://radio.example/stream?id=1&b=2\n");
  WriteText(playlists.path("player two.m3u"),
            "\xEF\xBB\xBF#EXTM3U\r\n#EXTENC:UTF-8\r\n#PLAYLIST:Second\r\n#EXTALB:Blue\r\n"
            "#EXTINF:7,Bob - Two\r\n..\\music\\c.mp3\r\n");
  const auto one = playlists.named("player one");
  ASSERT_NE(one, nullptr);
  EXPECT_THAT(Addresses(*one), ElementsAre(music + "/a b.mp3", "https://radio.example/stream?id=1&b=2"));
  EXPECT_EQ(one->item(0)->name(), "One");
  EXPECT_EQ(one->item(0)->getItemInfo("Artist"), "Ann");
  EXPECT_EQ(one->item(0)->duration(), 215);
  const auto two = playlists.named("second");
  ASSERT_NE(two, nullptr);
  EXPECT_THAT(Addresses(*two), ElementsAre(playlists.path("../music/c.mp3")));
  EXPECT_EQ(two->item(0)->name(), "Two");
}

TEST_F(ForeignPlaylists, AListThatAnotherProgramHasMadeIsReadAndKeepsItsTags) {
  fs::create_directories(playlists.folder);
  const std::string make =
      "ffmpeg -loglevel error -nostdin -f lavfi -i sine=duration=3 -f hls -hls_time 1 "
      "-hls_list_size 0 '" +
      playlists.path("made.m3u8") + "'";
  ASSERT_EQ(std::system(make.c_str()), 0);
  std::vector<std::string> segments;
  for (const auto& file : fs::directory_iterator(playlists.folder)) {
    if (file.path().extension() == ".ts") segments.push_back(file.path().string());
  }
  std::sort(segments.begin(), segments.end());
  ASSERT_GE(segments.size(), 2U);
  const std::string before = playlists.content("made.m3u8");
  ASSERT_THAT(before, HasSubstr("#EXT-X-ENDLIST"));
  const auto list = playlists.named("made");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(Addresses(*list), segments);
  EXPECT_EQ(list->item(0)->name(), "made0");
  EXPECT_EQ(list->item(0)->duration(), 1);
  list->appendItem(playlists.media("http://x/new"));
  const std::string now = playlists.content("made.m3u8");
  const std::size_t end = before.find("#EXT-X-ENDLIST");
  EXPECT_EQ(now, before.substr(0, end) + "#EXTINF:-1,new\nhttp://x/new\n" + before.substr(end));
}

TEST_F(ForeignPlaylists, AnEditKeepsRemarksTagsLineEndsAndTheOlderEncoding) {
  const std::string head = "#EXTM3U\r\n# my own\r\n";
  const std::string first = "#EXTALB:Blau\r\n#EXTINF:5,Andr\xE9 - Caf\xE9\r\ncaf\xE9.mp3\r\n";
  const std::string second = "# the second\r\n/b.mp3\r\n";
  WriteText(playlists.path("L.m3u"), head + first + second + "# end\r\n");
  auto list = playlists.named("L");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->item(0)->name(), "Café");
  list->moveItem(0, 1);
  const std::string headNow = head + "#VANTORIX-ITEMS\r\n";  // as the item that is first has a remark
  EXPECT_EQ(playlists.content("L.m3u"), headNow + second + first + "# end\r\n");
  list->removeItem(list->item(1));
  EXPECT_EQ(playlists.content("L.m3u"), headNow + second + "# end\r\n");
  list->appendItem(playlists.media("http://x/n"));
  EXPECT_EQ(playlists.content("L.m3u"), headNow + second + "#EXTINF:-1,n\r\nhttp://x/n\r\n# end\r\n");
}

TEST_F(ForeignPlaylists, AListWhoseFileIsOfAnotherEncodingNowIsNotChanged) {
  auto held = playlists.make("held", {"http://x/1"});
  const std::string text("\xFF\xFE/\0a\0\n\0", 8);
  WriteText(playlists.path("held.m3u8"), text);
  EXPECT_EQ(FailureOf([&] { held->appendItem(playlists.media("http://x/2")); }),
            base::number::kInvalidArgument);
  EXPECT_EQ(playlists.content("held.m3u8"), text);
  EXPECT_THAT(Addresses(*held), ElementsAre("http://x/1"));
}

TEST_F(ForeignPlaylists, AFileMeantByItsOlderEncodingIsFound) {
  WriteText(root.path() / "café.mp3", "");
  WriteText(playlists.path("L.m3u"), "../caf\xE9.mp3\n../gone\xE9.mp3\n");
  const auto list = playlists.named("L");
  ASSERT_NE(list, nullptr);
  EXPECT_THAT(Addresses(*list), ElementsAre(playlists.path("../café.mp3"), HasSubstr("gone%E9.mp3")));
}

TEST(LinkedPlaylists, ALinkIntoTheMusicStaysALinkAndItsFileIsWritten) {
  const support::TempFolder root;
  for (const std::string folder : {"music", "playlists/kept"}) {
    PlaylistFolder playlists(root.path(), files::WriteBytes, {root.path() / "music"});
    const std::string target = root.path() / folder / "real.m3u8";
    WriteText(target, "#EXTM3U\n#PLAYLIST:Linked\nhttp://x/1\n");
    fs::create_directories(playlists.folder);
    fs::create_symlink("../" + folder + "/real.m3u8", playlists.path("L.m3u8"));
    auto list = playlists.named("Linked");
    ASSERT_NE(list, nullptr);
    list->appendItem(playlists.media("http://x/2"));
    EXPECT_TRUE(fs::is_symlink(playlists.path("L.m3u8")));
    EXPECT_THAT(ItemsOf(FileContent(target)), SizeIs(2));
    list->name("Named anew");
    EXPECT_TRUE(fs::is_symlink(playlists.path("Named anew.m3u8")));
    EXPECT_FALSE(fs::exists(playlists.path("L.m3u8")));
    EXPECT_EQ(M3uText(FileContent(target)).name(), "Named anew");
    playlists.lists.remove(list);
    EXPECT_THAT(playlists.names(), IsEmpty());
    EXPECT_THAT(ItemsOf(FileContent(target)), SizeIs(2));
  }
}

TEST_F(ForeignPlaylists, ALinkThatLeadsOutIsToldOnceAndNeitherReadNorWritten) {
  const std::string text = "#EXTM3U\n#PLAYLIST:Linked\nhttp://x/1\n";
  for (const std::string target : {"elsewhere/real.m3u8", "playlists-of-another/real.m3u8"}) {
    WriteText(root.path() / target, text);
    fs::create_directories(playlists.folder);
    fs::create_symlink("../" + target, playlists.path("L.m3u8"));
    EXPECT_THAT(playlists.names(), IsEmpty());
    EXPECT_THAT(playlists.names(), IsEmpty());
    EXPECT_THAT(playlists.messages,
                ElementsAre(HasSubstr("leads out of the folders of playlists and music")));
    EXPECT_EQ(FileContent(root.path() / target), text);
    fs::remove(playlists.path("L.m3u8"));
    playlists.names();
    playlists.messages.clear();
  }
}

TEST_F(ForeignPlaylists, AFileThatBecomesALinkLeadingOutIsNotWritten) {
  auto list = playlists.make("L", {"http://x/1"});
  const std::string target = root.path() / "elsewhere/real.m3u8";
  const std::string text = playlists.content("L.m3u8");
  WriteText(target, text);
  fs::remove(playlists.path("L.m3u8"));
  fs::create_symlink(target, playlists.path("L.m3u8"));
  EXPECT_EQ(FailureOf([&] { list->appendItem(playlists.media("http://x/2")); }),
            base::number::kPermissionDenied);
  EXPECT_EQ(FailureOf([&] { list->name("Another"); }), base::number::kPermissionDenied);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/1"));
  EXPECT_EQ(FileContent(target), text);
}

TEST_F(ForeignPlaylists, AFilesModeStaysAsItWas) {
  for (const mode_t mode : {0640U, 0600U, 0664U}) {
    const std::string file = playlists.path("L.m3u8");
    WriteText(file, "#PLAYLIST:L\nhttp://x/1\n");
    ASSERT_EQ(::chmod(file.c_str(), mode), 0);
    auto list = playlists.named("L");
    ASSERT_NE(list, nullptr);
    list->appendItem(playlists.media("http://x/2"));
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, mode);
  }
}

TEST_F(ForeignPlaylists, NonsenseHarmsNothing) {
  std::string binary;
  for (int i = 0; i < 100000; ++i) binary += static_cast<char>(i * 7919 % 251 + (i % 11 == 0 ? 5 : 0));
  const std::vector<std::pair<std::string, std::string>> files{
      {"binary.m3u8", binary},
      {"nul.m3u8", std::string("#EXTINF:1,a\0b\n/a\0b.mp3\n/c.mp3\n", 30)},
      {"long.m3u8", std::string(5 << 20, 'x') + "\nhttp://x/1\n"},
      {"empty.m3u8", ""},
      {"file.m3u8", "file://\nFILE://\nfile:///\n#EXTINF:99999999999999999999,x\n/a\n"},
      {"tags.m3u8", "#EXTM3U#EXTM3U\n#EXTINF\n#EXTINF:\n#EXTINF:,\n#PLAYLIST:\n#VANTORIX-NAME:%00%FF\n#\n"},
  };
  for (const auto& [name, content] : files) WriteText(playlists.path(name), content);
  fs::create_directories(playlists.path("folder.m3u8"));
  fs::create_symlink("nowhere", playlists.path("dangling.m3u8"));
  fs::create_symlink("circle.m3u8", playlists.path("circle.m3u8"));
  ASSERT_EQ(::mkfifo(playlists.path("pipe.m3u8").c_str(), 0600), 0);
  auto good = playlists.make("good", {"http://x/1"});

  EXPECT_THAT(playlists.names(), ElementsAre("binary", "empty", "file", "good", "long", "nul", "tags"));
  EXPECT_THAT(Addresses(*playlists.named("nul")), ElementsAre("/c.mp3"));
  EXPECT_THAT(Addresses(*playlists.named("long")), ElementsAre("http://x/1"));
  EXPECT_THAT(Addresses(*playlists.named("file")), ElementsAre("/", "/a"));
  EXPECT_EQ(playlists.named("empty")->count(), 0);
  EXPECT_THAT(playlists.messages, IsEmpty());
  for (const auto& [name, content] : files) {
    EXPECT_EQ(playlists.content(name), content) << "not written before it is changed: " << name;
    auto list = playlists.named(name.substr(0, name.size() - 5));
    const auto before = Addresses(*list);
    list->appendItem(playlists.media("http://x/new"));
    const std::string now = playlists.content(name);
    PlaylistFolder restarted(root.path());
    auto after = Addresses(*restarted.named(list->name()));
    ASSERT_FALSE(after.empty());
    EXPECT_EQ(after.back(), "http://x/new");
    after.pop_back();
    EXPECT_EQ(after, before) << name;
    EXPECT_THAT(now.size(), ::testing::Gt(content.size()));
  }
  EXPECT_THAT(Addresses(*good), ElementsAre("http://x/1"));
}

TEST_F(ForeignPlaylists, AFileOfAnotherEncodingIsToldOnceAndNotTouched) {
  const std::string text("\xFF\xFE#\0E\0X\0T\0\n\0a\0.\0m\0p\0003\0\n\0", 24);
  WriteText(playlists.path("Wide.m3u"), text);
  EXPECT_THAT(playlists.names(), IsEmpty());
  EXPECT_THAT(playlists.names(), IsEmpty()) << "looked at twice";
  EXPECT_THAT(playlists.messages,
              ElementsAre(::testing::HasSubstr("it is UTF-16; it has to be saved as UTF-8")));
  EXPECT_EQ(playlists.content("Wide.m3u"), text);
  WriteText(playlists.path("Wide.m3u"), "\xFF\xFE.mp3\n");
  EXPECT_THAT(playlists.names(), ElementsAre("Wide")) << "two letters of an older encoding";
}

TEST_F(ForeignPlaylists, AFileThatIsTooLargeIsToldOnceAndNotTouched) {
  auto held = playlists.make("held", {"http://x/1"});
  for (const char* name : {"huge.m3u8", "held.m3u8"}) {
    WriteText(playlists.path(name), "#EXTM3U\n");
    fs::resize_file(playlists.path(name), (64 << 20) + 1);
  }
  for (int look = 0; look < 3; ++look) EXPECT_THAT(playlists.names(), ElementsAre("held"));
  EXPECT_THAT(playlists.messages,
              ::testing::UnorderedElementsAre(HasSubstr("huge.m3u8 is larger than 64 MiB"),
                                              HasSubstr("held.m3u8 is larger than 64 MiB")));
  EXPECT_EQ(FailureOf([&] { held->appendItem(playlists.media("http://x/2")); }), base::number::kDeviceIo);
  EXPECT_THAT(Addresses(*held), ElementsAre("http://x/1"));
  EXPECT_EQ(fs::file_size(playlists.path("held.m3u8")), (64U << 20) + 1);
  WriteText(playlists.path("held.m3u8"), "#PLAYLIST:held\nhttp://x/3\n");
  held->appendItem(playlists.media("http://x/4"));
  EXPECT_THAT(Addresses(*held), ElementsAre("http://x/3", "http://x/4"));
}

TEST_F(ForeignPlaylists, ItemsThatStayedAreTheSameObjectsAfterAForeignEdit) {
  auto list = playlists.make("L", {"http://x/1", "http://x/2", "http://x/1"});
  const auto last = list->item(2);
  std::string text = playlists.content("L.m3u8");
  text.insert(text.find("#EXTINF"), "http://x/new\n");
  WriteText(playlists.path("L.m3u8"), text);
  list->removeItem(last);
  EXPECT_THAT(Addresses(*list), ElementsAre("http://x/new", "http://x/1", "http://x/2"));
}

TEST_F(ForeignPlaylists, ATwinInTheMiddleIsStillItselfAfterForeignEditsOnBothSidesOfIt) {
  auto list = playlists.make("L", {"http://x/1", "http://x/2", "http://x/1", "http://x/3", "http://x/1"});
  const auto middle = list->item(2);
  WriteText(playlists.path("L.m3u8"),
            "#PLAYLIST:L\nhttp://x/new\nhttp://x/1\nhttp://x/2\nhttp://x/1\nhttp://x/3\nhttp://x/1\n"
            "http://x/end\n");
  list->removeItem(middle);
  const std::vector<std::string> left{"http://x/new", "http://x/1", "http://x/2",
                                      "http://x/3",   "http://x/1", "http://x/end"};
  EXPECT_EQ(Addresses(*list), left);
  EXPECT_EQ(Addresses(*PlaylistFolder(root.path()).named("L")), left);
}

TEST_F(ForeignPlaylists, AHeldTwinIsFoundUnderItsNewTitles) {
  auto list = playlists.make("L", {"http://x/1", "http://x/1", "http://x/1"});
  const auto held = list->item(1);
  for (const std::string round : {"first", "second"}) {
    std::string text = "#PLAYLIST:L\n";
    for (const char* title : {"A ", "B ", "C "}) text += "#EXTINF:5," + (title + round) + "\nhttp://x/1\n";
    WriteText(playlists.path("L.m3u8"), text);
    EXPECT_EQ(playlists.named("L")->item(1)->name(), "B " + round);
  }
  list->removeItem(held);
  ASSERT_EQ(list->count(), 2);
  EXPECT_EQ(list->item(0)->name(), "A second");
  EXPECT_EQ(list->item(1)->name(), "C second");
}

TEST_F(ForeignPlaylists, WhatAFileCantTellOfAnItemStaysKnown) {
  TrackTags tags;
  tags.title = "One";
  tags.artist = "Ann";
  tags.album = "Blue";
  auto list = playlists.make("L", {});
  list->appendItem(std::make_shared<LooseMedia>("/elsewhere/1.mp3", tags));
  const auto item = list->item(0);
  WriteText(playlists.path("L.m3u8"), playlists.content("L.m3u8") + "http://x/new\n");
  ASSERT_EQ(playlists.named("L")->count(), 2);
  EXPECT_EQ(list->item(0), item);
  EXPECT_EQ(list->item(0)->getItemInfo("Album"), "Blue");
}

TEST_F(ForeignPlaylists, AnItemsTitleIsTheSameAfterARestart) {
  const std::vector<std::string> addresses{"http://x/A - B.mp3", "http://x/plain.mp3",
                                           "/gone/Ann - One.flac"};
  auto list = playlists.make("L", addresses);
  PlaylistFolder restarted(root.path());
  const auto again = restarted.named("L");
  ASSERT_EQ(again->count(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(again->item(i)->name(), list->item(i)->name());
    EXPECT_EQ(again->item(i)->getItemInfo("Artist"), list->item(i)->getItemInfo("Artist"));
  }
}

}  // namespace
}  // namespace engine::testing
