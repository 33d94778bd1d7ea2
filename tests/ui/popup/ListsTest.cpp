// The library in the popup window's menus.
#include "automation/VoiceHouse.hpp"
#include "support/LibraryHouse.hpp"
#include "support/PopupHouse.hpp"

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class Lists : public support::PopupHouse {
 protected:
  void SetUp() override {
    start();
    name("Album", 1, "Blue");
    name("Album", 2, "Green");
    for (const char* title : {"yellow", "Zebra", "apple", "Moon & Sun"})
      library.addTrack(title, "A", "Blue", "Folk");
    library.addTrack("Leaf", "A", "Green", "Folk");
    library.addTrack("Grass", "A", "Green", "Folk");
  }
  void name(const std::string& category, std::int16_t element, const std::string& text) {
    plugin.popupMenus.load(category, element);
    plugin.popupMenus.caption(category, element, text);
  }
  void click(const std::string& category, std::int16_t index) { window.events->listClick(category, index); }
  std::vector<std::string> media() { return captions(ui::PopupMenus::kMedia); }
  /// As many titles as asked for, on the album "Long".
  void longAlbum(int titles) {
    for (int i = 0; i < titles; ++i) library.addTrack("T" + std::to_string(100'000 + i), "A", "Long", "Folk");
  }
};

constexpr const char* kPopUp = "window: pop up MediaListMenu, default 2";

}  // namespace

TEST_F(Lists, TheFirstEntryReadsTheCategoryAnew) {
  click("Genre", 0);
  EXPECT_THAT(journal.lines(), ElementsAre("UpdateMediaEvents(Genre)"));
}

TEST_F(Lists, ANameOpensItsTitlesInOrder) {
  click("Album", 1);
  EXPECT_THAT(media(), ElementsAre("Album", "Blue", "Album: Blue", "(Play entire list)", "apple",
                                   "Moon & Sun", "yellow", "Zebra"));
  EXPECT_EQ(journal.lines().back(), kPopUp);
}

TEST_F(Lists, AShorterGroupLeavesNoStaleTitles) {
  click("Album", 1);
  click("Album", 2);
  EXPECT_THAT(media(), ElementsAre("Album", "Green", "Album: Green", "(Play entire list)", "Grass", "Leaf"));
}

TEST_F(Lists, AGroupThatIsNotThereIsAMenuWithoutTitles) {
  click("Album", 1);
  name("Artist", 1, "Nobody");
  click("Artist", 1);
  EXPECT_THAT(media(), ElementsAre("Artist", "Nobody", "Artist: Nobody", "(Play entire list)"));
  library.failing = {"getByAttribute"};
  click("Album", 1);
  EXPECT_THAT(media(), SizeIs(4));
  EXPECT_EQ(journal.lines().back(), kPopUp);
}

TEST_F(Lists, ANameThatIsNotThereBuildsNothing) {
  click("Album", 1);
  const auto before = media();
  journal.clear();
  click("Album", 9);
  EXPECT_EQ(media(), before);
  EXPECT_THAT(journal.lines(), ElementsAre(kPopUp)) << "the step behind it is taken all the same";
}

TEST_F(Lists, ATitleIsPlayedByTheMenusMemory) {
  click("Album", 1);
  journal.clear();
  window.events->mediaClick(5);
  EXPECT_THAT(journal.lines(),
              ElementsAre("player: setMode Shuffle off", "WMPPlay(Album, Blue, Moon & Sun)"));
}

TEST_F(Lists, TheEntireListPassesThatVeryText) {
  click("Album", 1);
  window.events->mediaClick(ui::PopupMenus::kPlayAll);
  EXPECT_EQ(journal.lines().back(), "WMPPlay(Album, Blue, (Play entire list))");
}

TEST_F(Lists, ArtistsAndGenresAreShuffledAlbumsAndPlaylistsAreNot) {
  library.addPlaylist("Party", {library.tracks[0], library.tracks[1]});
  for (const auto& [category, name_, mode] :
       {std::tuple("Artist", "A", "on"), std::tuple("Genre", "Folk", "on"),
        std::tuple("PlayList", "Party", "off"), std::tuple("Album", "Blue", "off")}) {
    plugin.popupLists.BuildMediaListMenu(category, name_);
    journal.clear();
    window.events->mediaClick(4);
    EXPECT_EQ(playerCalls().front(), std::string("player: setMode Shuffle ") + mode) << category;
    EXPECT_THAT(journal.with("WMPPlay"), SizeIs(1)) << category;
  }
}

TEST_F(Lists, AMenuOfOneTitleDoesNothing) {
  library.addTrack("Alone", "Solo", "Single", "Folk");
  plugin.popupLists.BuildMediaListMenu("Album", "Single");
  journal.clear();
  window.events->mediaClick(4);
  window.events->mediaClick(3);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Lists, TheMenuOfTheDesignDoesNothing) {
  window.events->mediaClick(3);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Lists, ATitleThatIsNotThereIsNotPlayed) {
  click("Album", 1);
  journal.clear();
  window.events->mediaClick(99);
  EXPECT_THAT(journal.with("WMPPlay"), IsEmpty());
}

TEST_F(Lists, EveryFiftiethTitleGivesTheHostATurnInBothHalves) {
  longAlbum(120);
  support::FakeProgress progress;
  ui::PopupLists lists({window, plugin.popupMenus, plugin.catalogue, progress, plugin.calls, neighbours,
                        neighbours, plugin.host});
  std::vector<std::size_t> turns;
  host->answers["WaitEvents"] = [&](base::Args&) {
    turns.push_back(progress.fractions.size());
    return base::Value();
  };
  std::size_t before = 0;
  host->answers["WriteLog"] = [](base::Args&) { return base::Value(); };
  lists.BuildMediaListMenu("Album", "Long");
  // The catalogue's own turns come before the first fraction.
  for (const std::size_t turn : turns) before += turn == 0 ? 1 : 0;
  turns.erase(turns.begin(), turns.begin() + static_cast<std::ptrdiff_t>(before));
  EXPECT_THAT(turns, ElementsAre(50, 100, 120 + 50, 120 + 100));
  EXPECT_THAT(progress.calls, ElementsAre("show BuildMediaListMenu", "hide BuildMediaListMenu"));
  ASSERT_THAT(progress.fractions, SizeIs(240));
  EXPECT_FLOAT_EQ(progress.fractions[59], 0.25F);
  EXPECT_FLOAT_EQ(progress.fractions[119], 0.5F);
  EXPECT_FLOAT_EQ(progress.fractions[239], 1);
}

TEST_F(Lists, NothingGuardsAgainstAClickWhileTheMenuIsBuilt) {
  longAlbum(60);
  name("Album", 3, "Long");
  int clicks = 0;
  host->answers["WaitEvents"] = [&](base::Args&) {
    // In the second half, when titles stand in the menu already.
    if (plugin.popupMenus.list(ui::PopupMenus::kMedia).upperBound() > 50 && clicks++ == 0) click("Album", 2);
    return base::Value();
  };
  click("Album", 3);
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(journal.count(kPopUp), 2U);
  // The memory is the inner menu's, and what the outer one did behind it stands too.
  EXPECT_EQ(media()[1], "Green");
  EXPECT_EQ(media().back(), "T100059");
}

TEST_F(Lists, TitlesAreThoseOfTheListThatWasClickedEvenIfAnotherIsOpenedMeanwhile) {
  longAlbum(60);
  name("Album", 3, "Long");
  std::string open = "Album";
  host->answers["WaitEvents"] = [&](base::Args&) {
    open = "Genre";
    return base::Value();
  };
  click(open, 3);
  EXPECT_EQ(open, "Genre");
  EXPECT_EQ(media()[0], "Album");
  EXPECT_THAT(media(), SizeIs(64));
}

TEST_F(Lists, AClickOnATitleWhileTheMenuIsBuiltPlaysWhatStandsThere) {
  longAlbum(60);
  name("Album", 3, "Long");
  click("Album", 1);
  int clicks = 0;
  host->answers["WaitEvents"] = [&](base::Args&) {
    if (journal.has("library: getByAttribute Album=Long") && clicks++ == 0) window.events->mediaClick(5);
    return base::Value();
  };
  click("Album", 3);
  EXPECT_TRUE(journal.has("WMPPlay(Album, Long, Moon & Sun)"));
  EXPECT_THAT(media(), SizeIs(64));
}

TEST_F(Lists, TitlesThatCantBeReadLeaveTheLastPlacesEmpty) {
  library.addTrack("Bark", "A", "Green", "Folk");
  class Broken : public support::FakeMedia {
   public:
    Broken() : FakeMedia("?", "A", "Green", "Folk") {}
    [[nodiscard]] std::string name() const override { throw base::Failure(base::number::kDeviceIo); }
  };
  library.tracks.insert(library.tracks.begin(), std::make_shared<Broken>());
  click("Album", 2);
  EXPECT_THAT(media(), ElementsAre("Album", "Green", "Album: Green", "(Play entire list)", "Bark", "Grass",
                                   "Leaf", ""));
}

TEST_F(Lists, AMenuHoldsAsManyTitlesAsSixteenBitsCount) {
  host->silent = {"WaitEvents", "SaveINISetting", "WriteLog"};
  longAlbum(40'000);
  plugin.popupLists.BuildMediaListMenu("Album", "Long");
  const ui::ElementArray& titles = plugin.popupMenus.list(ui::PopupMenus::kMedia);
  EXPECT_EQ(titles.upperBound(), 32'767);
  EXPECT_EQ(titles.caption(32'767), "T132763");
  plugin.popupLists.BuildMediaListMenu("Album", "Green");
  EXPECT_EQ(titles.upperBound(), 5);
}

TEST_F(Lists, StrangeTitlesStandAsTheyAre) {
  const std::string longTitle(10'000, 'x');
  for (const std::string& title :
       {longTitle, std::string("a&&b\x01\x02"), std::string("שלום"), std::string("-")})
    library.addTrack(title, "A", "Odd", "Folk");
  plugin.popupLists.BuildMediaListMenu("Album", "Odd");
  auto titles = media();
  titles.erase(titles.begin(), titles.begin() + 4);
  EXPECT_THAT(titles, ElementsAre("-", "a&&b\x01\x02", longTitle, "שלום"));
  window.events->mediaClick(6);
  EXPECT_EQ(journal.lines().back(), "WMPPlay(Album, Odd, " + longTitle + ")");
}

namespace {

/// The names of the library in the menus, as they are really made.
class MenuNames : protected support::PopupScreen, public support::VoiceHouse {
 protected:
  MenuNames() : VoiceHouse(&window) {}
  std::vector<std::string> captions(const std::string& list) {
    return support::CaptionsOf(plugin.popupMenus.list(list));
  }
};

}  // namespace

TEST_F(MenuNames, AreMadeWithTheVoiceEvents) {
  library.attributes = {{"album", {"Live 1970", "Green/Night", "Blue"}}};
  plugin.voiceEvents.UpdateMediaEvents("Album");
  EXPECT_THAT(captions("Album"), ElementsAre("*Refresh Albums*", "Blue", "Green Night", "Live 1970"));
  library.addTrack("Dawn", "A", "Green/Night", "Folk");
  library.addTrack("Dusk", "A", "Green/Night", "Folk");
  window.events->listClick("Album", 2);
  EXPECT_TRUE(journal.has("library: getByAttribute Album=Green/Night")) << "the key leads back to the name";
  EXPECT_THAT(captions(ui::PopupMenus::kMedia), ElementsAre("Album", "Green Night", "Album: Green Night",
                                                            "(Play entire list)", "Dawn", "Dusk"));
}

TEST_F(MenuNames, GoIntoTheListThatWasClickedEvenIfAnotherIsOpenedMeanwhile) {
  support::FakeProgress progress;
  ui::PopupLists lists({window, plugin.popupMenus, plugin.catalogue, progress, plugin.calls, neighbours,
                        plugin.voiceEvents, plugin.host});
  library.attributes = {{"album", {"Blue", "Green"}}};
  std::string open = "Album";
  host->answers["WaitEvents"] = [&](base::Args&) {
    open = "Artist";
    return base::Value();
  };
  lists.listClick(open, 0);
  EXPECT_EQ(open, "Artist");
  EXPECT_THAT(captions("Album"), ElementsAre("*Refresh Albums*", "Blue", "Green"));
  EXPECT_THAT(captions("Artist"), ElementsAre("(none)"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Blue|Green)");
}

TEST_F(MenuNames, ThatHaveGoneStayBehindTheNewOnes) {
  library.attributes = {{"album", {"A", "B", "C"}}};
  plugin.voiceEvents.UpdateMediaEvents("Album");
  library.attributes = {{"album", {"X"}}};
  plugin.voiceEvents.UpdateMediaEvents("Album");
  EXPECT_THAT(captions("Album"), ElementsAre("*Refresh Albums*", "X", "B", "C"));
}
