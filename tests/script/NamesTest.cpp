#include "support/ScriptHouse.hpp"

using base::Value;
using support::ScriptHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20U;

std::string Large(const std::string& piece) {
  std::string text;
  while (text.size() < kMebibyte) text += piece;
  return text;
}

struct Odd {
  const char* what;
  std::string name;
};
void PrintTo(const Odd& odd, std::ostream* out) { *out << odd.what; }

/// Names as no library should hold them, but some does.
class OddName : public ScriptHouse, public ::testing::WithParamInterface<Odd> {
 protected:
  void SetUp() override {
    ScriptHouse::SetUp();
    track = library.addTrack(name, name, name, name);
    library.addPlaylist(name, {track});
  }
  const std::string name = GetParam().name;
  support::FakeMediaRef track;
};

INSTANTIATE_TEST_SUITE_P(
    Names, OddName,
    ::testing::Values(Odd{"OneMebibyteOfLetters", Large("Letters ")},
                      Odd{"OneMebibyteOfPunctuation", Large("!?")}, Odd{"OneMebibyteOfAccents", Large("é ")},
                      Odd{"ControlCharacters", "one\x01two\x02three\ttab\r\nline\x7F"},
                      Odd{"CodeZero", std::string("one\0two", 7)}, Odd{"IllFormed", "one\xFF\xC3two\x80"},
                      Odd{"HalfACharacter", "one\xE2\x82"}, Odd{"Surrogate", "one\xED\xA0\x80two"},
                      Odd{"BlanksAlone", "   "}, Odd{"Separators", "a=b:c;d|e'f"}),
    [](const auto& odd) { return odd.param.what; });

}  // namespace

TEST_P(OddName, IsPlayed) {
  for (const char* category : {"Album", "Artist", "Genre", "PlayList"}) {
    journal.clear();
    EXPECT_EQ(call("Play", category, name), Value(std::int32_t{0})) << category;
    EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist " + name, "player: play")) << category;
  }
  journal.clear();
  EXPECT_EQ(call("Play", "Album", name, name), Value(std::int32_t{0}));
  EXPECT_EQ(call("Play", "Media Library", "", name), Value(std::int32_t{0}));
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentMedia " + name, "player: play",
                                         "player: currentMedia " + name, "player: play"));
}

TEST_P(OddName, GivesItsTitlesAndTheirRecord) {
  for (const char* category : {"Album", "PlayList"})
    EXPECT_THAT(Texts(call("GetByCategory", category, name)), ElementsAre(name)) << category;
  const base::Record record = call("GetMediaInfo", "Genre", name, name).record();
  ASSERT_EQ(record.size(), 4U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(record[i].second, Value(name)) << record[i].first;
}

TEST_P(OddName, IsTakenForAPlaylistOfThatName) {
  playing();
  EXPECT_EQ(call("AddToPlayList", "", "", "", name + "!"), Value());
  EXPECT_TRUE(journal.has("library: append Track One to " + name + "!"));
}

TEST_P(OddName, IsFoundFromItsKey) {
  std::string key = "left over";
  EXPECT_TRUE(xref.AddNameXref("Album", name, key));
  EXPECT_EQ(lookup("Album", name), name);
  EXPECT_EQ(lookup("Album", key.empty() ? name : key), name);
  EXPECT_EQ(xref.size(), key.empty() || key == name ? 0U : 1U);
}

namespace {
class Names : public ScriptHouse {};
}  // namespace

TEST_F(Names, TheEmptyNameIsNowhere) {
  playing();
  for (const char* category : {"Album", "Artist", "Genre", "PlayList"}) {
    EXPECT_EQ(call("Play", category, ""), Value(std::int32_t{-1})) << category;
    EXPECT_THAT(Texts(call("GetByCategory", category, "")), IsEmpty()) << category;
  }
  EXPECT_EQ(call("GetMediaInfo", "Album", "", "").record()[0].second, Value(""));
  EXPECT_EQ(call("AddToPlayList", "", "", "", ""), Value(std::int32_t{-1}));
  std::string key = "left over";
  EXPECT_TRUE(xref.AddNameXref("Album", "", key));
  EXPECT_EQ(key, "");
  EXPECT_EQ(xref.size(), 0U);
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(Names, OfTwoThatDifferOnlyInPunctuationTheOneSeenLastIsFound) {
  library.addTrack("Why?", "a", "Blue?", "g");
  library.addTrack("Why!", "a", "Blue!", "g");
  for (const char* last : {"Blue!", "Blue?"}) {
    library.attributes["album"] = {last};
    wmp9->events().MediaCollectionChange();
    call("GetCategoryList", "Album");
    const std::string title = last == std::string("Blue!") ? "Why!" : "Why?";
    for (const char* name : {"Blue?", "Blue!", "blue"})
      EXPECT_THAT(Texts(call("GetByCategory", "Album", name)), ElementsAre(title)) << name;
  }
}

TEST_F(Names, TwoThatDifferOnlyInCaseAreOneKey) {
  std::string key;
  xref.AddNameXref("Album", "BLUE!", key);
  xref.AddNameXref("Album", "blue!", key);
  EXPECT_EQ(key, "blue");
  EXPECT_EQ(xref.size(), 1U);
  EXPECT_EQ(lookup("album", "BLUE"), "blue!");
  library.addTrack("Carey", "a", "BLUE", "g");
  EXPECT_THAT(Texts(call("GetByCategory", "Album", "blue")), ElementsAre("Track One", "Track Two", "Carey"));
}
