#include "support/PagesHouse.hpp"

using support::MainPage;
using support::Options;
using support::PagesHouse;
using ::testing::HasSubstr;

namespace {

using EditorMainPage = PagesHouse;

}  // namespace

TEST_F(EditorMainPage, ShowsTheFirstListOfTheSortedOnesAndItsItemsInTheirOrder) {
  library.addPlaylist("road");
  const auto one = library.addTrack("Zebra", "", "", "");
  const auto two = library.addTrack("Apple", "", "", "");
  library.addPlaylist("Evening", {one, two});
  library.addPlaylist("Quiet");
  EXPECT_EQ(get(), MainPage("", R"(<option selected value="Evening">Evening</option>
<option value="Quiet">Quiet</option>
<option value="road">road</option>
)",
                            R"(<option value="Zebra">Zebra</option>
<option value="Apple">Apple</option>
)"));
}

TEST_F(EditorMainPage, WithoutAnyPlayListSaysSoAndHasEmptyLists) {
  const std::string message =
      R"(<SPAN style="color: red; font-weight: bold">Error: PlayList '' does not exist</SPAN><br><br>)";
  EXPECT_EQ(get(), MainPage(message, "", ""));
  EXPECT_EQ(get(), MainPage(message, "", ""));  // anew each time
}

TEST_F(EditorMainPage, SaysThatAPlayListHasGone) {
  library.addPlaylist("Here");
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "Gone"}}),
            MainPage("<SPAN style=\"color: red; font-weight: bold\">Error: PlayList 'Gone' does not "
                     "exist</SPAN><br><br>",
                     "<option value=\"Here\">Here</option>\n", ""));
}

TEST_F(EditorMainPage, ShowsTheListThatWasChosen) {
  library.addPlaylist("A");
  library.addPlaylist("B", {library.addTrack("Song", "", "", "")});
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "B"}, {"PlayListItems", "x"}}),
            MainPage("", "<option value=\"A\">A</option>\n<option selected value=\"B\">B</option>\n",
                     "<option value=\"Song\">Song</option>\n"));
}

TEST_F(EditorMainPage, AGetBeginsWithTheFirstListAgain) {
  library.addPlaylist("A");
  library.addPlaylist("B");
  post({{"wmp_page", "Main_Page"}, {"PlayList", "B"}, {"button", "Refresh"}});
  EXPECT_EQ(fields().PlayList, "B");
  EXPECT_THAT(get(), HasSubstr("<option selected value=\"A\">"));
  EXPECT_EQ(fields().PlayList, "A");
  EXPECT_EQ(fields().wmp_page, "");
  EXPECT_EQ(fields().button, "");
}

TEST_F(EditorMainPage, OffersNamesThroughTheFilterAndSendsTheRestAsItIs) {
  library.addPlaylist("<b>Rock & Roll~^",
                      {library.addTrack("</select><script>alert('1')</script>", "", "", "")});
  EXPECT_EQ(get(),
            MainPage("", "<option value=\" b Rock Roll \"> b Rock Roll </option>\n",
                     "<option value=\" /select script alert('1') /script \"> /select script alert('1') "
                     "/script </option>\n"));
  // What comes back is found by its key, but stands in texts as it came.
  EXPECT_THAT(post({{"wmp_page", "Main_Page"}, {"PlayList", "<i>&nope"}}),
              HasSubstr("Error: PlayList '<i>&nope' does not exist"));
}

TEST_F(EditorMainPage, FindsAListAndAnItemFromTheirFilteredNames) {
  const auto song = library.addTrack("Salt & Pepper", "", "", "");
  const auto list = library.addPlaylist("Rock & Roll", {song});
  get();
  EXPECT_THAT(post({{"wmp_page", "Main_Page"}, {"PlayList", "Rock Roll"}, {"button", "Refresh"}}),
              HasSubstr("<option selected value=\"Rock Roll\">Rock Roll</option>"));
  EXPECT_THAT(post({{"wmp_page", "Main_Page"},
                    {"PlayList", "Rock Roll"},
                    {"PlayListItems", "Salt Pepper"},
                    {"button", "Delete Item"}}),
              HasSubstr("Deleted: 'Salt & Pepper', from PlayList: 'Rock Roll'"));
  EXPECT_TRUE(list->members.empty());
}

