#include "support/PagesHouse.hpp"

using support::Page;
using support::PagesHouse;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class EditorAddPage : public PagesHouse {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    library.attributes = {
        {"album", {"Blue", "abba Gold"}}, {"artist", {"Joni"}}, {"genre", {"Folk", "Blues"}}};
    library.addTrack("River", "Joni", "Blue", "Folk");
    library.addTrack("Carey", "Joni", "Blue", "Folk");
    mine = library.addPlaylist("Mine");
  }
  static std::string Categories(const std::string& selected) {
    std::string all;
    for (const std::string name : {"Album", "Artist", "Genre", "PlayList"})
      all += "<option " + std::string(name == selected ? "selected " : "") + "value=\"" + name + "\">" +
             name + "</option>\n";
    return all;
  }
  static std::string Whole(const std::string& message, const std::string& from, const std::string& source,
                           const std::string& titles, bool chosen) {
    const std::string grey = chosen ? "" : "Disabled";
    return Page(R"(<form method="post">
<p><h3>Add to PlayList<hr noshade></h3></p>
)" + message + R"(<input type="hidden" name="ref_page" value="WMP_PListEdit">
<input type="hidden" name="wmp_page" value="Add_Page">
<input type="hidden" name="PlayList" value="Mine">
Add to PlayList<br><input type="text" name="Dummy" value="Mine" size="20" class="formtext" DISABLED>
<br><br>Add from<br><select class="formdropdown" name="Add_from" size="1" onChange="form.submit();">
)" + Categories(from) +
                "</select>\n" + source +
                R"(<br><br>Title<br><select class="formdropdown" name="Title" size="1" )" + grey + ">\n" +
                titles + R"(</select>
<br><br><input type="submit" class="formbutton" name="button" value="Refresh" >
<input type="submit" class="formbutton" name="button" value="Add Item" )" +
                grey + R"(>
<input type="submit" class="formbutton" name="button" value="Return" >
</form>
)");
  }
  static std::string Source(const std::string& name, const std::string& options) {
    return "<br><br>" + name + R"(<br><select class="formdropdown" name=")" + name +
           R"(" size="1" onChange="form.submit();">)" + "\n<option value=\"\"></option>\n" + options +
           "</select>\n";
  }

  support::FakePlaylistRef mine;
};

constexpr const char* kTitles = R"(<option selected value=""></option>
<option value="Carey">Carey</option>
<option value="River">River</option>
)";

}  // namespace

TEST_F(EditorAddPage, BeginsWithNothingChosenAndTheAlbumsOffered) {
  post({{"wmp_page", "Add_Page"},
        {"Add_from", "Genre"},
        {"Genres", "Folk"},
        {"PlayLists", "x"},
        {"Albums", "y"},
        {"Artists", "z"},
        {"Title", "River"}});
  const std::string albums =
      R"(<br><br>Albums<br><select class="formdropdown" name="Albums" size="1" onChange="form.submit();">
<option selected value=""></option>
<option value="abba Gold">abba Gold</option>
<option value="Blue">Blue</option>
</select>
)";
  EXPECT_EQ(post({{"wmp_page", "Main_Page"}, {"PlayList", "Mine"}, {"button", "Add Item"}}),
            Whole("", "", albums, "", false));
  EXPECT_EQ(fields().Add_from + fields().PlayLists + fields().Albums + fields().Artists + fields().Genres +
                fields().Title,
            "");
}

TEST_F(EditorAddPage, OffersTheTitlesOfAChosenAlbumBehindAnEmptyOne) {
  EXPECT_EQ(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}}),
            Whole("", "Album",
                  Source("Albums",
                         "<option value=\"abba Gold\">abba Gold</option>\n<option selected "
                         "value=\"Blue\">Blue</option>\n"),
                  kTitles, true));
}

