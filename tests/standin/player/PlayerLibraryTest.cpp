// The library page's questions, asked of the server's program with a plug-in.
#include <gtest/gtest.h>

#include <algorithm>

#include "base/Text.hpp"
#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/JsonText.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlaylists;
using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

FakePlaylists::Title Song(const std::string& name, const std::string& artist, const std::string& album,
                          const std::string& track = {}) {
  return {name,
          "/music/" + artist + "/" + album + "/" + name,
          {{"Artist", artist},
           {"WM/AlbumArtist", artist},
           {"Album", album},
           {"WM/TrackNumber", track},
           {"Duration", "61.5"}}};
}

class LibraryPage : public testing::Test {
 protected:
  FakePlugin::Manner withLibrary() {
    raw->library = {Song("Intro", "Joni", "Blue", "1"), Song("Suzanne", "Anna Cohen", "Hits", "1"),
                    Song("Intro", "Björk", "Debut", "1"), Song("Innuendo", "Queen", "Hits", "1")};
    raw->groups["Genre/Folk"] = {raw->library[0], raw->library[2]};
    raw->groups["Album/Hits"] = {raw->library[3], raw->library[1]};
    raw->groups["Album/Blue?"] = {Song("A", "Joni", "Blue?")};
    raw->groups["Album/Blue!"] = {Song("B", "Joni", "Blue!"), Song("C", "Joni", "Blue!")};
    FakePlugin::Manner manner;
    manner.library.playlists = raw;
    manner.library.categories["Artist"] = {"Anna Cohen", "Björk", "Joni", "Queen"};
    manner.library.categories["Album"] = {"Blue", "Ärger im Paradies", "Green Night", "Blue Train"};
    manner.library.categories["Genre"] = {"Folk"};
    manner.library.groups["Album/Blue"] = {"River", "Carey"};
    manner.library.groups["Album/50% & more/less?"] = {"One"};
    manner.library.groups["Album/Hits"] = {};
    raw->albums["Artist/Joni"] = {"Blue", "Court and Spark"};
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
  /// The answer's rows as a page posts them to have one played.
  static json order(const json& page, std::size_t row, const std::string& category,
                    const std::string& group) {
    return {{"category", category},
            {"name", group},
            {"at", page.at("places").at(row)},
            {"title", page.at("names").at(row).get<std::string>().substr(0, 300)},
            {"mark", page.at("titles").at(row).at("mark")}};
  }
  const json& found(const json& answer, const std::string& category) {
    for (const json& group : answer.at("groups"))
      if (group.at("category") == category) return group;
    throw std::runtime_error("no group " + category);
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::shared_ptr<FakePlaylists> raw = std::make_shared<FakePlaylists>();
  FakePlugin plugin{bus.address(), withLibrary()};
  ServerProcess server{bus.address(), folder.path() / "data"};
  WebClient web{server};
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

TEST_F(LibraryPage, ATitleTellsWhatItIsButNotWhereItLies) {
  waitReady();
  const json page = web.json("/api/library?category=Genre&group=Folk&limit=10");
  const json& second = page.at("titles").at(1);
  EXPECT_EQ(second.at("artist"), "Björk");
  EXPECT_EQ(second.at("album"), "Debut");
  EXPECT_EQ(second.at("track"), 1);
  EXPECT_EQ(second.at("seconds"), 61.5);
  EXPECT_EQ(support::TextOf(page).find("/music"), std::string::npos);
}

TEST_F(LibraryPage, OfTwoTitlesOfOneNameEachIsPlayedForItself) {
  waitReady();
  const json page = web.json("/api/library?category=Genre&group=Folk&limit=10");
  EXPECT_EQ(page.at("names"), json({"Intro", "Intro"}));
  EXPECT_EQ(web.post("/api/play", order(page, 1, "Genre", "Folk")), 200);
  EXPECT_EQ(timesAsked("Play URL///music/Björk/Debut/Intro"), 1);
  EXPECT_EQ(web.post("/api/play", order(page, 0, "Genre", "Folk")), 200);
  EXPECT_EQ(timesAsked("Play URL///music/Joni/Blue/Intro"), 1);
}

TEST_F(LibraryPage, ATitleThatHasMovedIsFoundAndOneThatIsGoneIsRefused) {
  waitReady();
  const json page = web.json("/api/library?category=Genre&group=Folk&limit=10");
  auto& folk = raw->groups["Genre/Folk"];
  std::swap(folk[0], folk[1]);
  EXPECT_EQ(web.post("/api/play", order(page, 0, "Genre", "Folk")), 200);
  EXPECT_EQ(timesAsked("Play URL///music/Joni/Blue/Intro"), 1);
  folk = {folk[0]};
  EXPECT_EQ(web.post("/api/play", order(page, 0, "Genre", "Folk")), 409);
  EXPECT_EQ(support::JsonOf(web.last).at("error"), "“Intro” is no longer there: the list has changed");
  json odd = order(page, 1, "Genre", "Folk");
  odd["at"] = -2147483648LL;
  EXPECT_EQ(web.post("/api/play", odd), 200) << "found by its mark alone";
}

TEST_F(LibraryPage, AGroupIsPlayedByTheScriptObject) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Blue"}}), 200);
  EXPECT_EQ(timesAsked("Play Album/Blue/"), 1);
  EXPECT_TRUE(raw->played().empty());
}

TEST_F(LibraryPage, AnAlbumWhoseNameHasTheLettersOfAnotherIsPlayedItself) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Blue!"}}), 200);
  EXPECT_EQ(raw->played(), (FakePlaylists::Names{"/music/Joni/Blue!/B", "/music/Joni/Blue!/C"}));
}

TEST_F(LibraryPage, AlbumsOfOneNameStandUnderTheirArtists) {
  waitReady();
  const json page = web.json("/api/library?category=Album&group=Hits&limit=10");
  EXPECT_EQ(page.at("names"), json({"Anna Cohen", "Suzanne", "Queen", "Innuendo"}));
  EXPECT_EQ(page.at("places"), json({-1, 1, -1, 0}));
  EXPECT_TRUE(page.at("titles").at(0).is_null());
  EXPECT_EQ(page.at("heads"), 2);
  const json one = web.json("/api/library?category=Album&group=Hits&by=queen&limit=10");
  EXPECT_EQ(one.at("names"), json({"Innuendo"}));
}

TEST_F(LibraryPage, OneArtistsAlbumIsPlayedAlone) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Hits"}, {"by", "Queen"}}), 200);
  EXPECT_EQ(raw->played(), FakePlaylists::Names{"/music/Queen/Hits/Innuendo"});
}

