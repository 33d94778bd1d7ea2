// The playlist editor's window and the browser's pages show the same playlists.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <regex>

#include "EditorUser.hpp"
#include "bus/Connection.hpp"
#include "house/ListUser.hpp"
#include "support/SmallMusic.hpp"

namespace {

using support::EditorUser;
using support::Eventually;
using support::ListUser;
using Names = std::vector<std::string>;

/// A house with a screen, and the playlist "Mine" of two titles.
class TheEditor : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_EQ(house.post("/api/playlist/create", {{"name", "Mine"}}), 200);
    for (const std::size_t at : {0, 1}) addFromAlbum(at);
    ASSERT_TRUE(user.open());
  }
  void addFromAlbum(std::size_t at) {
    const auto group =
        support::JsonOf(house.get("/api/library?offset=0&limit=50&category=Album&group=Counting"));
    ASSERT_EQ(house.post("/api/playlist/add", {{"name", "Mine"},
                                               {"category", "Album"},
                                               {"group", "Counting"},
                                               {"titles",
                                                {{{"at", at},
                                                  {"title", group.at("names").at(at)},
                                                  {"mark", group.at("titles").at(at).at("mark")}}}}}),
              200);
  }

  /// The titles as the plug-in's own page lists them.
  Names onTheWeb() {
    const std::string page = house.get("/WMP_PListEdit");
    const auto from = std::min(page.find("name=\"PlayListItems\""), page.size());
    const std::string shown = page.substr(from, page.find("</select>", from) - from);
    const std::regex option("<option[^>]*value=\"([^\"]+)\"");
    Names found;
    for (std::sregex_iterator each(shown.begin(), shown.end(), option), none; each != none; ++each)
      found.push_back((*each)[1]);
    return found;
  }
  /// When the file of "Mine" was written last, in milliseconds of the clock that browsers have, too.
  [[nodiscard]] double written() const {
    struct stat file {};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(music.path()))
      if (entry.path().filename() == "Mine.m3u8") ::stat(entry.path().c_str(), &file);
    return static_cast<double>(file.st_mtim.tv_sec) * 1e3 + static_cast<double>(file.st_mtim.tv_nsec) / 1e6;
  }

  support::ManagedScreen screen;
  support::SmallMusic music{1};
  support::RealHouse house{{.music = music.path(), .display = screen.display()}};
  support::ScreenReader reader{house.busAddress()};
  EditorUser user{house, reader};
};

/// Tells how soon a page shows what has been written. It is for whoever reads it: how fast the machine is
/// fails no test.
class Delays {
 public:
  explicit Delays(ListUser& page) : page_(page) {
    page.browser.run(
        "window.orders = [];"
        "const look = () => {"
        "  const now = [...document.querySelectorAll('.long-row')].sort((a, b) => a.dataset.index - "
        "b.dataset.index).map(row => row.querySelector('.row-name')?.textContent ?? '').join();"
        "  if (orders.at(-1)?.[0] !== now) orders.push([now, Date.now()]);"
        "};"
        "new MutationObserver(look).observe(document.body,"
        "  {childList: true, subtree: true, characterData: true, attributes: true});"
        "look()");
  }
  /// Of what it shows now.
  void tell(const std::string& change, double written) {
    const auto seen = page_.browser.run("return orders.at(-1)[1]").get<double>();
    std::cout << "in the browser " << seen - written << " ms behind the playlist's file: " << change << "\n";
  }

 private:
  ListUser& page_;
};

