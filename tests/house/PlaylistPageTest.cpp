// Playlists in a browser, with the player's own engine behind them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "ListUser.hpp"
#include "support/SmallMusic.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::ListUser;
using Names = ListUser::Names;

constexpr const char* kAlt = "\uE00A";
constexpr const char* kControl = "\uE009";
constexpr const char* kShift = "\uE008";
constexpr const char* kUp = "\uE013";
constexpr const char* kDown = "\uE015";
constexpr const char* kHome = "\uE011";
constexpr const char* kEnd = "\uE010";
constexpr const char* kPageDown = "\uE00F";
constexpr const char* kRight = "\uE014";
constexpr const char* kEnter = "\uE007";
constexpr const char* kEscape = "\uE00C";
constexpr const char* kDelete = "\uE017";
constexpr const char* kOdd = "<img src=x onerror=\"window.evil=1\"> 'one' / \"two\" & \\three\\";

class PlaylistInABrowser : public testing::Test {
 protected:
  void SetUp() override {
    music.add("Four", 4, 1);
    music.add("Five", 5, 1);
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_EQ(post("create", {{"name", "Mine"}}), 200);
    for (const char* title : {"One", "Two", "Three", "Four", "Five"}) addTitle(title);
  }
  int post(const std::string& action, const json& body) {
    return house.post("/api/playlist/" + action, body);
  }
  void addTitle(const std::string& title) {
    const json group =
        support::JsonOf(house.get("/api/library?offset=0&limit=50&category=Album&group=Counting"));
    const json& names = group.at("names");
    const auto at = std::find(names.begin(), names.end(), title) - names.begin();
    ASSERT_EQ(post("add", {{"name", "Mine"},
                           {"category", "Album"},
                           {"group", "Counting"},
                           {"titles", {rowOf(group, static_cast<std::size_t>(at))}}}),
              200);
  }
  /// A row as a page posts it.
  static json rowOf(const json& page, std::size_t at) {
    return {{"at", at}, {"title", page.at("names").at(at)}, {"mark", page.at("titles").at(at).at("mark")}};
  }
  /// Takes the title out that stands there now.
  int removeAt(std::size_t at) {
    json row = rowOf(support::JsonOf(house.get("/api/playlist?fresh=1&offset=0&limit=50&group=Mine")), at);
    row["name"] = "Mine";
    return post("remove", row);
  }
  Names stored() { return storedIn("Mine"); }
  Names storedIn(const std::string& list) {
    httplib::Client client = house.client();
    const auto answer =
        client.Get("/api/playlist?fresh=1&limit=500&group=" + httplib::detail::encode_query_param(list));
    return answer && answer->status == 200 ? support::JsonOf(answer->body)["names"].get<Names>()
                                           : Names{"none"};
  }
  bool isStored(const Names& wanted) {
    return Eventually([&] { return stored() == wanted; });
  }
  [[nodiscard]] std::string file() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(music.path()))
      if (entry.path().filename() == "Mine.m3u8") return entry.path().string();
    return {};
  }
  support::SmallMusic music{1};
  support::RealHouse house{{.music = music.path()}};
};

}  // namespace

TEST_F(PlaylistInABrowser, TitlesAreDraggedWithTheMouse) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.drag(0, 2);
  EXPECT_TRUE(user.shows({"Two", "Three", "One", "Four", "Five"}));
  EXPECT_TRUE(isStored({"Two", "Three", "One", "Four", "Five"}));
  user.drag(4, 0, "mouse", ".row-name");
  EXPECT_TRUE(isStored({"Five", "Two", "Three", "One", "Four"}));
  // The press that ends a drag is no click on the title.
  EXPECT_EQ(user.browser.run("return document.querySelector('.details').hidden"), true);
}

TEST_F(PlaylistInABrowser, TitlesAreDraggedWithAFinger) {
  ListUser user(house, 360);
  user.openList("Mine");
  user.drag(3, 0, "touch");
  EXPECT_TRUE(isStored({"Four", "One", "Two", "Three", "Five"}));
  user.carry(0, 2, ".row-name");
  EXPECT_TRUE(isStored({"One", "Two", "Four", "Three", "Five"}));
  EXPECT_TRUE(user.shows({"One", "Two", "Four", "Three", "Five"}));
  EXPECT_EQ(user.browser.run("return document.documentElement.scrollWidth <= window.innerWidth"), true);
}