TEST_F(LibraryPage, AnArtistAndAGenreLeadToTheirAlbums) {
  waitReady();
  EXPECT_EQ(web.json("/api/albums?category=Artist&group=Joni").at("names"),
            json({"Blue", "Court and Spark"}));
  EXPECT_EQ(timesAsked("GetAlbumsByCategory Artist/Joni"), 1);
  EXPECT_EQ(web.json("/api/albums?category=Genre&group=Folk").at("names"), json({"Blue", "Debut"}));
  EXPECT_EQ(web.get("/api/albums?category=Radio&group=Folk")->status, 400);
}

TEST_F(LibraryPage, OneSearchLooksThroughAllCategories) {
  waitReady();
  raw->put("Cohen evening", {raw->library[1]});
  const json cohen = web.json("/api/search?q=COHEN&limit=5");
  EXPECT_EQ(found(cohen, "Artist").at("names"), json({"Anna Cohen"}));
  EXPECT_EQ(found(cohen, "Media Library").at("names"), json({"Suzanne"})) << "by its artist";
  EXPECT_EQ(found(cohen, "PlayList").at("names"), json({"Cohen evening"}));
  EXPECT_EQ(found(cohen, "Album").at("total"), 0);
  const json bjork = web.json("/api/search?q=intro%20bjork&limit=5");
  EXPECT_EQ(found(bjork, "Media Library").at("total"), 1);
  EXPECT_EQ(found(bjork, "Media Library").at("titles").at(0).at("album"), "Debut");
  EXPECT_EQ(web.post("/api/play", order(found(bjork, "Media Library"), 0, "Media Library", "")), 200);
  EXPECT_EQ(timesAsked("Play URL///music/Björk/Debut/Intro"), 1);
}

TEST_F(LibraryPage, AllTitlesAreListedInPages) {
  waitReady();
  const json page = web.json("/api/library?category=media%20library&q=hits&offset=1&limit=1");
  EXPECT_EQ(page.at("names"), json({"Innuendo"}));
  EXPECT_EQ(page.at("places"), json({3}));
  EXPECT_EQ(page.at("total"), 2);
  EXPECT_EQ(web.json("/api/library?category=Media%20Library&limit=10").at("total"), 4);
}

TEST_F(LibraryPage, ASearchSeesThatTheLibraryHasChanged) {
  waitReady();
  EXPECT_EQ(found(web.json("/api/search?q=intro&limit=5"), "Media Library").at("total"), 2);
  raw->library.erase(raw->library.begin());
  const json now = web.json("/api/search?q=intro&limit=5");
  EXPECT_EQ(found(now, "Media Library").at("places"), json({1}));
  EXPECT_EQ(found(now, "Media Library").at("titles").at(0).at("artist"), "Björk");
}

TEST_F(LibraryPage, APlaylistsTitlesTellWhatTheyAre) {
  waitReady();
  raw->put("Mine", {raw->library[0], raw->library[2], raw->library[3]});
  const json page = web.json("/api/playlist?group=Mine&q=in&limit=10");
  EXPECT_EQ(page.at("names"), json({"Intro", "Intro", "Innuendo"}));
  EXPECT_EQ(page.at("titles").at(1).at("artist"), "Björk");
  EXPECT_EQ(web.post("/api/play", order(page, 1, "PlayList", "Mine")), 200);
  EXPECT_EQ(timesAsked("Play URL///music/Björk/Debut/Intro"), 1);
}

