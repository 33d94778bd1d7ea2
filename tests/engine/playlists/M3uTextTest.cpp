#include "engine/playlists/M3u.hpp"

#include <gmock/gmock.h>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<std::string> Locations(const M3uText& text) {
  std::vector<std::string> places;
  for (std::size_t i = 0; i < text.count(); ++i) places.push_back(text.item(i, "/folder").location);
  return places;
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(PlaylistText, EveryPathSurvivesTheFile) {
  const std::vector<std::string> paths{
      "/plain.mp3",       "/two\nlines.mp3", "/cr\rin.mp3", "/#hash",    "/per%41cent.mp3",
      "/trailing ",       "/caf\xE9.mp3",    "/tab\tin",    "/http://x", "http://127.0.0.1/a%20b",
      "cdda:///dev/sr0#1"};
  M3uText text;
  text.name("N");
  for (const std::string& path : paths) text.insert(text.count(), {path, "T " + path.substr(0, 2), 3});
  const M3uText read(text.text());
  EXPECT_EQ(Locations(read), paths);
  for (std::size_t i = 0; i < read.count(); ++i) {
    EXPECT_EQ(read.item(i, "/").title, "T " + paths[i].substr(0, 2));
    EXPECT_EQ(read.item(i, "/").seconds, 3);
  }
}

TEST(PlaylistText, AnAddressIsOneLineWhateverIsInIt) {
  M3uText text;
  text.insert(0, {"http://x/a\nhttp://x/b\r\n", "", -1});
  text.insert(1, {"http://x/c  ", "", -1});
  text.insert(2, {"http://x/caf\xE9", "", -1});
  EXPECT_THAT(Locations(M3uText(text.text())),
              ElementsAre("http://x/a%0Ahttp://x/b%0D%0A", "http://x/c%20%20", "http://x/caf%E9"));
}

TEST(PlaylistText, NamesAreReadUpToABoundAndStayAsTheyStandInTheFile) {
  const std::string wide = "x" + Repeated("\xF0\x9F\x8E\xB5", 2000);  // four bytes each
  const std::string whole = "#EXTM3U\n#PLAYLIST:" + wide + "\n#EXTINF:5," + wide + "\n/a.mp3\n";
  M3uText text(whole);
  const std::string cut = "x" + Repeated("\xF0\x9F\x8E\xB5", 1023);
  EXPECT_EQ(text.name(), cut);
  EXPECT_TRUE(text.nameIsCut());
  EXPECT_EQ(text.item(0, "/").title, cut);
  EXPECT_TRUE(text.item(0, "/").cut);
  EXPECT_EQ(text.item(0, "/").seconds, 5);
  EXPECT_EQ(text.text(), whole);
  const M3uText latin("#EXTINF:5," + Repeated("\xE9", 4000) + "\n/a.mp3\n");
  EXPECT_EQ(latin.item(0, "/").title, Repeated("\xC3\xA9", 2048));
  EXPECT_TRUE(latin.item(0, "/").cut);
  const M3uText usual("#PLAYLIST:" + Repeated("x", 4096) + "\n#EXTINF:5," + Repeated("y", 4096) +
                      "\n/a.mp3\n");
  EXPECT_FALSE(usual.nameIsCut());
  EXPECT_FALSE(usual.item(0, "/").cut);
}

TEST(PlaylistText, ATitleIsOneReadableLineWhateverIsInIt) {
  M3uText text;
  text.insert(0, {"/a.mp3", std::string("A\0B\nC", 5), 7});
  text.insert(1, {"/b.mp3", std::string(1, '\0') + Repeated("x", 5000), 8});
  const M3uText read(text.text());
  EXPECT_EQ(read.item(0, "/").title, "A B C");
  EXPECT_EQ(read.item(0, "/").seconds, 7);
  EXPECT_EQ(read.item(1, "/").title, Repeated("x", 4095));
  EXPECT_EQ(read.item(1, "/").seconds, 8);
}

