#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using base::Value;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

namespace {

constexpr const char* kPlugIn = "org.vantorix.vxif_WMP9";

/// Names of well-formed characters that are no text to many a library, on every way through the house.
class Noncharacters : public ::testing::Test {
 protected:
  const std::string title = "River \uFDD0\xEF\xBF\xBE";
  const std::string artist = "\xEF\xBF\xBF Mitchell";
  const std::string album = "Blue\xF0\x9F\xBF\xBF";
  const std::string genre = "Folk\xF4\x8F\xBF\xBE";
  const std::string list = "Mine \xEF\xBF\xBE\xEF\xB7\xAF";

  void SetUp() override {
    engine::TrackTags tags;
    tags.title = title;
    tags.artist = artist;
    tags.album = album;
    tags.genre = genre;
    tags.track = 4;
    music.add("Piece", 60, tags);
    connect();
  }
  void connect() {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    vxif = connection.proxy(kPlugIn, "/vxif");
    script = connection.proxy(kPlugIn, "/scriptclass");
  }
  std::vector<std::string> texts(const char* operation, base::Args args) {
    std::vector<std::string> all;
    const Value answer = script->call(operation, args);
    for (const Value& element : answer.array()) all.push_back(base::ToText(element));
    return all;
  }
  std::string put(const std::string& body) { return base::ToText(vxif->invoke("PagePut", body)); }
  std::string page() { return base::ToText(vxif->invoke("GenPage", "WMP_PListEdit")); }
  /// As a browser sends it.
  static std::string encoded(const std::string& text) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string all;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      all += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
    return all;
  }
  std::string shell(std::vector<std::string> operation) {
    operation.insert(operation.begin(), {BIN_FOLDER "/vxcall", "--bus", house.busAddress()});
    support::Process call(operation);
    EXPECT_EQ(call.wait(), 0) << call.output();
    return call.output();
  }

  support::SmallMusic music{1};
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  bus::Connection connection{loop, house.busAddress()};
  base::ObjectRef vxif, script;
};

}  // namespace

TEST_F(Noncharacters, AreInTheLibraryAsTheFilesHaveThem) {
  EXPECT_THAT(texts("GetByCategory", {}), UnorderedElementsAre("One", "Two", "Three", title));
  EXPECT_THAT(texts("GetCategoryList", {"Album"}), UnorderedElementsAre("Counting", album));
  EXPECT_THAT(texts("GetCategoryList", {"Artist"}), Contains(artist));
  EXPECT_THAT(texts("GetCategoryList", {"Genre"}), Contains(genre));
  EXPECT_THAT(texts("GetAlbumsByCategory", {"Artist", artist}), ElementsAre(album));
  EXPECT_THAT(texts("GetByCategory", {"Album", album}), ElementsAre(title));
  const Value info = script->invoke("GetMediaInfo", "Genre", genre, title);
  EXPECT_EQ(info.record().at(0).second, Value(artist));
  EXPECT_EQ(info.record().at(1).second, Value(album));
  EXPECT_EQ(info.record().at(2).second, Value(genre));
}

TEST_F(Noncharacters, ArePlayedAndShownByTheDevices) {
  EXPECT_EQ(script->invoke("Play", "Artist", artist, title), Value(std::int32_t{0}));
  EXPECT_TRUE(house.textBecomes("Title", title));
  EXPECT_TRUE(house.textBecomes("Artist", artist));
  EXPECT_TRUE(house.textBecomes("Genre", genre));
  EXPECT_EQ(script->get("Title"), Value(title));
  EXPECT_EQ(script->get("Album"), Value(album));
  EXPECT_EQ(script->invoke("AddToPlayList", "", "", "", list), Value());
  EXPECT_THAT(texts("GetByCategory", {"PlayList", list}), ElementsAre(title));
  EXPECT_EQ(script->invoke("Play", "PlayList", list + "X"), Value(std::int32_t{-1}));
  EXPECT_TRUE(house.logHas("PlayList '" + list + "X' is non-existent"));
}

TEST_F(Noncharacters, AreHandledByTheObjectsOfThePlayer) {
  const base::ObjectRef player = base::ToObject(script->get("WMPObject"));
  const base::ObjectRef library = base::ToObject(player->get("mediaCollection"));
  const base::ObjectRef group = base::ToObject(library->invoke("getByAttribute", "Album", album));
  ASSERT_EQ(group->get("count"), Value(std::int32_t{1}));
  EXPECT_EQ(base::ToObject(group->invoke("item", 0))->get("name"), Value(title));
  const base::ObjectRef lists = base::ToObject(player->get("playlistCollection"));
  const base::ObjectRef made = base::ToObject(lists->invoke("newPlaylist", list));
  made->put("name", list + "!");
  EXPECT_EQ(made->get("name"), Value(list + "!"));
}