TEST_F(EditorAddPage, OffersTheTitlesOfAChosenArtist) {
  EXPECT_EQ(post({{"wmp_page", "Add_Page"},
                  {"PlayList", "Mine"},
                  {"Add_from", "Artist"},
                  {"Artists", "Joni"},
                  {"Title", "River"},
                  {"button", "Refresh"}}),
            Whole("", "Artist", Source("Artists", "<option selected value=\"Joni\">Joni</option>\n"),
                  "<option value=\"\"></option>\n<option value=\"Carey\">Carey</option>\n<option selected "
                  "value=\"River\">River</option>\n",
                  true));
}

TEST_F(EditorAddPage, OffersTheTitlesOfAChosenGenre) {
  EXPECT_EQ(
      post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Genre"}, {"Genres", "Folk"}}),
      Whole("", "Genre",
            Source("Genres",
                   "<option value=\"Blues\">Blues</option>\n<option selected value=\"Folk\">Folk</option>\n"),
            kTitles, true));
}

TEST_F(EditorAddPage, OffersTheTitlesOfAnotherPlayList) {
  library.addPlaylist("Other", {library.tracks[0], library.tracks[1]});
  EXPECT_EQ(
      post(
          {{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Other"}}),
      Whole("", "PlayList",
            Source("PlayLists",
                   "<option value=\"Mine\">Mine</option>\n<option selected value=\"Other\">Other</option>\n"),
            kTitles, true));
}

TEST_F(EditorAddPage, OffersNoTitlesOfASourceWithoutAny) {
  EXPECT_EQ(
      post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Mine"}}),
      Whole("", "PlayList", Source("PlayLists", "<option selected value=\"Mine\">Mine</option>\n"), "",
            true));
}

TEST_F(EditorAddPage, OffersNoTitlesOfASourceThatHasGone) {
  EXPECT_EQ(
      post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Gone"}}),
      Whole("", "PlayList", Source("PlayLists", "<option value=\"Mine\">Mine</option>\n"), "", true));
}

TEST_F(EditorAddPage, AChangeOfTheCategoryForgetsTheChoice) {
  post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Album"}, {"Albums", "Blue"}});
  const std::string genres =
      "<br><br>Genres<br><select class=\"formdropdown\" name=\"Genres\" size=\"1\" "
      "onChange=\"form.submit();\">\n<option selected value=\"\"></option>\n<option "
      "value=\"Blues\">Blues</option>\n<option value=\"Folk\">Folk</option>\n</select>\n";
  EXPECT_EQ(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Genre"}, {"Albums", "Blue"}}),
            Whole("", "Genre", genres, "", false));
  EXPECT_EQ(fields().Albums, "");
}

TEST_F(EditorAddPage, EachCategoryForgetsTheOtherThree) {
  for (const char* category : {"PlayList", "Album", "Artist", "Genre"}) {
    post({{"wmp_page", "Add_Page"},
          {"Add_from", category},
          {"PlayLists", "PlayList"},
          {"Albums", "Album"},
          {"Artists", "Artist"},
          {"Genres", "Genre"}});
    EXPECT_EQ(fields().PlayLists + fields().Albums + fields().Artists + fields().Genres, category);
  }
}

TEST_F(EditorAddPage, AWordThatIsNoCategoryHasNoSourceAndForgetsNothing) {
  for (const char* word : {"album", "Media Library", "x"}) {
    EXPECT_EQ(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", word}, {"Albums", "Blue"}}),
              Whole("", "", "", "", false));
    EXPECT_EQ(fields().Albums, "Blue");
  }
}

TEST_F(EditorAddPage, NoCategoryCountsAsAlbumButHasNoTitles) {
  EXPECT_EQ(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", ""}, {"Albums", "Blue"}}),
            Whole("", "",
                  Source("Albums",
                         "<option value=\"abba Gold\">abba Gold</option>\n<option selected "
                         "value=\"Blue\">Blue</option>\n"),
                  "", true));
}

TEST_F(EditorAddPage, LeavesTheCataloguesListsAsTheyAre) {
  post({{"wmp_page", "Add_Page"}, {"Add_from", "Genre"}});
  base::TextListRef genres;
  plugin.catalogue.GetGroupList("Genre", genres, "");
  EXPECT_THAT(std::vector<std::string>(genres->begin(), genres->end()), ElementsAre("Folk", "Blues"));
  library.addPlaylist("abba");
  get();
  post({{"wmp_page", "Add_Page"}, {"Add_from", "PlayList"}});
  base::TextListRef lists;
  plugin.catalogue.GetGroupList("PlayList", lists, "");
  EXPECT_THAT(std::vector<std::string>(lists->begin(), lists->end()), ElementsAre("Mine", "abba"));
  EXPECT_EQ(journal.count("library: getAllPlaylists"), 1U) << "it is the list that the pages were given";
}

TEST_F(EditorAddPage, ShowsWhatItsPostHasChosenWhenAnotherPostComesMeanwhile) {
  library.addPlaylist("Yours");
  library.addTrack("A/B", "Joni", "Blue", "Jazz");
  bool first = true;
  // The name of a title is stored through the host.
  host->answers["SaveINISetting"] = [&](base::Args&) {
    if (std::exchange(first, false))
      post({{"wmp_page", "Add_Page"},
            {"PlayList", "Yours"},
            {"Add_from", "Genre"},
            {"Albums", "abba Gold"},
            {"Genres", "Folk"},
            {"Title", "Carey"}});
    return base::Value();
  };
  EXPECT_EQ(
      post({{"wmp_page", "Add_Page"},
            {"PlayList", "Mine"},
            {"Add_from", "Album"},
            {"Albums", "Blue"},
            {"Title", "River"}}),
      Whole("", "Album", Source("Albums", support::Options({"abba Gold", "Blue"}, "Blue")),
            "<option value=\"\"></option>\n" + support::Options({"A/B", "Carey", "River"}, "River"), true));
  // The other post has set the fields, and forgotten the album itself.
  EXPECT_EQ(fields().PlayList, "Yours");
  EXPECT_EQ(fields().Genres, "Folk");
  EXPECT_EQ(fields().Albums, "");
  EXPECT_EQ(fields().Title, "Carey");
}

TEST_F(EditorAddPage, ACategoryThatCantBeReadIsOfferedEmpty) {
  library.failing = {"getAttributeStringCollection"};
  EXPECT_EQ(post({{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "Artist"}, {"Artists", "x"}}),
            Whole("", "Artist", Source("Artists", ""), "", true));
}

TEST_F(EditorAddPage, ATitleWithoutANameIsLoggedAndTheOnesBeforeItAreOffered) {
  library.addPlaylist("Other",
                      {library.tracks[0], std::make_shared<support::NamelessMedia>(), library.tracks[1]});
  EXPECT_THAT(
      post(
          {{"wmp_page", "Add_Page"}, {"PlayList", "Mine"}, {"Add_from", "PlayList"}, {"PlayLists", "Other"}}),
      HasSubstr(
          "<option selected value=\"\"></option>\r\n<option value=\"River\">River</option>\r\n</select>"));
  EXPECT_TRUE(
      logged("Error",
             "Media Player Could not complete procedure WebModule/GetFileDropList Error # 57: Input or "
             "output failed"));
}

TEST_F(EditorAddPage, TheFileDropListIsAStatusOfTheCatalogue) {
  base::TextListRef titles;
  EXPECT_EQ(plugin.editorForm.GetFileDropList(titles), -1);
  EXPECT_THAT(*titles, IsEmpty());
  post({{"wmp_page", "Add_Page"}, {"Add_from", "Album"}, {"Albums", "Blue"}});
  EXPECT_EQ(plugin.editorForm.GetFileDropList(titles), 0);
  EXPECT_THAT(*titles, ElementsAre("Carey", "River"));
  library.failing = {"getByAttribute"};
  EXPECT_EQ(plugin.editorForm.GetFileDropList(titles), base::number::kDeviceIo);
  EXPECT_THAT(*titles, IsEmpty());
}
