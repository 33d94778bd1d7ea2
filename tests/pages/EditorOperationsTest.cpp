#include "support/PagesHouse.hpp"

using support::Bold;
using support::MainPage;
using support::Options;
using support::PagesHouse;
using support::Red;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class EditorOperations : public PagesHouse {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    river = library.addTrack("River", "Joni", "Blue", "Folk");
    carey = library.addTrack("Carey", "Joni", "Blue", "Folk");
    library.attributes = {{"album", {"Blue"}}, {"artist", {"Joni"}}, {"genre", {"Folk"}}};
    mine = library.addPlaylist("Mine", {carey});
    other = library.addPlaylist("Other", {river});
  }
  /// What a page says above its fields; "error: " before what is red.
  static std::string Said(const std::string& page) {
    const std::string red = "<SPAN style=\"color: red; font-weight: bold\">";
    const std::string bold = "<SPAN class=\"tablecellcustom\" style=\"font-weight: bold\">";
    for (const std::string& style : {red, bold}) {
      const std::size_t at = page.find(style);
      if (at == std::string::npos) continue;
      const std::size_t end = page.find("</SPAN><br><br>", at);
      return (style == red ? "red " : "bold ") + page.substr(at + style.size(), end - at - style.size());
    }
    return page.empty() ? "an empty page" : "";
  }
  std::string add(const support::Fields& fields) { return onPage("Add_Page", "Add Item", fields); }
  std::string main(const std::string& button, const support::Fields& fields) {
    return onPage("Main_Page", button, fields);
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const auto& list : library.playlists) all.push_back(list->title);
    return all;
  }
  [[nodiscard]] static std::vector<std::string> Items(const support::FakePlaylistRef& list) {
    std::vector<std::string> all;
    for (const auto& item : list->members) all.push_back(item->name());
    return all;
  }
  std::string known(const std::string& name) { return plugin.nameXref.LookupNameXref("PlayList", name); }

  support::FakeMediaRef river, carey;
  support::FakePlaylistRef mine, other;

 private:
  std::string onPage(const std::string& page, const std::string& button, const support::Fields& fields) {
    lastPage = post(support::Body({{"wmp_page", page}, {"button", button}}) + "&" + support::Body(fields));
    return Said(lastPage);
  }

 protected:
  std::string lastPage;
};

using AddTitle = EditorOperations;
using NewList = EditorOperations;
using Rename = EditorOperations;
using DeleteList = EditorOperations;
using DeleteItem = EditorOperations;

}  // namespace

TEST_F(AddTitle, FromEachKindOfSourceEndsInTheAddPage) {
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", "River"}}),
            "bold Added: 'River' to PlayList: 'Mine'");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Artist"}, {"Artists", "Joni"}, {"Title", "River"}}),
            "bold Added: 'River' to PlayList: 'Mine'");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Genre"}, {"Genres", "Folk"}, {"Title", "carey"}}),
            "bold Added: 'carey' to PlayList: 'Mine'");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Other"}, {"Title", "River"}}),
            "bold Added: 'River' to PlayList: 'Mine'");
  EXPECT_THAT(Items(mine), ElementsAre("Carey", "River", "River", "Carey", "River"));
  EXPECT_THAT(lastPage, HasSubstr("Add to PlayList<hr noshade>"));
}

TEST_F(AddTitle, IsDoneAtOnceOnThePlayer) {
  add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", "River"}});
  EXPECT_EQ(journal.count("library: append River to Mine"), 1U);
}

TEST_F(AddTitle, NeedsATitle) {
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", ""}}),
            "red Error: A title must be selected before adding!");
  EXPECT_TRUE(journal.with("library: append").empty());
}

TEST_F(AddTitle, NeedsThePlayListThatIsEdited) {
  EXPECT_EQ(add({{"PlayList", "Gone"}, {"Add_from", "PlayList"}, {"PlayLists", "Other"}, {"Title", "River"}}),
            "red Error: PlayList 'Gone' does not exist");
}

TEST_F(AddTitle, NeedsASource) {
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Gone"}, {"Title", "River"}}),
            "red Error: The 'PlayList' cannot be found");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", ""}, {"Title", "River"}}),
            "red Error: The 'Album' cannot be found");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "album"}, {"Albums", "Blue"}, {"Title", "River"}}),
            "red Error: The 'album' cannot be found");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", ""}, {"Title", "River"}}),
            "red Error: The '' cannot be found");
}

TEST_F(AddTitle, NeedsATitleOfTheSource) {
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Other"}, {"Title", "Carey"}}),
            "red Error: 'Carey' cannot be found in the Media Library");
}

TEST_F(AddTitle, NamesTheTitleAsTheLibraryDoes) {
  library.addTrack("Salt & Pepper", "Joni", "Blue", "Folk");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", "Salt Pepper"}}),
            "bold Added: 'Salt & Pepper' to PlayList: 'Mine'");
  EXPECT_EQ(fields().Title, "Salt & Pepper");
}