TEST_F(Noncharacters, ArePostedToTheEditorAndItsPageGoesOn) {
  EXPECT_THAT(put("wmp_page=Main_Page&button=New+List&New_PlayList=" + encoded(list)), HasSubstr(list));
  EXPECT_THAT(texts("GetCategoryList", {"PlayList"}), ElementsAre(list));
  EXPECT_THAT(page(), HasSubstr(list));
  EXPECT_THAT(put("wmp_page=Main_Page&button=Refresh&PlayList=" + encoded(list)), HasSubstr(list));
  const std::string adding = "wmp_page=Add_Page&button=Add+Item&PlayList=" + encoded(list) +
                             "&Add_from=Album&Albums=" + encoded(album) + "&Title=" + encoded(title);
  EXPECT_THAT(put(adding), HasSubstr(title));
  EXPECT_THAT(house.get("/WMP_PListEdit"), HasSubstr(list)) << "in the server's frame";
  EXPECT_EQ(put("wmp_page=" + encoded(list) + "&" + encoded(title) + "=" + encoded(genre)), "")
      << "no page is called so";
  EXPECT_THAT(page(), HasSubstr(list));
}

TEST_F(Noncharacters, InSettingsComeBackAndStopNoStart) {
  const base::ObjectRef host = connection.proxy("org.vantorix.Host", "/host");
  host->invoke("SaveINISetting", "Settings", "WhileSpeaking", title, "vxif_WMP.ini");
  host->invoke("SaveINISetting", "Album", artist, album, "vxif_WMP.ini");
  const auto stored = [&](const std::string& section, const std::string& key) {
    return host->invoke("GetINISetting", section, key, "", "vxif_WMP.ini");
  };
  EXPECT_EQ(stored("Settings", "WhileSpeaking"), Value(title));
  house.server().signal(SIGTERM);
  ASSERT_EQ(house.server().wait(), 0);
  connect();
  EXPECT_EQ(stored("Settings", "WhileSpeaking"), Value(title));
  EXPECT_EQ(stored("Album", artist), Value(album));
  EXPECT_THAT(base::ToText(host->invoke("GetINISection", "Album", "vxif_WMP.ini")), HasSubstr(artist));
  EXPECT_THAT(house.get("/WMP_Setup"), HasSubstr("WhileSpeaking"));
}

TEST_F(Noncharacters, InTextsOfDevicesAndTheLogAreShownByTheServer) {
  const base::ObjectRef host = connection.proxy("org.vantorix.Host", "/host");
  const base::ObjectRef device = base::ToObject(host->invoke("GetDevice", host->invoke("NewDevice", list)));
  EXPECT_EQ(device->get("Name"), Value(list));
  host->invoke("SetDeviceStringByName", "Media Player Album", title, true);
  EXPECT_TRUE(house.textBecomes("Album", title));
  host->invoke("WriteLog", "Info", artist);
  EXPECT_TRUE(house.logHas("Info: " + artist));
  vxif->invoke("SelectMenu", list);
  EXPECT_TRUE(house.logHas("Invalid menu item: \"" + list + "\""));
}

TEST_F(Noncharacters, AreInTheServersLists) {
  ASSERT_EQ(put("wmp_page=Main_Page&button=New+List&New_PlayList=" + encoded(list)).empty(), false);
  EXPECT_THAT(house.get("/api/library?category=Artist&limit=50"), HasSubstr(artist));
  EXPECT_THAT(house.get("/api/library?category=Album&limit=50&group=" + encoded(album)), HasSubstr(title));
  EXPECT_THAT(house.get("/api/library?category=Album&limit=50&group=" + encoded(album)), HasSubstr(artist));
  EXPECT_THAT(house.get("/api/playlist?offset=0&limit=50&group=" + encoded(list)), HasSubstr(list));
  const auto row = support::JsonOf(house.get("/api/library?category=Album&limit=50&group=" + encoded(album)));
  EXPECT_EQ(house.post("/api/play", {{"category", "Album"},
                                     {"name", album},
                                     {"at", 0},
                                     {"title", title},
                                     {"mark", row.at("titles").at(0).at("mark")}}),
            200);
  EXPECT_TRUE(house.textBecomes("Title", title));
}

TEST_F(Noncharacters, GoThroughAScriptAndTheShell) {
  const std::string lines = "for _, name in ipairs(scriptclass.GetByCategory('Album', '" + album +
                            "')) do print(name) end print(#'" + title + "')\nerror('" + genre + "')\n";
  ASSERT_EQ(house.post("/api/script", {{"name", "Names"}, {"text", lines}}), 200);
  ASSERT_EQ(house.post("/api/script/run", {{"name", "Names"}}), 200);
  std::string said;
  EXPECT_TRUE(support::Eventually([&] {
    said = house.get("/api/script/run?from=0");
    return said.find("\"running\":false") != std::string::npos;
  }));
  EXPECT_THAT(said, HasSubstr(title + "\\n" + std::to_string(title.size())));
  EXPECT_THAT(said, HasSubstr(genre));
  EXPECT_EQ(shell({"scriptclass", "GetByCategory", "Album", album}), title + "\n");
  EXPECT_EQ(shell({"host", "GetINISetting", "Settings", title, genre}), genre + "\n");
}