TEST(PlaylistText, WhatHasNoPlaceIsNoItem) {
  M3uText text;
  EXPECT_EQ(FailureOf([&] { text.insert(0, {"", "T", 1}); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureOf([&] {
              text.insert(0, {"http://x/" + std::string(70000, 'a'), "T", 1});
            }),
            base::number::kInvalidArgument);
  EXPECT_EQ(text.count(), 0U);
  EXPECT_EQ(M3uText("file://\nfile://host\n \nFILE://\n").count(), 0U);
}

TEST(PlaylistText, EveryNameSurvivesTheFile) {
  for (const std::string& name :
       {std::string("Plain"), std::string(" blanks "), std::string("two\nlines"), std::string("cr\r"),
        std::string("\n"), std::string("   "), std::string("100%0A"), std::string("\t tab\t"),
        std::string("\xEF\xBB\xBFmark"), std::string("#EXTM3U"), std::string("\x01\x7F"), Repeated("Ä", 2000),
        std::string("#PLAYLIST:x"), std::string("a\\b/c:d\"e")}) {
    M3uText text;
    text.insert(0, {"/a.mp3", "A", 1});
    text.name(name);
    const std::string written = text.text();
    EXPECT_EQ(M3uText(written).name(), name);
    EXPECT_THAT(Locations(M3uText(written)), ElementsAre("/a.mp3"));
    text.name("B");
    EXPECT_EQ(text.text(), "#EXTM3U\n#PLAYLIST:B\n#EXTINF:1,A\n/a.mp3\n");
  }
}

TEST(PlaylistText, ANameThatAnotherProgramHasGivenCounts) {
  M3uText text;
  text.name("two\nlines");
  std::string foreign = text.text();
  EXPECT_THAT(foreign, HasSubstr("#PLAYLIST:two lines\n"));
  foreign.replace(foreign.find("two lines"), 9, "renamed");
  EXPECT_EQ(M3uText(foreign).name(), "renamed");
}

TEST(PlaylistText, ANameThatIsLongerThanALineIsRefused) {
  M3uText text;
  text.name("before");
  EXPECT_EQ(FailureOf([&] { text.name(std::string(1 << 20, 'x')); }), base::number::kInvalidArgument);
  EXPECT_EQ(FailureOf([&] { text.name(std::string(40000, '\n')); }), base::number::kInvalidArgument);
  EXPECT_EQ(text.name(), "before");
}

TEST(PlaylistText, RemarksAndForeignTagsStayWhereTheyBelong) {
  const std::string foreign =
      "\xEF\xBB\xBF#EXTM3U url-tvg=\"x\"\r\n# my favourites\r\n#PLAYLIST:L\r\n# since 2019\r\n"
      "#EXTALB:Blue\r\n#EXTINF:1,A\r\n#EXTVLCOPT:start-time=5\r\na.mp3\r\n"
      "\r\n# the second\r\n#EXTINF:2 tvg-id=\"a,b\",B\r\nsub\\b.mp3\r\n"
      "c.mp3\r\n# the end";
  M3uText text(foreign);
  EXPECT_EQ(text.name(), "L");
  ASSERT_EQ(text.count(), 3U);
  EXPECT_EQ(text.item(1, "/f").title, "B");
  EXPECT_EQ(text.item(1, "/f").seconds, 2);
  text.move(1, 0);
  text.insert(3, {"/new.mp3", "New", 4});
  text.remove(2);
  text.name("M");
  EXPECT_EQ(text.text(),
            "\xEF\xBB\xBF#EXTM3U url-tvg=\"x\"\r\n# my favourites\r\n#PLAYLIST:M\r\n# since 2019\r\n"
            "#VANTORIX-ITEMS\r\n\r\n# the second\r\n#EXTINF:2 tvg-id=\"a,b\",B\r\nsub\\b.mp3\r\n"
            "#EXTALB:Blue\r\n#EXTINF:1,A\r\n#EXTVLCOPT:start-time=5\r\na.mp3\r\n"
            "#EXTINF:4,New\r\n/new.mp3\r\n# the end\r\n");
}

TEST(PlaylistText, RemarksGoWithTheirItemToTheFrontAndAwayAgain) {
  const std::string foreign = "#EXTM3U\n# of the list\n#EXTINF:1,A\n/a\n# of b\n#EXTINF:2,B\n/b\n/c\n";
  M3uText text(foreign);
  text.move(1, 0);
  M3uText again(text.text());
  again.move(0, 1);
  EXPECT_EQ(again.text(), foreign);
  again.move(1, 0);
  M3uText last(again.text());
  last.remove(0);
  EXPECT_EQ(last.text(), "#EXTM3U\n# of the list\n#EXTINF:1,A\n/a\n/c\n");
}

TEST(PlaylistText, AListInTheMiddleOfAListGivesNoTitleAndNoNameAway) {
  // Two lists that somebody has put together, and tags of a list between an item's own.
  const std::string foreign =
      "#EXTM3U\n#PLAYLIST:L\n#EXTINF:1,A\n/a\n"
      "#EXTM3U\n#PLAYLIST:M\n#EXTINF:2,B\n#EXTENC:UTF-8\n/b\n#EXTM3U\n#PLAYLIST:N\n";
  M3uText text(foreign);
  EXPECT_EQ(text.text(), foreign);
  text.remove(0);
  for (int edit = 0; edit < 2; ++edit) {
    text = M3uText(text.text());
    EXPECT_EQ(text.name(), "L");
    ASSERT_EQ(text.count(), 1U);
    EXPECT_EQ(text.item(0, "/").title, "B");
    EXPECT_EQ(text.item(0, "/").seconds, 2);
  }
  text.remove(0);
  text = M3uText(text.text());
  EXPECT_EQ(text.name(), "L");
  text.insert(0, {"/c", "C", 3});
  text.name("K");
  text = M3uText(text.text());
  EXPECT_EQ(text.name(), "K");
  EXPECT_EQ(text.item(0, "/").title, "C");
}

TEST(PlaylistText, WhatIsReadAndNotChangedIsWrittenAsItWas) {
  for (const char* text : {"", "\n", "a\nb\n", "# only a remark\n", "#EXTM3U\n#EXTINF:1,A\n",
                           "#EXTM3U\r\n\r\n#EXTINF:1,caf\xE9\r\ncaf\xE9.mp3\r\n"}) {
    EXPECT_EQ(M3uText(text).text(), text);
  }
}

TEST(PlaylistText, LinesMayEndAsProgramsOfOldEndedThem) {
  const M3uText text("#EXTM3U\r#EXTINF:1,A\ra.mp3\rb.mp3\r");
  ASSERT_EQ(text.count(), 2U);
  EXPECT_EQ(text.item(0, "/m").location, "/m/a.mp3");
  EXPECT_EQ(text.item(0, "/m").title, "A");
  EXPECT_EQ(text.item(1, "/m").location, "/m/b.mp3");
  EXPECT_EQ(M3uText("#EXTINF:1,A\rB\na.mp3\n").count(), 1U) << "where lines end otherwise it ends none";
}

TEST(PlaylistText, AnOlderEncodingIsReadAndKept) {
  M3uText text("#EXTM3U\n#PLAYLIST:\xC9t\xE9\n#EXTINF:5,Andr\xE9 - Caf\xE9\ncaf\xE9.mp3\n");
  EXPECT_EQ(text.name(), "Été");
  EXPECT_EQ(text.item(0, "/f").title, "André - Café");
  EXPECT_EQ(text.item(0, "/f").location, "/f/caf\xE9.mp3");
  text.insert(1, {"/été.mp3", "Été", 1});
  EXPECT_EQ(text.text(),
            "#EXTM3U\n#PLAYLIST:\xC9t\xE9\n#EXTINF:5,Andr\xE9 - Caf\xE9\ncaf\xE9.mp3\n"
            "#EXTINF:1,Été\n/été.mp3\n");
}

TEST(PlaylistText, ALengthThatIsNoneIsUnknown) {
  for (const char* length :
       {"99999999999999999999", "-99999999999999999999", "2147483648", "4000001", "x", "", "-1", "-7"}) {
    const M3uItem item = M3uText(std::string("#EXTINF:") + length + ",T\n/a\n").item(0, "/");
    EXPECT_EQ(item.seconds, -1) << length;
    EXPECT_EQ(item.title, "T") << length;
  }
  EXPECT_EQ(M3uText("#EXTINF: 12.7 ,T\n/a\n").item(0, "/").seconds, 12);
}

TEST(PlaylistText, AnItemThatBeginsLikeAByteOrderMarkStaysWhole) {
  M3uText text("/a.mp3\n\xEF\xBB\xBFmark.mp3\n");
  text.remove(0);
  EXPECT_THAT(Locations(M3uText(text.text())), ElementsAre("/folder/\xEF\xBB\xBFmark.mp3"));
}

TEST(PlaylistText, LinesThatCanBeNoItemAreKeptUnread) {
  const std::string nonsense = std::string("\0binary\n", 8) + std::string(5 << 20, 'x') + "\n/good.mp3\n";
  M3uText text(nonsense);
  EXPECT_THAT(Locations(text), ElementsAre("/good.mp3"));
  text.insert(1, {"/b.mp3", "B", 1});
  EXPECT_EQ(text.text(), "#EXTM3U\n" + nonsense + "#EXTINF:1,B\n/b.mp3\n");
}

TEST(PlaylistText, FileNamesKeepEveryName) {
  for (const char* name : {"a/b", "..", ".hidden", "100%", "%41", "x:y*z?", "Été", " ", "\n", "a\x7F"}) {
    const std::string file = EscapeFileName(name);
    EXPECT_EQ(file.find_first_of("/\n\x7F\\:*?\"<>|"), std::string::npos) << name;
    EXPECT_NE(file.front(), '.') << name;
    EXPECT_EQ(UnescapeFileName(file), name);
  }
}

}  // namespace
}  // namespace engine::testing
