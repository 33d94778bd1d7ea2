#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using base::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace {

const Value kDone = std::int32_t{0};
const Value kRefused = std::int32_t{-1};

std::string Large(const std::string& piece) {
  constexpr std::size_t kMebibyte = std::size_t{1} << 20U;
  std::string text;
  while (text.size() < kMebibyte) text += piece;
  return text;
}

/// Names on the whole way: from a program on the bus to the engine's library, and back.
class NamesInTheHouse : public ::testing::Test {
 protected:
  void SetUp() override {
    add("Why!", "Blue!");
    add("Why?", "Blue?");
    add("one\x01two\x1Fthree", "tab\there");
    add("Große Fuge", "Streichquartett Nr. 13");
    add("Carey", "Hejira");
    add("Coyote", "HEJIRA");
    add(huge, huge);
    ASSERT_TRUE(house.startReady()) << house.server().output();
    connection = std::make_unique<bus::Connection>(loop, house.busAddress());
    script = connection->proxy("org.vantorix.vxif_WMP9", "/scriptclass");
  }
  void add(const std::string& title, const std::string& album) {
    engine::TrackTags tags;
    tags.title = title;
    tags.album = album;
    tags.artist = "The Testers";
    tags.track = static_cast<std::uint16_t>(++pieces);
    music.add("Piece " + std::to_string(pieces), 60, tags);
  }
  std::vector<std::string> titles(const std::string& category, const std::string& name) {
    std::vector<std::string> all;
    const Value answer = script->invoke("GetByCategory", category, name);
    for (const Value& element : answer.array()) all.push_back(base::ToText(element));
    return all;
  }
  std::vector<std::string> names(const std::string& category) {
    std::vector<std::string> all;
    const Value answer = script->invoke("GetCategoryList", category);
    for (const Value& element : answer.array()) all.push_back(base::ToText(element));
    return all;
  }
  Value play(const std::string& category, const std::string& name, const std::string& title = "") {
    return script->invoke("Play", category, name, title);
  }
  const std::string huge = Large("Ein langer Name, ") + "Ende";
  const std::string cut = huge.substr(0, 4096);  ///< as much of a name as the engine reads
  int pieces = 0;
  support::SmallMusic music{1};
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  std::unique_ptr<bus::Connection> connection;
  base::ObjectRef script;
};

}  // namespace

TEST_F(NamesInTheHouse, AreListedAndAnsweredAsTheLibraryHasThem) {
  EXPECT_THAT(names("Album"), ::testing::IsSupersetOf<std::string>(
                                  {"Blue!", "Blue?", "tab\there", "Streichquartett Nr. 13", cut}));
  EXPECT_THAT(titles("Album", "tab\there"), ElementsAre("one\x01two\x1Fthree"));
  EXPECT_THAT(titles("Album", "tab here"), ElementsAre("one\x01two\x1Fthree")) << "by its key";
  EXPECT_THAT(titles("Album", "Streichquartett Nr 13"), ElementsAre("Große Fuge")) << "by its key";
  EXPECT_TRUE(titles("Album", cut) == std::vector<std::string>{cut});
  EXPECT_THAT(titles("Album", ""), IsEmpty());
  EXPECT_THAT(titles("Album", "ill\xFF\xC3"), IsEmpty());
  EXPECT_THAT(titles("Album", std::string("Blue\0", 5)), ElementsAre("Why?")) << "its key is that of Blue?";
}

TEST_F(NamesInTheHouse, ThatDifferOnlyInPunctuationAreOneNameTheOneSeenLast) {
  std::string last;
  for (const std::string& name : names("Album"))
    if (name.starts_with("Blue")) last = name;
  ASSERT_FALSE(last.empty());
  for (const char* name : {"Blue!", "Blue?", "blue"})
    EXPECT_THAT(titles("Album", name), ElementsAre(last == "Blue!" ? "Why!" : "Why?")) << name;
}

TEST_F(NamesInTheHouse, ThatDifferOnlyInCaseAreOneAlbum) {
  for (const char* name : {"Hejira", "HEJIRA", "hejira"})
    EXPECT_THAT(titles("Album", name), UnorderedElementsAre("Carey", "Coyote")) << name;
}

