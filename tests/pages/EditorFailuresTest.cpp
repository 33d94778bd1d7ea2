#include <optional>

#include "support/PagesHouse.hpp"

using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

/// An editor of its own, whose player may tell of failures without raising them.
class EditorFailures : public PagesHouse {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    item = library.addTrack("River", "Joni", "Blue", "Folk");
    mine = library.addPlaylist("Mine", {item});
    journal.clear();
  }
  std::string put(const support::Fields& fields) { return editor.MyPagePut(support::Body(fields)); }
  [[nodiscard]] std::vector<std::string> log() const { return journal.with("WriteLog"); }
  static std::string Line(const std::string& procedure, const std::string& outcome) {
    return "WriteLog(\"Error\", \"Media Player Could not complete procedure WebModule/" + procedure +
           " Error # " + outcome + "\")";
  }

  support::FakeMediaRef item;
  support::FakePlaylistRef mine;
  pages::WebEditorForm editor{{plugin.catalogue, plugin.nameXref, plugin.form, plugin.stale, plugin.host,
                               plugin.loggers, *plugin.setupForm}};

  const support::Fields addTitle{{"wmp_page", "Add_Page"}, {"button", "Add Item"}, {"PlayList", "Mine"},
                                 {"Add_from", "Album"},    {"Albums", "Blue"},     {"Title", "River"}};
  const support::Fields rename{
      {"wmp_page", "Main_Page"}, {"button", "Rename"}, {"PlayList", "Mine"}, {"Renamed_PlayList", "Yours"}};
  const support::Fields deleteList{
      {"wmp_page", "Main_Page"}, {"button", "Delete List"}, {"PlayList", "Mine"}};
  const support::Fields deleteItem{
      {"wmp_page", "Main_Page"}, {"button", "Delete Item"}, {"PlayList", "Mine"}, {"PlayListItems", "River"}};
};

}  // namespace

TEST_F(EditorFailures, ThatThePlayerRaisesLeaveTheOperationAndItsPage) {
  mine->refuses = true;
  EXPECT_EQ(put(addTitle), "");
  EXPECT_EQ(put(rename), "");
  EXPECT_EQ(put(deleteItem), "");
  EXPECT_THAT(log(), ElementsAre(Line("AddTitleToPlayList", "70: Permission denied"),
                                 Line("RenamePlayList", "70: Permission denied"),
                                 Line("DeleteFromPlayList", "70: Permission denied")));
  EXPECT_EQ(editor.fields().PlayList, "Mine");
  EXPECT_EQ(editor.fields().Renamed_PlayList, "Yours");
  EXPECT_EQ(editor.fields().PlayListItems, "River");
  // Nothing was said: the next page has no message.
  EXPECT_EQ(editor.GenPage("").find("SPAN"), std::string::npos);
}

TEST_F(EditorFailures, OfARemovalLeaveTheListsMarkedForReading) {
  library.failing = {"remove"};
  EXPECT_EQ(put(deleteList), "");
  EXPECT_THAT(log(), ElementsAre(Line("DeletePlayList", "57: Input or output failed")));
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_EQ(library.playlists.size(), 1U);
}

TEST_F(EditorFailures, AGoneListIsNamedInTheWordsOfItsOperation) {
  // The list comes back between the operation and its page.
  const auto returning = [&](const support::Fields& fields) {
    library.playlists.clear();
    host->answers["WaitEvents"] = [&](base::Args&) {
      if (library.playlists.size() == 1) library.addPlaylist("Mine");
      return base::Value();
    };
    library.addPlaylist("Another");
    plugin.stale.PlayListsStale = true;
    return put(fields);
  };
  EXPECT_THAT(returning(rename),
              HasSubstr("Error: Unable to rename PlayList: 'Mine', PlayList does not exist!</SPAN>"));
  EXPECT_THAT(returning(deleteList),
              HasSubstr("Error: Unable to delete Playlist: 'Mine', PlayList does not exist!</SPAN>"));
  EXPECT_THAT(returning(deleteItem),
              HasSubstr("Error: Unable to delete, PlayList: 'Mine' does not exist</SPAN>"));
}

TEST_F(EditorFailures, ALogThatFailsEndsThePostThatNeededIt) {
  host->failing = {"WriteLog"};
  EXPECT_EQ(put({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}, {"Nonsense", "1"}}), "");
  EXPECT_EQ(editor.fields().PlayList, "") << "none of its fields is taken";
  EXPECT_EQ(put({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}}),
            support::MainPage("", support::Options({"Mine"}, "Mine"), support::Options({"River"})));
}

TEST_F(EditorFailures, AFailureThatCantBeLoggedIsAnEmptyAnswerAllTheSame) {
  mine->refuses = true;
  host->failing = {"WriteLog"};
  EXPECT_EQ(put(deleteItem), "");
  EXPECT_THAT(log(), ElementsAre(Line("DeleteFromPlayList", "70: Permission denied")));
}

TEST_F(EditorFailures, WithoutAPlayerTheWordsAreThoseOfMissingLists) {
  wmp9->playlistLibrary = nullptr;
  EXPECT_THAT(put(deleteList), HasSubstr("Error: PlayList 'Mine' does not exist</SPAN>"));
  EXPECT_THAT(editor.GenPage(""), HasSubstr("Error: PlayList '' does not exist</SPAN>"));
}
