// The library's pages in a browser: rows that act on their own titles, albums of one name, one search for
// all.
#include <gmock/gmock.h>

#include "PageHouse.hpp"
#include "support/Axe.hpp"

namespace {

using support::FakePlaylists;
using testing::IsEmpty;

constexpr const char* kDown = "\uE015";
constexpr const char* kOdd = "<img src=x onerror=\"window.evil=1\">";
constexpr const char* kNoCharacter = "\uFFFE odd";
constexpr const char* kTurned = "abc\u202Edef";  // whose end would be written backwards

class LibraryInAWindow : public support::PageHouse, public testing::WithParamInterface<int> {
 protected:
  LibraryInAWindow() : PageHouse(GetParam()) {
    // In front of those that the house has.
    const std::vector<FakePlaylists::Title> songs{song("Intro", "Joni", "Blue", "1"),
                                                  song("Intro", "Björk", "Debut", "1"),
                                                  song("Suzanne", "Anna Cohen", "Hits", "7"),
                                                  song("Innuendo", "Queen", "Hits", "7"),
                                                  song(kOdd, kTurned, kOdd, "2"),
                                                  song(kNoCharacter, "Joni", "Blue", "3")};
    lists->library.insert(lists->library.begin(), songs.begin(), songs.end());
    const auto& all = songs;
    lists->groups["Genre/Folk"] = {all[0], all[1]};
    lists->groups["Album/Blue"] = {all[0], all[5]};
    lists->groups["Album/Hits"] = {all[3], all[2]};
    lists->groups["Album/" + std::string(kOdd)] = {all[4]};
    lists->groups["Artist/Joni"] = {all[0], all[5]};
    lists->categories["Artist"] = {"Anna Cohen", "Björk", "Joni", "Queen", kTurned};
    lists->categories["Album"] = {"Blue", "Debut", "Hits", kOdd};
    lists->categories["Genre"] = {"Folk"};
    lists->albums["Artist/Joni"] = {"Blue", "Hits"};
  }
  static FakePlaylists::Title song(const std::string& name, const std::string& artist,
                                   const std::string& album, const std::string& track) {
    return {name,
            "/music/" + artist + "/" + name,
            {{"Artist", artist},
             {"WM/AlbumArtist", artist},
             {"Album", album},
             {"Genre", "Folk"},
             {"WM/TrackNumber", track},
             {"Duration", "3723"}}};
  }
  bool titles(const std::vector<std::string>& wanted) {
    return browser.eventually(
        "return JSON.stringify([...document.querySelectorAll('.row-name')].map(n => n.textContent)) === "
        "JSON.stringify(arguments[0])",
        json::array({json(wanted)}));
  }
  bool toasts(const std::string& words) {
    return browser.eventually(
        "return [...document.querySelectorAll('.toast')].some(t => t.textContent.includes(arguments[0]))",
        {words});
  }
  void search(const std::string& words) {
    ASSERT_TRUE(has("#library-search"));
    browser.type("//input[@id='library-search']", words);
  }
  bool counts(const std::string& words) {
    return browser.eventually("return document.querySelector('.library-count')?.textContent === arguments[0]",
                              {words});
  }
  json text(const std::string& selector) {
    return browser.run("return document.querySelector(arguments[0])?.textContent ?? null", {selector});
  }
};

INSTANTIATE_TEST_SUITE_P(Desk, LibraryInAWindow, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, LibraryInAWindow, testing::Values(360));

}  // namespace

TEST_P(LibraryInAWindow, OfTwoTitlesOfOneNameEachRowActsOnItsOwn) {
  open("#library/Genre/Folk");
  ASSERT_TRUE(titles({"Intro", "Intro"}));
  EXPECT_EQ(text("[data-index='1'] .row-facts"), "Björk · Debut");
  EXPECT_EQ(text("[data-index='1'] .row-time"), "1:02:03");
  browser.click("//li[@data-index='1']//button[@aria-label='Play Intro']");
  EXPECT_TRUE(plugin.heard("Play URL///music/Björk/Intro"));
  EXPECT_TRUE(toasts("Playing Intro"));
  browser.click("//li[@data-index='1']//button[contains(@class,'row-main')]");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.details p')?.textContent === 'Björk · Debut · Folk "
                         "· track 1 · 1:02:03'"))
      << text(".details p");
  browser.click("//li[@data-index='1']//button[@aria-label='Add Intro to a playlist']");
  browser.click("//dialog//button[text()='Mine']");
  EXPECT_TRUE(toasts("Added Intro to Mine"));
  EXPECT_EQ(lists->sources("Mine").back(), "/music/Björk/Intro");
}

TEST_P(LibraryInAWindow, AlbumsOfOneNameStandUnderTheirArtists) {
  open("#library/Album/Hits");
  ASSERT_TRUE(titles({"Anna Cohen", "Suzanne", "Queen", "Innuendo"}));
  EXPECT_TRUE(counts("2 titles"));
  EXPECT_EQ(text("[data-index='1'] .row-number"), "7");
  browser.click("//button[@aria-label='Play Hits by Queen']");
  EXPECT_TRUE(
      support::Eventually([&] { return lists->played() == FakePlaylists::Names{"/music/Queen/Innuendo"}; }));
  browser.click("//a[contains(@class,'row-head')][.//span[text()='Queen']]");
  EXPECT_TRUE(titles({"Innuendo"}));
  EXPECT_EQ(text("h2"), "Hits by Queen");
  EXPECT_EQ(browser.run("return document.title"), "Hits – Vantorix");
}

