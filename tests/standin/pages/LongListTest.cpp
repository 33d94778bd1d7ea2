// Lists of great length, and names of every kind, in a browser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "support/Browser.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Browser;
using support::Eventually;
using support::FakePlaylists;
using support::FakePlugin;
using support::ServerProcess;

constexpr int kTitles = 10000;
constexpr int kAlbums = 100000;
constexpr const char* kEnd = "\uE010";
constexpr const char* kDown = "\uE015";
constexpr const char* kPageUp = "\uE00E";
constexpr const char* kAlt = "\uE00A";

class LongLists : public testing::Test {
 protected:
  LongLists() {
    std::vector<FakePlaylists::Title> titles;
    for (int i = 0; i < kTitles; ++i)
      titles.push_back({"Title " + std::to_string(i), "/music/" + std::to_string(i)});
    lists->put("Long", titles);
    odd = {"<img src=x onerror=\"window.evil=1\">",
           "\"quotes\" 'of' “all” kinds",
           "a/b\\c",
           std::string(300, 'w'),
           "one\nline\r\nand another",
           "two  blanks",
           "&amp; {{content}}"};
    std::vector<FakePlaylists::Title> strange;
    for (const std::string& name : odd) strange.push_back({name, "/music/" + name});
    lists->put(odd[0], strange);
    lists->library = strange;
    FakePlugin::Manner manner;
    manner.library.playlists = lists;
    for (int i = 0; i < kAlbums; ++i)
      manner.library.categories["Album"].push_back("Album " + std::to_string(i));
    plugin.emplace(bus.address(), manner);
    server.emplace(bus.address(), folder.path() / "data");
  }
  void open(Browser& browser, const std::string& place) const {
    browser.open(server->address());
    browser.open("http://127.0.0.1:" + std::to_string(server->port()) + "/#library/" + place);
  }
  /// Milliseconds until the script answers something true.
  static int timeUntil(Browser& browser, const std::string& script, const json& arguments = json::array()) {
    const auto from = std::chrono::steady_clock::now();
    EXPECT_TRUE(browser.eventually(script, arguments)) << script;
    return static_cast<int>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - from)
            .count());
  }
  static bool hasFocus(Browser& browser, const std::string& name) {
    return browser.eventually(
        "return document.activeElement.closest('.long-row')?.querySelector('.row-name')?.textContent === "
        "arguments[0]",
        {name});
  }
  static json rows(Browser& browser) {
    return browser.run("return document.querySelectorAll('.long-row').length");
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::shared_ptr<FakePlaylists> lists = std::make_shared<FakePlaylists>();
  std::vector<std::string> odd;
  std::optional<FakePlugin> plugin;
  std::optional<ServerProcess> server;
};

constexpr const char* kShown = "return document.querySelectorAll('.long-row .row-name').length > 5";

}  // namespace

TEST_F(LongLists, TenThousandTitlesAreShownMovedAndScrolledLikeTen) {
  Browser browser(1280, 800);
  browser.open(server->address());
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('#plugin-state').textContent === 'Player ready'"));
  open(browser, "PlayList/Long");
  RecordProperty("ms_until_shown", timeUntil(browser, kShown));
  EXPECT_TRUE(
      browser.eventually("return performance.getEntriesByName(location.origin + '/api/state').length > 1"));
  EXPECT_LT(rows(browser), 60);
  browser.run("document.querySelector('[data-index=\"0\"] .row-main').focus()");
  browser.press({kEnd});
  EXPECT_TRUE(hasFocus(browser, "Title 9999"));
  browser.press({kPageUp});
  EXPECT_LT(rows(browser), 60);
  browser.run("document.querySelector('.long').scrollTop = 5000 * 52");
  RecordProperty("ms_until_scrolled",
                 timeUntil(browser, "return !!document.querySelector('[data-index=\"5003\"] .row-name')"));
  // From the middle to the top.
  browser.run("document.querySelector('[data-index=\"5003\"] .handle').focus()");
  const auto from = std::chrono::steady_clock::now();
  browser.perform({{{"type", "key"},
                    {"id", "keyboard"},
                    {"actions",
                     {{{"type", "keyDown"}, {"value", kAlt}},
                      {{"type", "keyDown"}, {"value", "\uE011"}},
                      {{"type", "keyUp"}, {"value", "\uE011"}},
                      {{"type", "keyUp"}, {"value", kAlt}}}}}});
  EXPECT_TRUE(hasFocus(browser, "Title 5003"));
  EXPECT_EQ(browser.run("return document.activeElement.closest('.long-row').dataset.index"), "0");
  EXPECT_TRUE(Eventually([&] { return lists->names("Long")[0] == "Title 5003"; }));
  RecordProperty("ms_until_moved", static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                                        std::chrono::steady_clock::now() - from)
                                                        .count()));
  EXPECT_EQ(lists->names("Long")[5003], "Title 5002");
  EXPECT_EQ(browser.run("return document.documentElement.scrollWidth <= innerWidth"), true);
}