TEST_F(PlaylistInABrowser, TitlesAreMovedAndRemovedByKeysAlone) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.focus(0);
  user.chord({kAlt, kDown});
  user.chord({kAlt, kDown});
  EXPECT_TRUE(isStored({"Two", "Three", "One", "Four", "Five"}));
  EXPECT_TRUE(user.says("One: Place 3 of 5"));
  ASSERT_TRUE(user.answered("move", 2));
  user.browser.press({kEnter, kUp, kUp});
  EXPECT_EQ(user.said(), "Place 1 of 5");
  EXPECT_EQ(stored(), (Names{"Two", "Three", "One", "Four", "Five"}));  // not before it is dropped
  user.browser.press({kEnter});
  EXPECT_TRUE(isStored({"One", "Two", "Three", "Four", "Five"}));
  ASSERT_TRUE(user.answered("move", 3));
  user.browser.press({kEnter, kEnd, kEscape});
  EXPECT_TRUE(user.says("One stays where it is"));
  user.chord({kAlt, kEnd});
  EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five", "One"}));
  user.browser.press({kDelete});
  EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five"}));
  user.chord({kControl, "z"});
  EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five", "One"}));
  user.chord({kControl, "z"});
  EXPECT_TRUE(isStored({"One", "Two", "Three", "Four", "Five"}));
  user.chord({kControl, "y"});
  EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five", "One"}));
  user.chord({kControl, kShift, "z"});
  EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five"}));
  EXPECT_TRUE(user.shows({"Two", "Three", "Four", "Five"})) << testing::PrintToString(user.titles());
}

TEST_F(PlaylistInABrowser, IsShownAsItIsWhenEachReadingTakesLongerThanTheNewsOfTheChange) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.focus(0);
  user.browser.run(
      "const real = window.fetch;"
      "window.fetch = (...all) => String(all[0]).startsWith('/api/playlist?')"
      "  ? new Promise((done) => setTimeout(done, 300)).then(() => real(...all)) : real(...all)");
  user.chord({kAlt, kEnd});
  ASSERT_TRUE(isStored({"Two", "Three", "Four", "Five", "One"}));
  user.chord({kControl, "z"});
  EXPECT_TRUE(user.shows({"One", "Two", "Three", "Four", "Five"})) << testing::PrintToString(user.titles());
}

TEST_F(PlaylistInABrowser, OfTwoAlikeTheVeryOneIsTaken) {
  addTitle("One");
  addTitle("Two");
  ASSERT_EQ(stored(), (Names{"One", "Two", "Three", "Four", "Five", "One", "Two"}));
  EXPECT_EQ(removeAt(5), 200);
  EXPECT_EQ(stored(), (Names{"One", "Two", "Three", "Four", "Five", "Two"}));
  EXPECT_EQ(post("undo", {{"name", "Mine"}}), 200);
  EXPECT_EQ(removeAt(0), 200);
  EXPECT_EQ(stored(), (Names{"Two", "Three", "Four", "Five", "One", "Two"}));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(post("undo", {{"name", "Mine"}}), 200);
  EXPECT_EQ(stored(), (Names{"One", "Two", "Three", "Four", "Five"}));
}

TEST_F(PlaylistInABrowser, TitlesThatASearchHasFoundAreRemovedWhereTheyAre) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.browser.type("//input[@id='library-search']", "o");
  EXPECT_TRUE(user.shows({"One", "Two", "Four"}));
  EXPECT_EQ(user.browser.run("return document.querySelectorAll('.handle').length"), 0);
  user.browser.click("//button[@aria-label='Remove One']");
  user.browser.click("//button[@aria-label='Remove Four']");
  EXPECT_TRUE(isStored({"Two", "Three", "Five"}));
  EXPECT_TRUE(user.shows({"Two"}));
}

TEST_F(PlaylistInABrowser, ADeletedListComesBackAfterARestart) {
  EXPECT_EQ(post("delete", {{"name", "Mine"}}), 200);
  EXPECT_EQ(file(), "");
  house.server().kill();
  ASSERT_TRUE(house.startReady());
  ListUser user(house, 360);
  user.open("PlayList");
  user.browser.click("//button[@data-turn='undo' and not(@disabled)]");
  EXPECT_TRUE(user.shows({"Mine"}));
  EXPECT_TRUE(isStored({"One", "Two", "Three", "Four", "Five"}));
}

TEST_F(PlaylistInABrowser, WhatWasDoneIsUndoneAfterARestart) {
  {
    ListUser user(house, 1280);
    user.openList("Mine");
    user.drag(0, 4);
    EXPECT_TRUE(isStored({"Two", "Three", "Four", "Five", "One"}));
  }
  house.server().kill();
  ASSERT_TRUE(house.startReady());
  ListUser user(house, 1280);
  user.openList("Mine");
  EXPECT_TRUE(user.browser.eventually(
      "return document.querySelector('[data-turn=undo]').title === 'Undo moving “One”'"));
  user.browser.click("//button[@data-turn='undo']");
  EXPECT_TRUE(user.shows({"One", "Two", "Three", "Four", "Five"}));
  EXPECT_TRUE(isStored({"One", "Two", "Three", "Four", "Five"}));
}