TEST_P(LibraryInAWindow, AnArtistLeadsToTheAlbums) {
  open("#library/Artist/Joni");
  ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.albums a').length === 2"));
  browser.click("//nav[@aria-label='Albums']//a[.='Blue']");
  EXPECT_TRUE(browser.eventually("return document.querySelector('h2')?.textContent === 'Blue by Joni'"));
  EXPECT_TRUE(counts("2 titles"));
}

TEST_P(LibraryInAWindow, OneSearchLooksThroughEverything) {
  open("#library/Album");
  search("cohen anna");
  ASSERT_TRUE(counts("2 found"));
  EXPECT_EQ(text("#found-Artist"), "Artists 1");
  EXPECT_EQ(text("#found-MediaLibrary-0 .row-facts"), "Anna Cohen · Hits");
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
  browser.press({kDown});
  EXPECT_TRUE(browser.eventually("return document.activeElement.title === 'Anna Cohen'"));
  browser.run("document.querySelector('#library-search').select()");
  search("BJORK");
  ASSERT_TRUE(browser.eventually(
      "return document.querySelector('#found-Artist-0 .row-name')?.textContent === 'Björk'"));
  browser.click("//li[@id='found-MediaLibrary-0']//button[@aria-label='Play Intro']");
  EXPECT_TRUE(plugin.heard("Play URL///music/Björk/Intro"));
  browser.click("//li[@id='found-Artist-0']//button[@title='Björk']");
  ASSERT_TRUE(browser.eventually("return document.querySelector('h2')?.textContent === 'Björk'"));
  browser.back();
  EXPECT_TRUE(browser.eventually("return document.activeElement.title === 'Björk'"));
  EXPECT_EQ(browser.run("return document.querySelector('#library-search').value"), "BJORK");
  browser.run("document.querySelector('#library-search').select()");
  search("xyzzy");
  EXPECT_TRUE(counts("Nothing found"));
  EXPECT_TRUE(shows("Nothing found for “xyzzy”"));
}

TEST_P(LibraryInAWindow, ADeletedListComesBackFromTheToast) {
  browser.keepMessages();
  open("#library/PlayList/Mine");
  ASSERT_TRUE(titles({"A", "B", "C", "D"}));
  browser.click("//button[text()='Delete']");
  EXPECT_TRUE(toasts("Deleted Mine"));
  EXPECT_FALSE(lists->has("Mine"));
  EXPECT_TRUE(shows("There are no playlists yet")) << "and says what to do";
  browser.click("//button[contains(@class,'toast-button') and text()='Undo']");
  EXPECT_TRUE(support::Eventually([&] { return lists->has("Mine") && mine().size() == 4; }));
  EXPECT_TRUE(titles({"Mine"}));
}

TEST_P(LibraryInAWindow, EmptyListsSayWhatToDo) {
  lists->put("Mine", {});
  open("#library/PlayList/Mine");
  EXPECT_TRUE(shows("This playlist is empty. “Add titles” leads to the albums"));
  EXPECT_THAT(support::Barriers(browser), IsEmpty());
  lists->categories["Album"] = {};
  open("#library/Album");
  EXPECT_TRUE(shows("There is no music yet"));
  lists->groups["Album/Blue"] = {};
  open("#library/Album/Blue");
  EXPECT_TRUE(shows("can't find “Blue”"));
}

TEST_P(LibraryInAWindow, NamesOfEveryKindAreTexts) {
  lists->library.push_back(song(std::string(1U << 20U, 'w'), "Joni", "Blue", "4"));
  lists->groups["Album/Blue"].push_back(lists->library.back());
  open("#library/Album/Blue");
  ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.row-name').length === 3"));
  EXPECT_EQ(text("[data-index='1'] .row-name"), kNoCharacter);
  browser.click("//li[@data-index='1']//button[@title='Play']");
  EXPECT_TRUE(plugin.heard("Play Album/Blue/"));
  EXPECT_TRUE(support::Eventually([&] {
    return lists->played() ==
           FakePlaylists::Names{"/music/Joni/" + std::string(kNoCharacter), lists->library.back().source};
  })) << "and what comes behind it";
  EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= innerWidth"), true);
  browser.run("document.querySelector('[data-index=\"2\"] .row-main').click()");
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.details .whole')?.textContent.length === 1048576"));
  EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= innerWidth"), true);
  open("#library/Album");
  search("def");
  ASSERT_TRUE(browser.eventually(
      "return document.querySelector('#found-Artist-0 .row-name')?.textContent === arguments[0]", {kTurned}));
  EXPECT_EQ(text("#found-MediaLibrary-0 .row-facts"), std::string(kTurned) + " · " + kOdd);
  browser.click("//li[@id='found-MediaLibrary-0']//button[@title='Play']");
  EXPECT_TRUE(plugin.heard("Play URL///music/" + std::string(kTurned) + "/" + kOdd));
  EXPECT_EQ(
      browser.run(
          "return window.evil === undefined && [...document.querySelectorAll('#page img')].every("
          "(each) => each.getAttribute('src').startsWith('/api/cover?') && !each.hasAttribute('onerror'))"),
      true);
}

TEST_P(LibraryInAWindow, IsThereForEveryReader) {
  for (const char* scheme : {"light", "dark"}) {
    browser.likes(scheme);
    for (const char* place : {"#library/Artist/Joni", "#library/Album/Hits", "#library/Genre/Folk",
                              "#library/PlayList/Mine", "#library/find/in/Media%20Library"}) {
      open(place);
      ASSERT_TRUE(has(".long-row .row-main")) << place;
      EXPECT_THAT(support::Barriers(browser), IsEmpty()) << place << ", " << scheme;
      EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= innerWidth"), true) << place;
    }
  }
}
