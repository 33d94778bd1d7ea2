// The plug-in's two pages in a browser, at a desk and on a phone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PageUser.hpp"
#include "support/Keys.hpp"
#include "support/SmallMusic.hpp"

namespace {

using support::kDown;
using support::kEnter;
using support::kSpace;
using support::PageUser;
using testing::HasSubstr;

class PagesInTheHouse : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  std::string setting(const std::string& key) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    return base::ToText(connection.proxy("org.vantorix.Host", "/host")
                            ->invoke("GetINISetting", "Settings", key, "none", "vxif_WMP.ini"));
  }
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
};

class PagesAtAnyWidth : public PagesInTheHouse, public testing::WithParamInterface<int> {
 protected:
  PageUser user{house, GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Desk, PagesAtAnyWidth, testing::Values(1280));
INSTANTIATE_TEST_SUITE_P(Phone, PagesAtAnyWidth, testing::Values(360));

TEST_P(PagesAtAnyWidth, WhatIsTickedInTheSetupIsStoredAndShown) {
  user.open("/");
  user.send("//nav//a[text()='Player Setup']");
  EXPECT_EQ(user.browser.run("return document.querySelector('h3').textContent"), "Media Player Setup");
  EXPECT_TRUE(user.ticked("TrayIcon"));
  EXPECT_FALSE(user.ticked("DebugMessages"));
  user.browser.click("//label[contains(., 'Show Tray Icon')]");
  user.browser.click("//label[contains(., 'Verbose Logging')]");
  user.browser.click("//label[contains(., 'Mute')]");
  user.press("Update");
  EXPECT_TRUE(
      user.browser.eventually("return [...document.querySelectorAll('.toast')].some(t => t.textContent === "
                              "'The settings are saved')"));
  for (int look = 0; look < 2; ++look) {
    EXPECT_FALSE(user.ticked("TrayIcon"));
    EXPECT_TRUE(user.ticked("DebugMessages"));
    EXPECT_EQ(user.browser.run("return document.querySelector('[name=WhileSpeaking]:checked').value"),
              "Mute");
    user.open("/WMP_Setup");
  }
  EXPECT_EQ(setting("WhileSpeaking"), "Mute");
  EXPECT_EQ(setting("TrayIcon"), "False");
  EXPECT_EQ(user.browser.run("return document.documentElement.scrollWidth <= window.innerWidth"), true);
}

TEST_P(PagesAtAnyWidth, APlaylistIsMadeFilledChangedAndDeleted) {
  user.open("/WMP_PListEdit");
  EXPECT_EQ(user.message(), "Error: PlayList '' does not exist");
  EXPECT_EQ(user.messageStyle(), "red");
  for (const char* name : {"Zenith", "Evening"}) {
    user.enter("New_PlayList", name);
    user.press("New List");
    EXPECT_EQ(user.message(), std::string("Added new PlayList: '") + name + "'");
  }
  EXPECT_EQ(user.messageStyle(), "bold");
  EXPECT_EQ(user.value("PlayList"), "Evening");
  user.press("New List");
  EXPECT_EQ(user.message(), "Error: The new PlayList name must be entered!");
  EXPECT_EQ(user.messageStyle(), "red");

  user.press("Add Item");
  EXPECT_EQ(user.browser.run("return document.querySelector('[name=Title]').disabled"), true);
  EXPECT_EQ(user.browser.run("return document.querySelector('[value=\"Add Item\"]').disabled"), true);
  user.turnTo("Albums", "Counting");
  EXPECT_EQ(user.entries("Title"), "|One|Three|Two");
  user.press("Add Item");
  EXPECT_EQ(user.message(), "Error: A title must be selected before adding!");
  user.choose("Title", "One");
  user.press("Add Item");
  EXPECT_EQ(user.message(), "Added: 'One' to PlayList: 'Evening'");
  const std::pair<const char*, const char*> sources[] = {
      {"Artist", "The Testers"}, {"Genre", "Numbers"}, {"PlayList", "Evening"}};
  const char* titles[] = {"Two", "Three", "One"};
  for (int i = 0; i < 3; ++i) {
    user.turnTo("Add_from", sources[i].first);
    EXPECT_EQ(user.browser.run("return document.querySelector('[name=Title]').disabled"), true);
    user.turnTo(std::string(sources[i].first) + "s", sources[i].second);
    user.choose("Title", titles[i]);
    user.press("Add Item");
    EXPECT_EQ(user.message(), std::string("Added: '") + titles[i] + "' to PlayList: 'Evening'");
    EXPECT_EQ(user.messageStyle(), "bold");
  }
  user.press("Return");
  EXPECT_EQ(user.entries("PlayListItems"), "One|Two|Three|One");
  EXPECT_EQ(user.browser.run("return document.documentElement.scrollWidth <= window.innerWidth"), true);

  user.press("Delete Item");
  EXPECT_EQ(user.message(), "Error: An item to be deleted must be selected!");
  user.choose("PlayListItems", "Two");
  user.press("Delete Item");
  EXPECT_EQ(user.message(), "Deleted: 'Two', from PlayList: 'Evening'");
  EXPECT_EQ(user.entries("PlayListItems"), "One|Three|One");
  user.enter("Renamed_PlayList", "Night");
  user.press("Rename");
  EXPECT_EQ(user.message(), "PlayList 'Evening' Renamed to: 'Night'");
  EXPECT_EQ(user.entries("PlayList"), "Night|Zenith");
  EXPECT_EQ(user.value("PlayList"), "Night");
  EXPECT_EQ(user.entries("PlayListItems"), "One|Three|One");
  user.press("Delete List");
  EXPECT_EQ(user.message(), "Deleted PlayList: 'Night'");
  EXPECT_EQ(user.messageStyle(), "bold");
  EXPECT_EQ(user.entries("PlayList"), "Zenith");
}

TEST_F(PagesInTheHouse, AGuestReadsThatGuestsMayNot) {
  PageUser guest(house, 1280);
  guest.open("/");
  EXPECT_EQ(guest.browser.runAsync("fetch('/api/login', {method: 'POST', headers: {'Content-Type': "
                                   "'application/json'}, body: '{\"name\":\"guest\"}'})"
                                   ".then(r => arguments[0](r.status))"),
            200);
  guest.open("/WMP_Setup");
  EXPECT_EQ(guest.text(), "Guests are not authorized to access the Media Player setup");
  guest.open("/WMP_PListEdit");
  EXPECT_EQ(guest.text(), "Guests are not authorized to edit playlists");
  EXPECT_EQ(guest.browser.runAsync("fetch('/WMP_PListEdit', {method: 'POST', body: new URLSearchParams("
                                   "'wmp_page=Main_Page&button=New+List&New_PlayList=x')})"
                                   ".then(r => arguments[0](r.status))"),
            403);
}

TEST_F(PagesInTheHouse, TwoBrowsersShareTheEditorsState) {
  PageUser one(house, 1280);
  PageUser other(house, 1280);
  one.open("/WMP_PListEdit");
  one.enter("New_PlayList", "Shared");
  one.press("New List");
  one.press("Add Item");
  one.turnTo("Albums", "Counting");
  one.choose("Title", "Two");
  one.press("Add Item");
  one.press("Return");
  other.open("/WMP_PListEdit");
  EXPECT_EQ(other.entries("PlayListItems"), "Two");
  one.choose("PlayListItems", "Two");
  one.press("Refresh");
  // Nothing is selected here; what was selected there counts.
  other.press("Delete Item");
  EXPECT_EQ(other.message(), "Deleted: 'Two', from PlayList: 'Shared'");
  one.press("Refresh");
  EXPECT_EQ(one.entries("PlayListItems"), "");
}

TEST_F(PagesInTheHouse, TheKeyboardAloneIsEnough) {
  PageUser user(house, 1280);
  user.open("/WMP_Setup");
  ASSERT_TRUE(user.walkTo("TrayIcon"));
  user.browser.press({kSpace});
  ASSERT_TRUE(user.walkTo("button", "Update"));
  user.browser.run("window.before = true");
  user.browser.press({kEnter});
  user.loaded();
  EXPECT_FALSE(user.ticked("TrayIcon"));
  EXPECT_EQ(setting("TrayIcon"), "False");
  EXPECT_EQ(user.browser.run("return document.activeElement.value"), "Update");

  user.open("/WMP_PListEdit");
  for (const char* name : {"Beta", "Alpha", "Gamma"}) {
    ASSERT_TRUE(user.walkTo("New_PlayList"));
    user.browser.run("window.before = true");
    for (const char* letter = name; *letter != '\0'; ++letter) user.browser.press({std::string(1, *letter)});
    user.browser.press({kEnter});
    user.loaded();
    EXPECT_EQ(user.message(), std::string("Added new PlayList: '") + name + "'");
  }
  user.open("/WMP_PListEdit");
  EXPECT_EQ(user.value("PlayList"), "Alpha");
  ASSERT_TRUE(user.walkTo("PlayList"));
  user.browser.run("window.before = true");
  user.browser.press({kDown, kDown});
  EXPECT_EQ(user.browser.run("return window.before"), true);
  user.browser.press({kEnter});
  user.loaded();
  EXPECT_EQ(user.value("PlayList"), "Gamma");
  ASSERT_TRUE(user.walkTo("button", "Delete List"));
  user.browser.run("window.before = true");
  user.browser.press({kEnter});
  user.loaded();
  EXPECT_EQ(user.message(), "Deleted PlayList: 'Gamma'");
}

/// Music whose every name is markup that would like to run.
class HostileMusic : public PagesInTheHouse {
 protected:
  HostileMusic() {
    engine::TrackTags tags;
    tags.title = kEvil;
    tags.artist = std::string("A") + kEvil;
    tags.album = std::string("B") + kEvil;
    tags.genre = std::string("C") + kEvil;
    tags.track = 9;
    music.add("hostile", 5, tags);
  }
  void sendFrom(PageUser& user, const std::string& list, int entry) {
    user.browser.run(
        "window.before = true; const list = document.querySelector(`select[name=${arguments[0]}]`);"
        "list.selectedIndex = arguments[1]; list.dispatchEvent(new Event('change', {bubbles: true}))",
        {list, entry});
    user.loaded();
  }
  void expectQuiet(PageUser& user, const std::string& where) {
    user.browser.runAsync("setTimeout(arguments[0], 200)");
    EXPECT_EQ(user.browser.run("return window.evil === undefined && location.pathname === '/WMP_PListEdit'"),
              true)
        << where;
  }
  static constexpr const char* kEvil =
      "\"'></option></select><script>window.evil=1</script><img src=x onerror=\"window.evil=1\"><meta "
      "http-equiv=refresh content=\"0;url=/gone\">";
};

TEST_F(HostileMusic, RunsNothingInAnyFieldOfTheEditor) {
  PageUser user(house, 1280);
  user.open("/WMP_PListEdit");
  user.enter("New_PlayList", kEvil);
  user.press("New List");
  expectQuiet(user, "new list");
  EXPECT_THAT(user.message(), HasSubstr("Added new PlayList: '"));
  // A name that is only told of once keeps its markup in the page's text.
  user.enter("Renamed_PlayList", kEvil);
  user.press("Rename");
  expectQuiet(user, "renamed");
  EXPECT_THAT(user.message(), HasSubstr("Renamed to: '"));
  user.open("/WMP_PListEdit");
  expectQuiet(user, "main page");
  user.press("Add Item");
  expectQuiet(user, "add page");
  for (const auto& [index, list] :
       {std::pair(0, "Albums"), std::pair(1, "Artists"), std::pair(2, "Genres"), std::pair(3, "PlayLists")}) {
    if (index > 0) sendFrom(user, "Add_from", index);
    expectQuiet(user, std::string("add from ") + list);
    sendFrom(user, list, 1);
    expectQuiet(user, std::string("chosen from ") + list);
  }
  user.open("/#devices");
  user.open("/#log");
  EXPECT_EQ(user.browser.run("return window.evil === undefined"), true);
}

}  // namespace