TEST_F(PlaylistInABrowser, TwoBrowsersAndAnotherProgramSeeEachOthersChanges) {
  ListUser user(house, 1280);
  ListUser other(house, 360);
  user.openList("Mine");
  other.openList("Mine");
  user.drag(0, 1);
  EXPECT_TRUE(other.shows({"Two", "One", "Three", "Four", "Five"}));
  other.drag(4, 0, "touch");
  EXPECT_TRUE(user.shows({"Five", "Two", "One", "Three", "Four"}));
  std::ifstream in(file());
  std::string text((std::istreambuf_iterator<char>(in)), {});
  const auto last = text.rfind("#EXTINF");
  ASSERT_NE(last, std::string::npos);
  std::ofstream(file() + ".new") << text.substr(0, last);
  std::filesystem::rename(file() + ".new", file());
  const auto from = std::chrono::steady_clock::now();
  EXPECT_TRUE(user.shows({"Five", "Two", "One", "Three"}));
  const auto took = std::chrono::steady_clock::now() - from;
  RecordProperty("seen_ms",
                 static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count()));
  EXPECT_TRUE(other.shows({"Five", "Two", "One", "Three"}));
  // The plug-in's own editor.
  httplib::Client client = house.client();
  const auto page = client.Post("/WMP_PListEdit", {{"Origin", house.url()}},
                                "wmp_page=Main_Page&PlayList=Mine&PlayListItems=Two&button=Delete+Item",
                                "application/x-www-form-urlencoded");
  ASSERT_TRUE(page && page->status == 200);
  EXPECT_TRUE(isStored({"Five", "One", "Three"}));
  EXPECT_TRUE(user.shows({"Five", "One", "Three"}));
}

TEST_F(PlaylistInABrowser, ADragOutlivesAChangeThatComesInBetween) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.take(1, 3);
  EXPECT_EQ(removeAt(0), 200);
  EXPECT_EQ(user.browser.run("return !!document.querySelector('.long-row.moving')"), true);
  user.drop();
  EXPECT_TRUE(isStored({"Three", "Four", "Two", "Five"}));
  EXPECT_TRUE(user.shows({"Three", "Four", "Two", "Five"}));
}

TEST_F(PlaylistInABrowser, AMoveThatIsRefusedIsPutBackAndTold) {
  ListUser user(house, 1280);
  user.openList("Mine");
  user.take(1, 3);
  EXPECT_EQ(removeAt(1), 200);
  user.drop();
  EXPECT_TRUE(user.toasts("“Two” is no longer in the list"));
  EXPECT_TRUE(user.shows({"One", "Three", "Four", "Five"}));
}

TEST_F(PlaylistInABrowser, ListsAreMadeFilledRenamedAndDeleted) {
  ListUser user(house, 360);
  user.open("PlayList");
  user.browser.click("//button[text()='New playlist']");
  user.browser.type("//dialog//input", kOdd);
  user.browser.click("//dialog//button[text()='Save']");
  EXPECT_TRUE(
      user.browser.eventually("return document.querySelector('h2')?.textContent === arguments[0]", {kOdd}));
  user.browser.click("//button[text()='Add titles']");
  user.browser.click("//li[contains(@class,'tile')]//a[contains(., 'Counting')]");
  user.browser.click("//button[@aria-label='Add Two to a playlist']");
  EXPECT_TRUE(user.toasts("Added Two to"));
  user.browser.click("//button[text()='Done']");
  EXPECT_TRUE(user.shows({"Two"}));
  EXPECT_EQ(storedIn(kOdd), Names{"Two"});
  user.browser.click("//button[text()='Rename']");
  user.browser.type("//dialog//input", std::string(280, 'x') + " end");  // what was there is chosen and goes
  user.browser.click("//dialog//button[text()='Save']");
  const std::string longName = std::string(280, 'x') + " end";
  EXPECT_TRUE(user.browser.eventually("return document.querySelector('h2')?.textContent === arguments[0]",
                                      {longName}));
  EXPECT_EQ(
      user.browser.run("const h = document.querySelector('h2'); return h.scrollWidth <= h.clientWidth && "
                       "document.documentElement.scrollWidth <= innerWidth"),
      true);
  EXPECT_TRUE(user.browser.eventually("return !document.querySelector('.toast')"));
  user.browser.click("//button[text()='Delete']");
  ASSERT_TRUE(user.browser.eventually("return location.hash === '#library/PlayList'"));
  user.browser.click("//button[@data-turn='undo' and not(@disabled)]");
  EXPECT_TRUE(Eventually([&] { return storedIn(longName) == Names{"Two"}; }));
  EXPECT_EQ(user.browser.run("return window.evil === undefined"), true);
}

