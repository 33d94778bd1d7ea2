// The grid of albums in a browser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "support/Browser.hpp"
#include "support/BusDaemon.hpp"
#include "support/SpoiltPictures.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Browser;
using support::FakePlugin;

constexpr int kAlbums = 300;
constexpr const char* kEnd = "\uE010";
constexpr const char* kHome = "\uE011";
constexpr const char* kLeft = "\uE012";
constexpr const char* kUp = "\uE013";
constexpr const char* kRight = "\uE014";
constexpr const char* kDown = "\uE015";
constexpr const char* kPageDown = "\uE00F";

class Grid : public testing::Test {
 protected:
  Grid() {
    FakePlugin::Manner manner;
    for (int i = 0; i < kAlbums; ++i) {
      manner.library.categories["Album"].push_back(nameOf(i));
      manner.library.groups["Album/" + nameOf(i)] = {"Song"};
    }
    plugin.emplace(bus.address(), manner);
    server.emplace(bus.address(), folder.path() / "data");
  }
  static std::string nameOf(int i) {
    const std::string digits = std::to_string(i);
    return "Album " + std::string(3 - digits.size(), '0') + digits;
  }
  void open() {
    browser.open(server->address());
    ASSERT_TRUE(
        browser.eventually("return document.querySelector('#plugin-state')?.textContent === 'Player ready'"));
    browser.open("about:blank");
    browser.open("http://127.0.0.1:" + std::to_string(server->port()) + "/#library/Album");
    ASSERT_TRUE(shows(0));
  }
  bool shows(int i) {
    return browser.eventually(
        "return document.querySelector(`.tile[data-index=\"${arguments[0]}\"] .tile-name`)?.textContent === "
        "arguments[1]",
        {i, nameOf(i)});
  }
  bool hasFocus(int i) {
    return browser.eventually(
        "return document.activeElement.closest('.tile')?.dataset.index === arguments[0]",
        {std::to_string(i)});
  }
  int columns() {
    return browser
        .run(
            "const tops = [...document.querySelectorAll('.tile')].map(tile => "
            "tile.getBoundingClientRect().top);"
            "return tops.filter(top => top === tops[0]).length")
        .get<int>();
  }
  /// Whether the tiles stand in the document as they stand on the page.
  json order() {
    return browser.run(
        "const all = [...document.querySelectorAll('.tile')].map(tile => Number(tile.dataset.index));"
        "return all.every((index, i) => i === 0 || all[i - 1] < index) && all.length");
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::optional<FakePlugin> plugin;
  std::optional<support::ServerProcess> server;
  Browser browser{1280, 800};
};

TEST_F(Grid, IsWalkedByTheKeyboard) {
  open();
  const int row = columns();
  ASSERT_GT(row, 2);
  browser.run("document.querySelector('.tile[data-index=\"0\"] .tile-main').focus()");
  browser.press({kRight});
  EXPECT_TRUE(hasFocus(1));
  browser.press({kDown});
  EXPECT_TRUE(hasFocus(1 + row));
  browser.press({kLeft});
  EXPECT_TRUE(hasFocus(row));
  browser.press({kUp});
  EXPECT_TRUE(hasFocus(0));
  browser.press({kUp});
  EXPECT_TRUE(hasFocus(0)) << "there is nothing above";
  browser.press({kPageDown});
  EXPECT_TRUE(browser.eventually(
      "return document.activeElement.closest('.tile')?.dataset.index >= arguments[0]", {row}));
  browser.press({kEnd});
  EXPECT_TRUE(hasFocus(kAlbums - 1));
  EXPECT_TRUE(shows(kAlbums - 1));
  browser.press({kHome});
  EXPECT_TRUE(hasFocus(0));
  EXPECT_TRUE(shows(0));
  EXPECT_EQ(browser.run("return document.querySelectorAll('.tile [tabindex=\"0\"]').length"), 2)
      << "one tile is a stop of the tabulator: its link and its button";
}

TEST_F(Grid, IsReadOutInTheOrderInWhichItStands) {
  open();
  const auto scrolledTo = [&](int i) {
    browser.run(
        "const [at, columns, all] = arguments;"
        "const row = document.querySelector('.grid-space').offsetHeight / Math.ceil(all / columns);"
        "document.querySelector('.grid').scrollTop = Math.floor(at / columns) * row",
        {i, columns(), kAlbums});
    return shows(i);
  };
  ASSERT_TRUE(scrolledTo(150));
  ASSERT_TRUE(scrolledTo(100));
  ASSERT_TRUE(scrolledTo(90));
  const json tiles = order();
  ASSERT_TRUE(tiles.is_number()) << browser.run(
      "return [...document.querySelectorAll('.tile')].map(tile => tile.dataset.index)");
  EXPECT_GT(tiles, 10);
  EXPECT_LT(tiles, 100) << "only what is in sight is there";
  EXPECT_EQ(browser.run("return [...document.querySelectorAll('.tile')].every(tile => "
                        "tile.getAttribute('aria-setsize') === '300' && "
                        "Number(tile.getAttribute('aria-posinset')) === Number(tile.dataset.index) + 1)"),
            true);
}

TEST_F(Grid, WhatABusyHouseHasLetFallComesWithoutBeingScrolledTo) {
  open();
  browser.run(R"(
      const real = window.fetch;
      window.refused = 0;
      window.fetch = (path, ...more) => {
        if (!String(path).includes('offset=200') || window.refused === 2) return real(path, ...more);
        window.refused++;
        return Promise.reject(new TypeError('nobody answers'));
      };
      document.querySelector('.grid').scrollTop = 1e6;)");
  EXPECT_TRUE(shows(kAlbums - 1));
  EXPECT_EQ(browser.run("return window.refused"), 2);
}

TEST_F(Grid, IsAsItWasWhenOneComesBackToIt) {
  open();
  browser.run("document.querySelector('.tile[data-index=\"0\"] .tile-main').focus()");
  browser.press({kEnd});
  ASSERT_TRUE(hasFocus(kAlbums - 1));
  const json top = browser.run("return document.querySelector('.grid').scrollTop");
  EXPECT_GT(top, 500);
  browser.press({"\uE007"});
  ASSERT_TRUE(browser.eventually("return location.hash.includes('299')"));
  browser.back();
  ASSERT_TRUE(shows(kAlbums - 1));
  EXPECT_TRUE(browser.eventually("return document.querySelector('.grid').scrollTop === arguments[0]",
                                 json::array({top})));
}

TEST_F(Grid, KeepsItsPlaceWhenThereIsRoomForFewerColumns) {
  open();
  const int row = columns();
  browser.run("document.querySelector('.grid').scrollTop = 2000");
  ASSERT_TRUE(browser.eventually("return !document.querySelector('.tile[data-index=\"0\"]')"));
  const char* kFirst =
      "const grid = document.querySelector('.grid').getBoundingClientRect();"
      "return Math.min(...[...document.querySelectorAll('.tile')].filter(tile => "
      "tile.getBoundingClientRect().bottom > grid.top + 1).map(tile => Number(tile.dataset.index)))";
  const int first = browser.run(kFirst).get<int>();
  browser.run("document.querySelector('.grid').style.width = '400px'");
  ASSERT_TRUE(support::Eventually([&] { return columns() == 2; })) << columns() << " of " << row;
  const int now = browser.run(kFirst).get<int>();
  EXPECT_LE(now, first);
  EXPECT_GT(now, first - row);
  EXPECT_TRUE(shows(now));
  EXPECT_EQ(browser.run("const grid = document.querySelector('.grid'); return grid.scrollWidth <= "
                        "grid.clientWidth"),
            true);
}

TEST_F(Grid, PlaysAnAlbumByItsButton) {
  open();
  browser.run("document.querySelector('.tile[data-index=\"7\"] .tile-play').focus()");
  browser.press({"\uE007"});
  EXPECT_TRUE(plugin->heard("Play Album/Album 007/"));
}

TEST_F(Grid, ShowsLettersWhereAPictureFailsAndAsksAgain) {
  browser.beforeEachPage(support::kSpoilsPictures);
  open();
  ASSERT_TRUE(browser.eventually("return failed > 0 && !document.querySelector('.tile img')"));
  EXPECT_EQ(browser.run("return document.querySelector('.tile[data-index=\"3\"] .tile-cover').textContent"),
            "A0");
  browser.run("spoils = false; document.querySelector('.grid').scrollTop = 40");
  EXPECT_TRUE(browser.eventually(
      "const image = document.querySelector('.tile[data-index=\"3\"] img'); return image?.complete && "
      "image.naturalWidth > 0"));
}

}  // namespace
