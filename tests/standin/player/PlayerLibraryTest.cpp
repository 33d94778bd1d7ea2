// The library page's questions, asked of the server's program with a plug-in.
#include <gtest/gtest.h>

#include <algorithm>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

class LibraryPage : public testing::Test {
 protected:
  static FakePlugin::Manner withLibrary() {
    FakePlugin::Manner manner;
    manner.library.categories["Album"] = {"Blue", "Ärger im Paradies", "Green Night", "Blue Train"};
    manner.library.groups["Album/Blue"] = {"River", "Carey"};
    manner.library.groups["Album/50% & more/less?"] = {"One"};
    return manner;
  }
  void waitReady() {
    ASSERT_TRUE(Eventually([&] {
      const json state = web.json("/api/state");
      return state.is_object() && state.value("/plugin/state"_json_pointer, "") == "ready";
    }));
  }
  std::ptrdiff_t timesAsked(const std::string& call) {
    const auto calls = plugin.calls();
    return std::count(calls.begin(), calls.end(), call);
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), withLibrary()};
  ServerProcess server{bus.address(), folder.path() / "data"};
  WebClient web{server.port()};
};

TEST_F(LibraryPage, GroupsAndTitlesAreListed) {
  waitReady();
  const json albums = web.json("/api/library?category=album&limit=10");
  EXPECT_EQ(albums.at("total"), 4);
  EXPECT_EQ(albums.at("names"), json({"Blue", "Ärger im Paradies", "Green Night", "Blue Train"}));
  const json titles = web.json("/api/library?category=Album&group=Blue&limit=10");
  EXPECT_EQ(titles.at("names"), json({"River", "Carey"}));
  const json odd = web.json("/api/library?category=Album&group=50%25%20%26%20more%2Fless%3F&limit=10");
  EXPECT_EQ(odd.at("names"), json({"One"}));
  EXPECT_EQ(web.json("/api/library?category=PlayList&limit=10").at("total"), 0);
  EXPECT_EQ(web.get("/api/library?category=Radio&limit=10")->status, 400);
}

TEST_F(LibraryPage, AListIsAnsweredInPagesOfWhatFits) {
  waitReady();
  const json second = web.json("/api/library?category=Album&offset=1&limit=2");
  EXPECT_EQ(second.at("names"), json({"Ärger im Paradies", "Green Night"}));
  EXPECT_EQ(second.at("total"), 4);
  const json blue = web.json("/api/library?category=Album&q=BLUE&offset=1&limit=5");
  EXPECT_EQ(blue.at("names"), json({"Blue Train"}));
  EXPECT_EQ(blue.at("total"), 2);
  EXPECT_EQ(blue.at("all"), 4);
  EXPECT_EQ(web.json("/api/library?category=Album&q=%C3%A4rger&limit=5").at("total"), 1);
  EXPECT_EQ(web.json("/api/library?category=Album&offset=99&limit=5").at("names"), json::array());
}

TEST_F(LibraryPage, AListIsKeptUntilAFreshOneIsWanted) {
  waitReady();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(web.json("/api/library?category=Album&limit=1").at("total"), 4);
  EXPECT_EQ(timesAsked("GetCategoryList Album"), 1);
  EXPECT_EQ(web.json("/api/library?category=Album&limit=1&fresh=1").at("total"), 4);
  EXPECT_EQ(timesAsked("GetCategoryList Album"), 2);
}

TEST_F(LibraryPage, GroupsAndTitlesArePlayed) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Blue"}}), 200);
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Blue"}, {"title", "Carey"}}), 200);
  EXPECT_EQ(timesAsked("Play Album/Blue/"), 1);
  EXPECT_EQ(timesAsked("Play Album/Blue/Carey"), 1);
}

TEST_F(LibraryPage, WhatCannotBePlayedIsTold) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Gone"}}), 404);
  EXPECT_EQ(json::parse(web.last).at("error"), "The player can't find “Gone”");
  EXPECT_EQ(web.post("/api/play", {{"category", "Radio"}, {"name", "Gone"}}), 400);
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", ""}}), 400);
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}}), 400);
}

TEST_F(LibraryPage, ATitleTellsWhatItIs) {
  waitReady();
  const json facts = web.json("/api/media?category=Album&name=Blue&title=River");
  EXPECT_EQ(facts.at("artist"), "Joni");
  EXPECT_EQ(facts.at("album"), "Blue");
  EXPECT_EQ(facts.at("seconds"), 214.5);
}

TEST(LibraryWithoutAPlayer, AsksForPatience) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  const ServerProcess server(bus.address(), folder.path() / "data");
  WebClient web(server.port());
  const auto answer = web.get("/api/library?category=Album&limit=10");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 502);
  EXPECT_EQ(json::parse(answer->body).at("error"), "The plug-in isn't running");
}

}  // namespace