/// The editor has asked its user something when the house ends.
class StoppedWhileItAsks : public TheEditor, public ::testing::WithParamInterface<const char*> {
 protected:
  void ask() {
    const std::string what = GetParam();
    if (what == "New PlayList") {
      user.key("alt+n");
      ASSERT_TRUE(user.isBefore(what));
      user.type("Spring");
    } else if (what == "Open") {
      user.unfold("URL");
      user.click("Sources", "Browse");
      ASSERT_TRUE(user.isBefore(what));
    } else {
      user.click("Playlist Mine", "One");
      user.key("Delete");
      ASSERT_TRUE(user.isBefore(what));
    }
  }
  /// What the plug-in has written to nobody in particular, as a sanitizer does.
  [[nodiscard]] std::string errors() const {
    const std::string address = house.busAddress();
    const auto path = address.find('/');
    std::ifstream log(std::filesystem::path(address.substr(path, address.find(',') - path)).parent_path() /
                      "bus.log");
    return {std::istreambuf_iterator<char>(log), {}};
  }
  Names stored(const std::string& list) {
    const std::string answer = house.get("/api/playlist?fresh=1&limit=50&group=" + list);
    return answer.empty() ? Names{"no " + list} : support::JsonOf(answer)["names"].get<Names>();
  }
};

constexpr const char* kPlugIn = "org.vantorix.vxif_WMP9";

}  // namespace

TEST_F(TheEditor, TellsAReaderWhatStandsInItAndWhatItIs) {
  const auto window = reader.window("Vantorix PlayList Editor");
  ASSERT_TRUE(window);
  const std::pair<const char*, const char*> wanted[] = {
      {"Sources", "tree"},           {"Mine", "combo box"},
      {"Playlist Mine", "list"},     {"New PlayList", "push button"},
      {"Rename P/L", "push button"}, {"Delete", "push button"},
      {"Move Up", "push button"},    {"Move Down", "push button"},
      {"Close", "push button"},
  };
  for (const auto& [name, role] : wanted) {
    const auto control = reader.child(*window, name);
    ASSERT_TRUE(control) << name;
    EXPECT_EQ(reader.role(*control), role) << name;
  }
  EXPECT_EQ(user.entries("Sources"),
            (Names{"Name", "All Audio", "Album", "Artist", "Genre", "PlayList", "Mine", "URL"}));
  EXPECT_EQ(user.entries("Playlist Mine"), (Names{"One", "Two"}));
}

TEST_F(TheEditor, EachChangeOfTitlesIsSeenInABrowserAndUndoneThere) {
  ListUser page(house, 1280);
  page.openList("Mine");
  EXPECT_TRUE(page.shows({"One", "Two"}));
  Delays delays(page);
  ASSERT_TRUE(user.drag("Playlist Mine", "Two", "Playlist Mine", "One"));
  ASSERT_TRUE(page.shows({"Two", "One"})) << "dragged";
  delays.tell("dragged", written());
  EXPECT_TRUE(user.shows("Playlist Mine", {"Two", "One"}));
  EXPECT_EQ(onTheWeb(), (Names{"Two", "One"}));
  user.click("Playlist Mine", "Two");
  user.click("Move Down");
  ASSERT_TRUE(page.shows({"One", "Two"})) << "moved by its button";
  delays.tell("moved by its button", written());
  EXPECT_TRUE(user.shows("Playlist Mine", {"One", "Two"}));

  user.unfold("Album");
  user.click("Sources", "Counting");
  ASSERT_TRUE(user.drag("Sources", "Three", "Playlist Mine", "One"));
  ASSERT_TRUE(page.shows({"One", "Two", "Three"})) << "at the end, wherever it was dropped";
  delays.tell("added", written());
  EXPECT_TRUE(user.shows("Playlist Mine", {"Three", "One", "Two"}));
  EXPECT_EQ(onTheWeb(), (Names{"One", "Two", "Three"}));
  user.click("Playlist Mine", "One");
  user.key("Delete");
  ASSERT_TRUE(user.isBefore("Confirm PlayList Deletion"));
  user.key("alt+y");
  ASSERT_TRUE(page.shows({"Two", "Three"})) << "taken out";
  delays.tell("taken out", written());
  EXPECT_TRUE(user.shows("Playlist Mine", {"Three", "Two"}));

  for (const Names& before :
       {Names{"One", "Two", "Three"}, Names{"One", "Two"}, Names{"Two", "One"}, Names{"One", "Two"}}) {
    page.browser.click("//button[@data-turn='undo' and not(@disabled)]");
    ASSERT_TRUE(page.shows(before)) << "undone";
  }
  EXPECT_EQ(onTheWeb(), (Names{"One", "Two"}));
}

