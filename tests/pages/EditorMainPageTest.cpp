#include "support/PagesHouse.hpp"

using support::Page;
using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

class EditorMainPage : public PagesHouse {
 protected:
  static std::string Whole(const std::string& message, const std::string& lists, const std::string& items) {
    return Page(R"(<form method="post">
<p><h3>Edit PlayList<hr noshade></h3></p>
)" + message + R"(<input type="hidden" name="ref_page" value="WMP_PListEdit">
<input type="hidden" name="wmp_page" value="Main_Page">
Selected PlayList<br><select class="formdropdown" name="PlayList" size="1" onChange="form.submit();" style="width: 200">
)" + lists + R"(</select>
<br>
<select class="formdropdown" name="PlayListItems" size="5" style="width: 200">
)" + items + R"(</select>
<input type="submit" class="formbutton" name="button" value="Refresh" >
<p><input type="submit" class="formbutton" name="button" value="Add Item" >
<input type="submit" class="formbutton" name="button" value="Delete Item" >
<input type="submit" class="formbutton" name="button" value="Delete List" >
</p>
<p><input type="submit" class="formbutton" name="button" value="New List" >
&nbsp<input type="text" name="New_PlayList" value="" size="20" class="formtext" >
</p>
<p><input type="submit" class="formbutton" name="button" value="Rename" >
&nbsp<input type="text" name="Renamed_PlayList" value="" size="20" class="formtext" >
</p>
<BR clear=all><hr noshade></form>
)");
  }
};

}  // namespace

TEST_F(EditorMainPage, ShowsTheFirstListOfTheSortedOnesAndItsItemsInTheirOrder) {
  library.addPlaylist("road");
  const auto one = library.addTrack("Zebra", "", "", "");
  const auto two = library.addTrack("Apple", "", "", "");
  library.addPlaylist("Evening", {one, two});
  library.addPlaylist("Quiet");
  EXPECT_EQ(get(), Whole("", R"(<option selected value="Evening">Evening</option>
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
  EXPECT_EQ(get(), Whole(message, "", ""));
  EXPECT_EQ(get(), Whole(message, "", ""));  // anew each time
}

TEST_F(EditorMainPage, SaysThatAPlayListHasGone) {
  library.addPlaylist("Here");
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "Gone"}}),
            Whole("<SPAN style=\"color: red; font-weight: bold\">Error: PlayList 'Gone' does not "
                  "exist</SPAN><br><br>",
                  "<option value=\"Here\">Here</option>\n", ""));
}

TEST_F(EditorMainPage, ShowsTheListThatWasChosen) {
  library.addPlaylist("A");
  library.addPlaylist("B", {library.addTrack("Song", "", "", "")});
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "B"}, {"PlayListItems", "x"}}),
            Whole("", "<option value=\"A\">A</option>\n<option selected value=\"B\">B</option>\n",
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
  EXPECT_EQ(get(), Whole("", "<option value=\" b Rock Roll \"> b Rock Roll </option>\n",
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
  EXPECT_EQ(get(), Whole("", "<option selected value=\"B\">B</option>\n", ""));
}

TEST_F(EditorMainPage, IsEmptyWhenNoListOfSeveralCanBeRead) {
  library.addPlaylist("A")->nameFails = true;
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
  for (int i = 0; i < 10000; ++i) items.push_back(library.addTrack("Item " + std::to_string(i), "", "", ""));
  library.addPlaylist("Long", items);
  const std::string page = get();
  EXPECT_THAT(page, HasSubstr("<option value=\"Item 9999\">Item 9999</option>\r\n</select>"));
  EXPECT_THAT(page, Not(HasSubstr("Error")));
}