TEST_F(EditorMainPage, TurnsGuestsAwayButTakesTheirPosts) {
  library.addPlaylist("A");
  for (const char* name : {"guest", "Guest", "GUEST"}) {
    host->webUser = name;
    EXPECT_EQ(get(), "<p><b>Guests are not authorized to edit playlists</b></p>");
  }
  EXPECT_THAT(post({{"wmp_page", "Main_Page"}}), HasSubstr("Edit PlayList"));
  host->webUser = "guests";
  EXPECT_THAT(get(), HasSubstr("Edit PlayList"));
}

TEST_F(EditorMainPage, AListThatCantBeReadIsLeftOut) {
  library.addPlaylist("A")->nameFails = true;
  library.addPlaylist("B");
  EXPECT_EQ(get(), MainPage("", "<option selected value=\"B\">B</option>\n", ""));
}

TEST_F(EditorMainPage, IsEmptyWhenNoListOfSeveralCanBeRead) {
  for (const char* name : {"A", "B"}) library.addPlaylist(name)->nameFails = true;
  EXPECT_EQ(get(), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure WebModule/BuildMainPage Error # 9: Index out "
                     "of range"));
}

TEST_F(EditorMainPage, AnItemWithoutANameLeavesALineInTheLogAndAnEmptyAnswer) {
  library.addPlaylist("A", {std::make_shared<support::NamelessMedia>()});
  EXPECT_EQ(get(), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure WebModule/BuildMainPage Error # 57: Input or "
                     "output failed"));
}

TEST_F(EditorMainPage, HoldsTenThousandItems) {
  std::vector<player::MediaRef> items;
  std::vector<std::string> names;
  for (int i = 0; i < 10000; ++i) {
    names.push_back("Item " + std::to_string(i));
    items.push_back(library.addTrack(names.back(), "", "", ""));
  }
  library.addPlaylist("Long", items);
  EXPECT_TRUE(get() == MainPage("", Options({"Long"}, "Long"), Options(names)));
}

TEST_F(EditorMainPage, HoldsTenThousandPlayLists) {
  std::vector<std::string> names;
  for (int i = 0; i < 10000; ++i) names.push_back("List " + std::to_string(10000 + i));
  for (auto name = names.rbegin(); name != names.rend(); ++name) library.addPlaylist(*name);
  library.playlists.front()->members.push_back(library.addTrack("Song", "", "", ""));
  EXPECT_TRUE(get() == MainPage("", Options(names, "List 10000"), ""));
  EXPECT_TRUE(post({{"wmp_page", "Main_Page"}, {"PlayList", "List 19999"}}) ==
              MainPage("", Options(names, "List 19999"), Options({"Song"})));
}

TEST_F(EditorMainPage, ShowsTheItemsOfTheListThatItSelectsWhenAnotherPostComesMeanwhile) {
  library.addPlaylist("Mine", {library.addTrack("A/B", "", "", "")});
  library.addPlaylist("Yours", {library.addTrack("Song", "", "", "")});
  std::string inner;
  bool first = true;
  // The item's name is stored through the host.
  host->answers["SaveINISetting"] = [&](base::Args&) {
    if (std::exchange(first, false)) inner = post({{"wmp_page", "Main_Page"}, {"PlayList", "Yours"}});
    return base::Value();
  };
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}}),
            MainPage("", Options({"Mine", "Yours"}, "Mine"), Options({"A/B"})));
  EXPECT_EQ(inner, MainPage("", Options({"Mine", "Yours"}, "Yours"), Options({"Song"})));
}