TEST_F(PlaylistInABrowser, AGuestLooksAndHasNothingToChangeItWith) {
  ASSERT_EQ(house.post("/api/password", {{"password", "correct horse battery"}, {"old", ""}}), 200);
  ASSERT_EQ(house.post("/api/guests", {{"guests", "open"}}), 200);
  ListUser user(house, 1280);
  user.open("PlayList/Mine");
  ASSERT_TRUE(
      user.browser.eventually("return location.origin !== 'null' && document.readyState === 'complete'"));
  EXPECT_EQ(user.browser.runAsync("const done = arguments[0]; fetch('/api/login', {method: 'POST', headers: "
                                  "{'Content-Type': 'application/json'}, body: "
                                  "JSON.stringify({name: 'guest', "
                                  "password: ''})}).then(a => done(a.status))"),
            200);
  user.open("PlayList/Mine");
  EXPECT_TRUE(user.shows({"One", "Two", "Three", "Four", "Five"}));
  EXPECT_EQ(user.browser.run("return document.querySelectorAll('.handle, .turn, .danger, "
                             "[aria-label^=Remove], [aria-label^=Add]').length"),
            0);
  user.drag(0, 2, "mouse", ".row-name");
  EXPECT_TRUE(user.shows({"One", "Two", "Three", "Four", "Five"}));
  EXPECT_EQ(user.browser.runAsync("const done = arguments[0]; fetch('/api/playlist/remove', {method: 'POST', "
                                  "headers: {'Content-Type': 'application/json'}, "
                                  "body: JSON.stringify({name: 'Mine', "
                                  "at: 0, title: 'One', mark: ''})}).then(a => done(a.status))"),
            403);
  EXPECT_TRUE(user.shows({"One", "Two", "Three", "Four", "Five"}));
}

TEST_F(PlaylistInABrowser, TheLibraryIsDrivenByKeysAlone) {
  ListUser user(house, 1280);
  user.open("Album");
  const std::string shown = "return document.querySelector('.tile .tile-name')?.textContent === 'Counting'";
  ASSERT_TRUE(user.browser.eventually(shown));
  const auto focused = [&](const std::string& test) {
    return user.browser.eventually("const at = document.activeElement; return " + test);
  };
  user.browser.run("document.querySelector('[role=tab][aria-selected=true]').focus()");
  user.browser.press({kRight});
  EXPECT_TRUE(focused("at.textContent === 'Genres' && at.getAttribute('aria-selected') === 'true'"));
  user.browser.press({kEnd});
  EXPECT_TRUE(focused("at.textContent === 'Playlists' && at.getAttribute('aria-selected') === 'true'"));
  user.browser.press({kHome});
  EXPECT_TRUE(focused("at.textContent === 'Artists' && at.getAttribute('aria-selected') === 'true'"));
  user.browser.press({kRight});
  EXPECT_TRUE(focused("at.textContent === 'Albums'"));
  ASSERT_TRUE(user.browser.eventually(shown));
  user.browser.run("document.querySelector('#library-search').focus()");
  user.browser.press({kDown});
  EXPECT_TRUE(focused("at.querySelector('.tile-name')?.textContent === 'Counting'"));
  user.browser.press({kEnter});
  EXPECT_TRUE(
      user.browser.eventually("return document.querySelectorAll('.long-row .row-name').length === 5"));
  user.browser.run("document.querySelector('#library-search').focus()");
  user.browser.press({kDown, kEnd});
  EXPECT_TRUE(focused("at.closest('.long-row').dataset.index === '4'"));
  user.browser.press({kHome, kDown, kPageDown, kUp});
  EXPECT_TRUE(focused("at.closest('.long-row').dataset.index === '3'"));
  user.browser.press({kEnter});
  EXPECT_TRUE(user.browser.eventually(
      "return document.querySelector('.details .whole')?.textContent === document.activeElement.title"));
  // The list is one stop of the tabulator.
  EXPECT_EQ(
      user.browser.run(
          "return new Set([...document.querySelectorAll('.long-row button')].filter(b => b.tabIndex === 0)"
          ".map(b => b.closest('.long-row').dataset.index)).size"),
      1);
}
