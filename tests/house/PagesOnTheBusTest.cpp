#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::HasSubstr;

namespace {

/// The plug-in's pages in a house of real processes: asked for by the server, or by name over the bus.
class PagesOnTheBus : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    connection = std::make_unique<bus::Connection>(loop, house.busAddress());
    vxif = connection->proxy("org.vantorix.vxif_WMP9", "/vxif");
  }
  /// The page of an address, as a browser gets it.
  std::string get(const std::string& path) {
    const auto answer = house.client().Get(path);
    return answer ? answer->body : "";
  }
  std::string post(const std::string& path, const httplib::Params& fields) {
    const auto answer = house.client().Post(path, {{"Origin", house.url()}}, fields);
    return answer && answer->status == 200 ? answer->body : "";
  }
  std::string put(const std::string& body) { return base::ToText(vxif->invoke("PagePut", body)); }

  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  std::unique_ptr<bus::Connection> connection;
  base::ObjectRef vxif;
};

}  // namespace

TEST_F(PagesOnTheBus, AreBothLinkedByTheServer) {
  std::string links;
  const auto state = house.state();
  for (const auto& link : state["links"])
    links += link["link"].get<std::string>() + " " + link["text"].get<std::string>() + " " +
             link["title"].get<std::string>() + "\n";
  EXPECT_EQ(links,
            "WMP_PListEdit PlayList Editor Vantorix Media Player\n"
            "WMP_Setup Player Setup Vantorix Media Player\n");
  EXPECT_THAT(get("/WMP_Setup"), HasSubstr("Player Controls stay Always On Top<br>"));
  EXPECT_THAT(get("/WMP_PListEdit"), HasSubstr("Error: PlayList '' does not exist"));
}

TEST_F(PagesOnTheBus, KeepWhatIsSetUpBeyondTheServersStop) {
  const std::string before = get("/WMP_Setup");
  EXPECT_THAT(before, HasSubstr("VALUE=\"Pause\"CHECKED>"));
  const std::string after = post(
      "/WMP_Setup",
      {{"wmp_page", "Setup_Page"}, {"WhileSpeaking", "Mute"}, {"CoverArt", "TRUE"}, {"button", "Update"}});
  EXPECT_THAT(after, HasSubstr("VALUE=\"Mute\"CHECKED>"));
  EXPECT_THAT(after, HasSubstr("name=\"CoverArt\" value=\"TRUE\"  CHECKED>"));
  EXPECT_THAT(after, HasSubstr("name=\"TrayIcon\" value=\"TRUE\" >"));
  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0) << house.server().output();
  std::ifstream file(house.data() / "config" / "vxif_WMP.ini");
  const std::string ini((std::istreambuf_iterator<char>(file)), {});
  EXPECT_THAT(ini, HasSubstr("WhileSpeaking=Mute"));
  EXPECT_THAT(ini, HasSubstr("TrayIcon=False"));
}

TEST_F(PagesOnTheBus, ChangeThePlayersOwnPlayLists) {
  const char* editor = "/WMP_PListEdit";
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"}, {"New_PlayList", "Evening"}, {"button", "New List"}}),
              HasSubstr("Added new PlayList: 'Evening'"));
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"}, {"PlayList", "Evening"}, {"button", "Add Item"}}),
              HasSubstr("<option value=\"Counting\">Counting</option>"));
  EXPECT_THAT(post(editor, {{"wmp_page", "Add_Page"},
                            {"PlayList", "Evening"},
                            {"Add_from", "Album"},
                            {"Albums", "Counting"},
                            {"Title", "Two"},
                            {"button", "Add Item"}}),
              HasSubstr("Added: 'Two' to PlayList: 'Evening'"));
  EXPECT_THAT(get(editor), HasSubstr("<option value=\"Two\">Two</option>"));
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"},
                            {"PlayList", "Evening"},
                            {"Renamed_PlayList", "Night"},
                            {"button", "Rename"}}),
              HasSubstr("PlayList 'Evening' Renamed to: 'Night'"));
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"},
                            {"PlayList", "Night"},
                            {"PlayListItems", "Two"},
                            {"button", "Delete Item"}}),
              HasSubstr("Deleted: 'Two', from PlayList: 'Night'"));
  // The last list goes, and the page behind it has only this to say.
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"}, {"PlayList", "Night"}, {"button", "Delete List"}}),
              HasSubstr("Error: PlayList '' does not exist"));
}

TEST_F(PagesOnTheBus, ShowARenamedPlayListUnderItsNewName) {
  const char* editor = "/WMP_PListEdit";
  for (const char* name : {"Another", "Quiet"})
    post(editor, {{"wmp_page", "Main_Page"}, {"New_PlayList", name}, {"button", "New List"}});
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"},
                            {"PlayList", "Quiet"},
                            {"Renamed_PlayList", "Evening"},
                            {"button", "Rename"}}),
              HasSubstr("<option value=\"Another\">Another</option>\r\n"
                        "<option selected value=\"Evening\">Evening</option>\r\n</select>"));
  EXPECT_THAT(post(editor, {{"wmp_page", "Main_Page"}, {"PlayList", "Evening"}, {"button", "Delete List"}}),
              HasSubstr("<option selected value=\"Another\">Another</option>\r\n</select>"));
}

TEST_F(PagesOnTheBus, AnswerByName) {
  EXPECT_THAT(base::ToText(vxif->invoke("GenPage", "WMP_PListEdit")), HasSubstr("Edit PlayList<hr noshade>"));
  EXPECT_THAT(put("wmp_page=Setup_Page"), HasSubstr("Media Player Setup<hr noshade>"));
  EXPECT_EQ(put("wmp_page=Nothing"), "");
  // Bytes that no text on the bus can hold come back in some form, and the plug-in lives on.
  EXPECT_THAT(put("wmp_page=Main_Page&PlayList=%00%ff%c3"), HasSubstr("' does not exist"));
  EXPECT_THAT(put("wmp_page=Main_Page&PlayList=%zz"), HasSubstr("Error: PlayList '%zz' does not exist"));
  EXPECT_TRUE(house.logHas("Media Player Could not complete procedure WebModule/UrlDecode Error # 13"));
  EXPECT_TRUE(house.becomes("ready"));
}