TEST_F(NamesInTheHouse, HaveTheirRecord) {
  for (const std::string& title : {std::string("one\x01two\x1Fthree"), std::string("Große Fuge"), cut}) {
    const Value info = script->invoke("GetMediaInfo", "Artist", "The Testers", title);
    EXPECT_EQ(info.record().at(0).second, Value("The Testers")) << title.substr(0, 20);
  }
  for (const std::string& title : {std::string(), std::string("ill\xFF"), std::string("a\0b", 3)}) {
    const Value info = script->invoke("GetMediaInfo", "Artist", "The Testers", title);
    EXPECT_EQ(info.record().at(0).second, Value(""));
    EXPECT_EQ(info.record().at(3).second, Value(""));
  }
}

TEST_F(NamesInTheHouse, ArePlayedOrRefusedAndTheHouseGoesOn) {
  for (const std::string& name :
       {std::string(), std::string("ill\xFF\xC3"), std::string("a\0b", 3), std::string("x/../y"), huge + "!"})
    EXPECT_EQ(play("PlayList", name), kRefused) << name.substr(0, 20);
  EXPECT_TRUE(
      house.logHas("Media Player: Cannot 'Play': PlayList 'ill\xEF\xBF\xBD\xEF\xBF\xBD' is non-existent"));
  EXPECT_EQ(play("Album", "tab\there"), kDone);
  EXPECT_TRUE(house.textBecomes("Title", "one\x01two\x1Fthree"));
  EXPECT_EQ(play("Album", "Streichquartett Nr. 13", "GROSSE fuge"), kRefused);
  EXPECT_EQ(play("Album", "Streichquartett Nr. 13", "GROßE fuge"), kDone);
  EXPECT_TRUE(house.textBecomes("Title", "Große Fuge"));
  EXPECT_EQ(play("Album", huge), kRefused) << "the library has no more of it than its beginning";
  EXPECT_EQ(play("Album", cut), kDone);
  EXPECT_TRUE(house.textBecomes("Title", cut));
}

TEST_F(NamesInTheHouse, OfNewPlaylistsComeBackAsTheyWereGivenOrAreRefused) {
  ASSERT_EQ(play("Album", "Streichquartett Nr. 13"), kDone);
  ASSERT_TRUE(support::Eventually([&] { return script->get("Title") == Value("Große Fuge"); }));
  const std::vector<std::string> good{"line\r\nbreak\x01", "x/../y", "...", "=;#EXTM3U", "Ä ö ß"};
  for (const std::string& name : good) {
    EXPECT_EQ(script->invoke("AddToPlayList", "", "", "", name), Value()) << name;
    EXPECT_THAT(titles("PlayList", name), ElementsAre("Große Fuge")) << name;
  }
  // What no file can hold is refused.
  for (const std::string& name : {std::string(), huge, std::string("a\0b", 3), std::string("ill\xFF\xC3")})
    EXPECT_EQ(script->invoke("AddToPlayList", "", "", "", name), kRefused) << name.substr(0, 10);
  EXPECT_THAT(names("PlayList"), ::testing::UnorderedElementsAreArray(good));
}

TEST_F(NamesInTheHouse, GoThroughTheShellToo) {
  const auto shell = [this](const std::vector<std::string>& operation) {
    std::vector<std::string> words{BIN_FOLDER "/vxcall", "--bus", house.busAddress(), "scriptclass"};
    words.insert(words.end(), operation.begin(), operation.end());
    support::Process call(words);
    EXPECT_EQ(call.wait(), 0) << operation.front();
    return call.output();
  };
  EXPECT_EQ(shell({"GetByCategory", "Album", "tab\there"}), "one\x01two\x1Fthree\n");
  EXPECT_NE(shell({"GetCategoryList", "ALBUM"}).find("Streichquartett Nr. 13\n"), std::string::npos);
  EXPECT_EQ(shell({"GetByCategory", "album", "streichquartett nr 13"}), "Große Fuge\n");
  const std::string large = huge.substr(0, 100'000);  // as long as a shell lets a word be
  for (const std::string& name : {std::string(), std::string("ill\xFF\xC3"), large}) {
    EXPECT_EQ(shell({"GetByCategory", "Album", name}), "");
    EXPECT_EQ(shell({"Play", "PlayList", name}), "-1\n");
    EXPECT_EQ(shell({"AddToPlayList", "", "", "", name}), "") << "nothing plays";
  }
  EXPECT_EQ(shell({"Play", "Album", "tab\there", "ONE\x01TWO\x1FTHREE"}), "0\n");
  EXPECT_TRUE(house.textBecomes("Title", "one\x01two\x1Fthree"));
}