TEST_F(AddTitle, OfANameWithAQuoteIsLookedForWithTheQuoteDoubled) {
  library.addTrack("The \"Live\" One", "Joni", "Blue", "Folk");
  EXPECT_EQ(add({{"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}, {"Title", "The Live One"}}),
            "red Error: 'The \"\"Live\"\" One' cannot be found in the Media Library");
}

TEST_F(NewList, IsMadeAndChosen) {
  EXPECT_EQ(main("New List", {{"PlayList", "Mine"}, {"New_PlayList", "  Road  "}}),
            "bold Added new PlayList: 'Road'");
  EXPECT_THAT(names(), ElementsAre("Mine", "Other", "Road"));
  EXPECT_EQ(fields().PlayList, "Road");
  EXPECT_EQ(fields().New_PlayList, "");
  EXPECT_THAT(lastPage, HasSubstr("Edit PlayList<hr noshade>"));
  EXPECT_THAT(lastPage, HasSubstr("<option selected value=\"Road\">Road</option>"));
}

TEST_F(NewList, OfBlanksNeedsAName) {
  for (const char* name : {"", "   "}) {
    EXPECT_EQ(main("New List", {{"PlayList", "Mine"}, {"New_PlayList", name}}),
              "red Error: The new PlayList name must be entered!");
    EXPECT_EQ(lastPage, MainPage(Red("Error: The new PlayList name must be entered!"),
                                 Options({"Mine", "Other"}, "Mine"), Options({"Carey"})));
  }
  EXPECT_TRUE(journal.with("library: newPlaylist").empty());
}

TEST_F(NewList, IsStoredUnderItsFilteredNameAndKnownAsTyped) {
  // The name as typed is what the key leads to, which is not how the player has it.
  EXPECT_EQ(main("New List", {{"PlayList", "Mine"}, {"New_PlayList", "A&B"}}),
            "red Error: PlayList 'A B' does not exist");
  EXPECT_EQ(lastPage, MainPage(Red("Error: PlayList 'A B' does not exist"),
                               Options({"A B", "Mine", "Other"}, "A B"), ""));
  EXPECT_THAT(names(), ElementsAre("Mine", "Other", "A B"));
  EXPECT_EQ(known("A B"), "A&B");
  EXPECT_EQ(fields().PlayList, "A B");
}

TEST_F(NewList, RefusedByThePlayerSaysSo) {
  library.makesPlaylists = false;
  EXPECT_EQ(main("New List", {{"PlayList", "Mine"}, {"New_PlayList", "Road"}}),
            "red Error: Unable to add PlayList: 'Road'");
  library.failing = {"newPlaylist"};
  EXPECT_EQ(main("New List", {{"PlayList", "Mine"}, {"New_PlayList", "Road"}}),
            "red Error: Unable to add PlayList: 'Road'");
  EXPECT_EQ(fields().PlayList, "Mine");
  EXPECT_EQ(fields().New_PlayList, "Road");
}

TEST_F(Rename, GivesThePlayListItsNewName) {
  EXPECT_EQ(main("Rename", {{"PlayList", "Mine"}, {"Renamed_PlayList", " Yours! "}}),
            "bold PlayList 'Mine' Renamed to: 'Yours!'");
  EXPECT_THAT(names(), ElementsAre("Yours!", "Other"));
  EXPECT_EQ(fields().PlayList, "Yours!");
  EXPECT_EQ(fields().Renamed_PlayList, "");
  EXPECT_EQ(known("Yours"), "Yours!");
  EXPECT_THAT(lastPage, HasSubstr("Edit PlayList<hr noshade>"));
}

TEST_F(Rename, EndsInThePageOfTheRenamedList) {
  library.playlists = {other, std::make_shared<support::TellingPlaylist>(
                                  journal, "Quiet", std::vector<player::MediaRef>{carey},
                                  [this] { wmp9->events().PlaylistCollectionChange(); })};
  EXPECT_EQ(get(), MainPage("", Options({"Other", "Quiet"}, "Other"), Options({"River"})));
  main("Rename", {{"PlayList", "Quiet"}, {"Renamed_PlayList", "Evening"}});
  EXPECT_EQ(lastPage, MainPage(Bold("PlayList 'Quiet' Renamed to: 'Evening'"),
                               Options({"Evening", "Other"}, "Evening"), Options({"Carey"})));
  // What the page selects is what its buttons act on.
  EXPECT_EQ(main("Delete List", {{"PlayList", "Evening"}}), "bold Deleted PlayList: 'Evening'");
  EXPECT_THAT(names(), ElementsAre("Other"));
}

TEST_F(Rename, ForgetsTheOldNameFirst) {
  library.addPlaylist("Rock?");
  get();
  ASSERT_EQ(known("Rock"), "Rock?");
  journal.clear();
  EXPECT_EQ(main("Rename", {{"PlayList", "Rock?"}, {"Renamed_PlayList", "Rock!"}}),
            "bold PlayList 'Rock?' Renamed to: 'Rock!'");
  EXPECT_EQ(known("Rock"), "Rock!");
  EXPECT_THAT(journal.with("SaveINISetting(\"PlayList\""),
              ElementsAre("SaveINISetting(\"PlayList\", \"Rock\", \"\", \"vxif_WMP.ini\")",
                          "SaveINISetting(\"PlayList\", \"Rock\", \"526F636B21\", \"vxif_WMP.ini\")"));
}

TEST_F(Rename, NeedsAName) {
  for (const char* name : {"", "  "}) {
    EXPECT_EQ(main("Rename", {{"PlayList", "Mine"}, {"Renamed_PlayList", name}}),
              "red Error: A new PlayList name must be entered!");
  }
}

TEST_F(Rename, OfAPlayListThatHasGoneSaysSoOnThePage) {
  // The page behind it finds the playlist missing as well, and its words come last.
  EXPECT_EQ(main("Rename", {{"PlayList", "Gone"}, {"Renamed_PlayList", "Back"}}),
            "red Error: PlayList 'Gone' does not exist");
  EXPECT_EQ(fields().Renamed_PlayList, "Back");
}

TEST_F(DeleteList, TakesThePlayListAwayAndChoosesTheFirst) {
  EXPECT_EQ(main("Delete List", {{"PlayList", "Mine"}}), "bold Deleted PlayList: 'Mine'");
  EXPECT_THAT(names(), ElementsAre("Other"));
  EXPECT_EQ(fields().PlayList, "Other");
  EXPECT_THAT(lastPage, HasSubstr("<option selected value=\"Other\">Other</option>\r\n</select>"));
}

TEST_F(DeleteList, ForgetsItsName) {
  library.addPlaylist("Rock?");
  get();
  main("Delete List", {{"PlayList", "Rock?"}});
  EXPECT_EQ(known("Rock"), "Rock");
  EXPECT_TRUE(journal.has("SaveINISetting(\"PlayList\", \"Rock\", \"\", \"vxif_WMP.ini\")"));
}

TEST_F(DeleteList, OfNoPlayListSaysNothing) {
  EXPECT_EQ(main("Delete List", {{"PlayList", ""}}), "");
  EXPECT_THAT(names(), ElementsAre("Mine", "Other"));
}

TEST_F(DeleteList, OfTheLastPlayListEndsInAPageWithoutOne) {
  main("Delete List", {{"PlayList", "Mine"}});
  EXPECT_EQ(main("Delete List", {{"PlayList", "Other"}}), "red Error: PlayList '' does not exist");
}

TEST_F(DeleteItem, TakesTheItemOutOfThePlayList) {
  EXPECT_EQ(main("Delete Item", {{"PlayList", "Mine"}, {"PlayListItems", "carey"}}),
            "bold Deleted: 'carey', from PlayList: 'Mine'");
  EXPECT_THAT(Items(mine), IsEmpty());
  EXPECT_EQ(fields().PlayListItems, "");
  EXPECT_THAT(lastPage, Not(HasSubstr("Carey")));
}

TEST_F(DeleteItem, NeedsAnItem) {
  EXPECT_EQ(main("Delete Item", {{"PlayList", "Mine"}, {"PlayListItems", ""}}),
            "red Error: An item to be deleted must be selected!");
}

TEST_F(DeleteItem, NeedsAnItemOfThePlayList) {
  EXPECT_EQ(main("Delete Item", {{"PlayList", "Mine"}, {"PlayListItems", "River"}}),
            "red Error: 'River' does not exist in PlayList: 'Mine'");
}

TEST_F(DeleteItem, OfAPlayListThatHasGoneSaysSoOnThePage) {
  EXPECT_EQ(main("Delete Item", {{"PlayList", "Gone"}, {"PlayListItems", "River"}}),
            "red Error: PlayList 'Gone' does not exist");
}

TEST_F(EditorOperations, AMessageIsShownOnceAndByTheNextPageOfWhicheverUser) {
  other->members.push_back(std::make_shared<support::NamelessMedia>());
  // The list goes, but the page behind it fails before it says so.
  EXPECT_EQ(main("Delete List", {{"PlayList", "Mine"}}), "an empty page");
  EXPECT_THAT(names(), ElementsAre("Other"));
  other->members.pop_back();
  host->webUser = "ann";
  const std::string lists = Options({"Other"}, "Other");
  const std::string items = Options({"River"});
  EXPECT_EQ(get(), MainPage(Bold("Deleted PlayList: 'Mine'"), lists, items));
  EXPECT_EQ(get(), MainPage("", lists, items));
}

TEST_F(EditorOperations, NamesThatAreMarkupStandInMessagesAsTheyAre) {
  EXPECT_EQ(main("Rename", {{"PlayList", "Mine"}, {"Renamed_PlayList", "<b>&x</b>"}}),
            "bold PlayList 'Mine' Renamed to: '<b>&x</b>'");
  EXPECT_EQ(mine->title, "<b>&x</b>");
}