TEST_F(LibraryPage, ARowOfAPlaylistIsPlayedAsThePlaylistNamesIt) {
  waitReady();
  raw->put("Mine", {raw->library[1], {"Outside", "/elsewhere/plain.flac"}, {"Radio", "http://radio/live"}});
  const json page = web.json("/api/playlist?group=mine&limit=10");
  EXPECT_EQ(web.post("/api/play", order(page, 1, "PlayList", "mine")), 200);
  EXPECT_EQ(timesAsked("Play PlayList/Mine/Outside"), 1);
  EXPECT_EQ(web.post("/api/play", order(page, 2, "PlayList", "mine")), 200);
  EXPECT_EQ(timesAsked("Play PlayList/Mine/Radio"), 1);
  EXPECT_TRUE(raw->played().empty());
}

TEST_F(LibraryPage, OfTwoRowsWithTheLettersOfOneNameEachIsPlayedForItself) {
  waitReady();
  raw->put("Mine", {{"Outside", "/elsewhere/1.flac"}, {"Outside!", "/elsewhere/2.flac"}});
  const json page = web.json("/api/playlist?group=Mine&limit=10");
  EXPECT_EQ(web.post("/api/play", order(page, 1, "PlayList", "Mine")), 200);
  EXPECT_EQ(raw->played(), FakePlaylists::Names{"/elsewhere/2.flac"});
  EXPECT_EQ(timesAsked("Play PlayList/Mine/"), 1) << "for those who add it to a playlist";
}

TEST_F(LibraryPage, ATitleWithoutItsMarkIsNoWishForAllOfTheGroup) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Genre"}, {"name", "Folk"}, {"title", "Intro"}}), 400);
  EXPECT_EQ(web.post("/api/play", {{"category", "Genre"}, {"name", "Folk"}, {"at", 1}}), 400);
  EXPECT_EQ(timesAsked("Play Genre/Folk/"), 0);
}

TEST_F(LibraryPage, TheTitleThatWasChosenIsAdded) {
  waitReady();
  raw->put("Mine", {});
  const json page = web.json("/api/library?category=Genre&group=Folk&limit=10");
  const json row = order(page, 1, "Genre", "Folk");
  EXPECT_EQ(web.post("/api/playlist/add",
                     {{"name", "Mine"}, {"category", "Genre"}, {"group", "Folk"}, {"titles", {row}}}),
            200);
  EXPECT_EQ(raw->sources("Mine"), FakePlaylists::Names{"/music/Björk/Debut/Intro"});
  EXPECT_EQ(web.post("/api/playlist/add",
                     {{"name", "Mine"}, {"category", "Album"}, {"group", "Hits"}, {"by", "Queen"}}),
            200);
  EXPECT_EQ(raw->sources("Mine").back(), "/music/Queen/Hits/Innuendo");
}

TEST_F(LibraryPage, TitlesOfAnyNameAreListedFoundAndPlayed) {
  waitReady();
  const std::vector<std::string> names{
      "\uFFFE odd",  "odd \xFF", "abc\u202Eodd", "<b onclick=\"odd\">", std::string(1U << 20U, 'w') + " odd",
      "one\nodd\r\n"};
  raw->library.clear();
  for (const std::string& name : names)
    raw->library.push_back(Song(name, "Joni", std::to_string(raw->library.size())));
  raw->groups["Genre/Folk"] = raw->library;
  const json page = web.json("/api/library?category=Genre&group=Folk&limit=10");
  const json all = web.json("/api/search?q=odd&limit=10");
  ASSERT_EQ(found(all, "Media Library").at("total"), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(page.at("names").at(i), base::RepairUtf8(names[i]));
    EXPECT_EQ(web.post("/api/play", order(page, i, "Genre", "Folk")), 200) << i;
    EXPECT_EQ(timesAsked("Play URL//" + raw->library[i].source), 1) << i;
  }
}

TEST_F(LibraryPage, WhatCannotBePlayedIsTold) {
  waitReady();
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", "Gone"}}), 404);
  EXPECT_EQ(support::JsonOf(web.last).at("error"), "The player can't find “Gone”");
  EXPECT_EQ(web.post("/api/play", {{"category", "Radio"}, {"name", "Gone"}}), 400);
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}, {"name", ""}}), 400);
  EXPECT_EQ(web.post("/api/play", {{"category", "Album"}}), 400);
}

TEST(LibraryWithoutAPlayer, AsksForPatience) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  const ServerProcess server(bus.address(), folder.path() / "data");
  WebClient web(server);
  const auto answer = web.get("/api/library?category=Album&limit=10");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 502);
  EXPECT_EQ(support::JsonOf(answer->body).at("error"), "The plug-in isn't running");
}

}  // namespace
