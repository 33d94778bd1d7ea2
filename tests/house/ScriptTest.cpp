#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using base::Value;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

namespace {

/// A script of the house: it reaches the plug-in's script object over the bus, and the library is the
/// engine's own.
class Script : public ::testing::Test {
 protected:
  void SetUp() override {
    music.add("Stop & Start!", 4, 20);
    ASSERT_TRUE(house.startReady()) << house.server().output();
    connection = std::make_unique<bus::Connection>(loop, house.busAddress());
    script = connection->proxy("org.vantorix.vxif_WMP9", "/scriptclass");
  }
  std::vector<std::string> texts(const std::string& name, base::Args args) {
    std::vector<std::string> all;
    const Value answer = script->call(name, args);
    for (const Value& element : answer.array()) all.push_back(base::ToText(element));
    return all;
  }
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  std::unique_ptr<bus::Connection> connection;
  base::ObjectRef script;
};

}  // namespace

TEST_F(Script, ReadsTheLibrary) {
  EXPECT_THAT(texts("GetCategoryList", {"album"}), ElementsAre("Counting"));
  EXPECT_THAT(texts("GetByCategory", {}), UnorderedElementsAre("One", "Two", "Three", "Stop & Start!"));
  const Value info = script->invoke("GetMediaInfo", "Album", "Counting", "two");
  EXPECT_THAT(info.record(), ElementsAre(::testing::Pair("Artist", Value("The Testers")),
                                         ::testing::Pair("Album", Value("Counting")),
                                         ::testing::Pair("Genre", Value("Numbers")),
                                         ::testing::Pair("Duration", Value(20.0))));
  const Value unknown = script->invoke("GetMediaInfo", "Album", "Counting", "Nine");
  EXPECT_THAT(unknown.record(),
              ElementsAre(::testing::Pair("Artist", Value("")), ::testing::Pair("Album", Value("")),
                          ::testing::Pair("Genre", Value("")), ::testing::Pair("Duration", Value(""))));
}

TEST_F(Script, PlaysATitleByItsKey) {
  texts("GetByCategory", {});  // once seen, a title is found from its key
  EXPECT_EQ(script->invoke("Play", "Media Library", "", "stop start"), Value(std::int32_t{0}));
  EXPECT_TRUE(house.textBecomes("Title", "Stop & Start!"));
  EXPECT_EQ(script->get("Title"), Value("Stop & Start!"));
  EXPECT_EQ(script->get("artist"), Value("The Testers"));
}

TEST_F(Script, KeepsWhatPlaysInThePlaylistOfTheHouse) {
  EXPECT_EQ(script->invoke("Play", "ALBUM", "Counting", "Two"), Value(std::int32_t{0}));
  ASSERT_TRUE(house.textBecomes("Title", "Two"));
  EXPECT_EQ(script->invoke("AddToPlayList"), Value());
  EXPECT_THAT(texts("GetByCategory", {"PlayList", "Vantorix"}), ElementsAre("Two"));
  EXPECT_THAT(texts("GetCategoryList", {"PlayList"}), ElementsAre("Vantorix"));
  script->invoke("StopPlayer");
  ASSERT_TRUE(support::Eventually([&] { return script->get("Title") == Value(""); }));
  EXPECT_NE(script->invoke("CurrentPlaylist"), Value("Vantorix"));
  EXPECT_EQ(script->invoke("Play", "PlayList", "Vantorix"), Value(std::int32_t{0}));
  EXPECT_TRUE(support::Eventually([&] { return script->get("Title") == Value("Two"); }));
  EXPECT_EQ(script->invoke("CurrentPlaylist"), Value("Vantorix"));
  EXPECT_TRUE(support::Eventually([&] { return base::ToDouble(script->get("CurrentPosition")) > 0; }));
}

TEST_F(Script, MeetsNoFailureWithAValueThatIsNone) {
  script->put("Volume", 40);
  EXPECT_NO_THROW(script->put("Volume", "abc"));
  EXPECT_NO_THROW(script->invoke("VolumeUp", "x"));
  EXPECT_EQ(script->get("Volume"), Value(std::int16_t{40}));
  EXPECT_EQ(texts("GetByCategory", {Value(base::Array{1})}), std::vector<std::string>());
}

TEST_F(Script, HearsWhyNothingPlays) {
  EXPECT_EQ(script->invoke("Play", "PlayList", "Nowhere"), Value(std::int32_t{-1}));
  EXPECT_TRUE(house.logHas("Media Player: Cannot 'Play': PlayList 'Nowhere' is non-existent"));
}

TEST_F(Script, ReachesThePlayersOwnObjects) {
  const base::ObjectRef player = base::ToObject(script->get("WMPObject"));
  ASSERT_TRUE(player);
  const base::ObjectRef library = base::ToObject(player->get("mediaCollection"));
  const base::ObjectRef group = base::ToObject(library->invoke("getByAttribute", "Album", "Counting"));
  EXPECT_EQ(group->get("count"), Value(std::int32_t{4}));
  const base::ObjectRef lists = base::ToObject(player->get("playlistCollection"));
  const base::ObjectRef mine = base::ToObject(lists->invoke("newPlaylist", "Mine"));
  mine->invoke("appendItem", base::ToObject(group->invoke("item", 0)));
  EXPECT_EQ(mine->get("count"), Value(std::int32_t{1}));
}

TEST_F(Script, ReachesThemFromAShellToo) {
  const auto shell = [this](const std::vector<std::string>& rest) {
    std::vector<std::string> words{BIN_FOLDER "/vxcall", "--bus", house.busAddress()};
    words.insert(words.end(), rest.begin(), rest.end());
    support::Process call(words);
    EXPECT_EQ(call.wait(), 0) << call.output();
    return call.output();
  };
  EXPECT_EQ(shell({"scriptclass.WMPObject.settings", "--put", "volume", "37"}), "");
  EXPECT_EQ(shell({"scriptclass.WMPObject.settings", "--get", "volume"}), "37\n");
  EXPECT_EQ(shell({"scriptclass.WMPObject.mediaCollection.getAll", "--get", "count"}), "4\n");
}