TEST_F(LongLists, ADragNearTheEdgeScrolls) {
  Browser browser(360, 740);
  open(browser, "PlayList/Long");
  ASSERT_TRUE(browser.eventually(kShown));
  EXPECT_TRUE(
      browser.eventually("return performance.getEntriesByName(location.origin + '/api/state').length > 1"));
  const json box = browser.run(
      "document.querySelector('.long').scrollIntoView({block: 'end'});"
      "const h = document.querySelector('[data-index=\"1\"] .handle').getBoundingClientRect();"
      "const l = document.querySelector('.long').getBoundingClientRect();"
      "return [Math.round(h.x + h.width / 2), Math.round(h.y + h.height / 2), Math.round(Math.min(l.bottom, "
      "innerHeight)) - 8]");
  const auto x = box[0].get<double>();
  browser.putFinger("touchStart", x, box[1].get<double>());
  browser.putFinger("touchMove", x, box[2].get<double>() - 20);
  browser.putFinger("touchMove", x, box[2].get<double>());
  // It rests there, and the list goes on by itself.
  EXPECT_TRUE(browser.eventually("return document.querySelector('.long').scrollTop > 52 * 15"));
  browser.liftFinger();
  EXPECT_TRUE(Eventually([&] { return lists->names("Long")[1] == "Title 2"; }));
  const auto names = lists->names("Long");
  EXPECT_GT(std::find(names.begin(), names.end(), "Title 1") - names.begin(), 10);
}

TEST_F(LongLists, AHundredThousandNamesAreShownSearchedAndWalkedThrough) {
  Browser browser(1280, 800);
  browser.open(server->address());
  ASSERT_TRUE(
      browser.eventually("return document.querySelector('#plugin-state').textContent === 'Player ready'"));
  open(browser, "Album");
  RecordProperty("ms_until_shown",
                 timeUntil(browser, "return document.querySelectorAll('.tile .tile-name').length > 5"));
  EXPECT_TRUE(
      browser.eventually("return document.querySelector('.library-count').textContent === '100,000 albums'"));
  EXPECT_TRUE(
      browser.eventually("return performance.getEntriesByName(location.origin + '/api/state').length > 1"));
  browser.run("document.querySelector('#library-search').focus()");
  browser.press({kDown, kEnd});
  EXPECT_TRUE(browser.eventually(
      "return document.activeElement.querySelector('.tile-name')?.textContent === 'Album 99999'"));
  EXPECT_LT(browser.run("return document.querySelectorAll('.tile').length"), 60);
  browser.type("//input[@id='library-search']", "99998");
  RecordProperty(
      "ms_until_found",
      timeUntil(browser, "return document.querySelector('.library-count').textContent === '1 found'"));
}

TEST_F(LongLists, NamesOfEveryKindAreShownWholeAndExecuteNothing) {
  Browser browser(360, 740);
  open(browser, "PlayList");
  ASSERT_TRUE(browser.eventually("return document.querySelectorAll('.long-row .row-name').length === 2"));
  browser.click("//button[contains(@title, 'onerror')]");
  ASSERT_TRUE(browser.eventually(
      "return document.querySelectorAll('.long-row .row-name').length === arguments[0]", {odd.size()}));
  EXPECT_EQ(browser.run("return document.querySelector('h2').textContent"), odd[0]);
  EXPECT_EQ(browser.run("return [...document.querySelectorAll('.long-row')].map(r => "
                        "r.querySelector('.row-name').textContent)"),
            json(odd));
  for (std::size_t i = 0; i < odd.size(); ++i) {
    browser.run("document.querySelector(`[data-index=\"${arguments[0]}\"] .row-main`).click()", {i});
    EXPECT_TRUE(browser.eventually(
        "return document.querySelector('.details .whole')?.textContent === arguments[0]", {odd[i]}))
        << odd[i];
    EXPECT_EQ(browser.run("const box = document.querySelector('.details .whole');"
                          "return box.scrollWidth <= box.clientWidth + 1 && "
                          "document.documentElement.scrollWidth <= innerWidth"),
              true)
        << odd[i];
  }
  browser.run("document.querySelector('[data-index=\"4\"] [aria-label^=Remove]').click()");
  EXPECT_TRUE(Eventually([&] { return lists->names(odd[0]).size() == odd.size() - 1; }));
  browser.click("//button[@data-turn='undo' and not(@disabled)]");
  EXPECT_TRUE(Eventually([&] { return lists->names(odd[0]) == odd; }));
  EXPECT_EQ(browser.run("return window.evil === undefined && !document.querySelector('#page img')"), true);
}