TEST_F(TheEditor, PlaylistsMadeRenamedAndDeletedAreSeenInABrowser) {
  ListUser page(house, 1280);
  page.open("PlayList");
  EXPECT_TRUE(page.shows({"Mine"}));
  user.key("alt+n");
  ASSERT_TRUE(user.isBefore("New PlayList"));
  user.type("Spring");
  user.key("Return");
  EXPECT_TRUE(page.shows({"Mine", "Spring"}));
  user.click("Sources", "Mine");
  user.click("Rename P/L");
  user.type("Autumn");
  user.key("Return");
  EXPECT_TRUE(page.shows({"Autumn", "Spring"}));
  user.click("Sources", "Spring");
  user.key("Delete");
  ASSERT_TRUE(user.isBefore("Confirm PlayList Deletion"));
  user.key("alt+y");
  EXPECT_TRUE(page.shows({"Autumn"}));
}

TEST_F(TheEditor, WhatIsChangedInABrowserIsSeenWhereItIsLookedAtAgain) {
  ListUser page(house, 1280);
  page.openList("Mine");
  page.drag(1, 0);
  ASSERT_TRUE(page.shows({"Two", "One"}));
  user.chooseAgain("Mine");
  EXPECT_TRUE(user.shows("Playlist Mine", {"Two", "One"}));
  user.click("Sources", "Mine");
  EXPECT_TRUE(user.shows(
      "Sources", {"Name", "All Audio", "Album", "Artist", "Genre", "PlayList", "Mine", "Two", "One", "URL"}));
  ASSERT_EQ(house.post("/api/playlist/create", {{"name", "Spring"}}), 200);
  user.close();
  ASSERT_TRUE(user.open());
  EXPECT_TRUE(user.shows(
      "Sources", {"Name", "All Audio", "Album", "Artist", "Genre", "PlayList", "Mine", "Spring", "URL"}));
}

TEST_P(StoppedWhileItAsks, TheHouseEndsInOrderAndNothingIsHalfDone) {
  ask();
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto process = static_cast<pid_t>(connection.processOf(kPlugIn));
  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0) << house.server().output();
  EXPECT_TRUE(Eventually([&] { return ::kill(process, 0) != 0; }));
  EXPECT_EQ(errors().find("Sanitizer"), std::string::npos) << errors();
  ASSERT_TRUE(house.startReady());
  EXPECT_EQ(stored("Mine"), (Names{"One", "Two"}));
  EXPECT_EQ(stored("Spring"), (Names{"no Spring"}));
}

TEST_P(StoppedWhileItAsks, ThePlugInEndsAtASignalAndComesAgain) {
  ask();
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto process = static_cast<pid_t>(connection.processOf(kPlugIn));
  ::kill(process, SIGTERM);
  EXPECT_TRUE(Eventually([&] { return ::kill(process, 0) != 0; }));
  EXPECT_EQ(errors().find("Sanitizer"), std::string::npos) << errors();
  ASSERT_TRUE(Eventually([&] {
    const auto now = static_cast<pid_t>(connection.processOf(kPlugIn));
    return now != 0 && now != process;
  }));
  ASSERT_TRUE(house.becomes("ready"));
  EXPECT_EQ(stored("Mine"), (Names{"One", "Two"}));
  EXPECT_EQ(stored("Spring"), (Names{"no Spring"}));
}

INSTANTIATE_TEST_SUITE_P(TheEditor, StoppedWhileItAsks,
                         ::testing::Values("Confirm PlayList Deletion", "New PlayList", "Open"));
