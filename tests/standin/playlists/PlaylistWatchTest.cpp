// What pages that show a playlist hear of others' changes.
#include <gmock/gmock.h>

#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlaylists;
using support::LivePage;

constexpr const char* kOfMine = R"("name":"Mine")";
constexpr const char* kLists = R"("lists":true)";

class PlaylistWatchers : public support::PlaylistHouse {
 protected:
  void changeMine() { lists->put("Mine", {at("A"), at("C"), at("B"), at("D")}); }
  /// How often the plug-in has been asked for the names of all lists.
  int looksAtNames() {
    const auto calls = plugin.calls();
    return static_cast<int>(std::count(calls.begin(), calls.end(), "GetCategoryList PlayList"));
  }
  /// How often a page has heard that there are other lists.
  static int timesTold(LivePage& page) {
    const std::string heard = page.heard();
    int times = 0;
    for (auto at = heard.find(kLists); at != std::string::npos; at = heard.find(kLists, at + 1)) ++times;
    return times;
  }
};

}  // namespace

TEST_F(PlaylistWatchers, HearOfAChange) {
  LivePage page(*server);
  show();
  watch("Mine", "p");
  changeMine();
  EXPECT_TRUE(page.hears(kOfMine));
  EXPECT_EQ(show().at("names"), json({"A", "C", "B", "D"}));
}

TEST_F(PlaylistWatchers, HearOfAChangeFarBelowTheRowsThatAPageShows) {
  std::vector<FakePlaylists::Title> titles;
  for (int i = 0; i < 500; ++i) titles.push_back({std::to_string(i), "Long/" + std::to_string(i)});
  lists->put("Long", titles);
  LivePage page(*server);
  show("Long");
  watch("Long", "p");
  std::swap(titles[400], titles[401]);
  lists->put("Long", titles);
  EXPECT_TRUE(page.hears(R"("name":"Long")"));
}

TEST_F(PlaylistWatchers, HearOfTheirListWhenAnotherCannotBeRead) {
  lists->put("A", {at("A")});
  LivePage page(*server);
  show("A");
  show();
  lists->spoil("A", true);
  watch("A", "p");
  watch("Mine", "q");
  changeMine();
  EXPECT_TRUE(page.hears(kOfMine));
}

TEST_F(PlaylistWatchers, AreNotForgottenForListsThatOthersShow) {
  LivePage page(*server);
  show();
  watch("Mine", "p");
  for (int i = 0; i < 15; ++i) {
    const std::string other = "List " + std::to_string(i);
    lists->put(other, {at("E")});
    show(other);
  }
  changeMine();
  EXPECT_TRUE(page.hears(kOfMine));
}

TEST_F(PlaylistWatchers, TheListShownLastIsKeptLongest) {
  const json version = show().at("version");
  for (int i = 0; i < 13; ++i) {
    const std::string other = "List " + std::to_string(i);
    lists->put(other, {at("E")});
    show(other);
    EXPECT_EQ(show().at("version"), version);
  }
}

TEST_F(PlaylistWatchers, HearOfTheVeryFirstList) {
  lists->drop("Mine");
  LivePage page(*server);
  watch("", "p");
  ASSERT_TRUE(Eventually([&] { return looksAtNames() >= 3; }));  // the second has been answered
  EXPECT_EQ(timesTold(page), 1);
  lists->put("New", {at("E")});
  EXPECT_TRUE(Eventually([&] { return timesTold(page) == 2; }));
}

TEST_F(PlaylistWatchers, ReadTheListsAgainThatTheyMayHaveReadBeforeTheFirstLook) {
  LivePage page(*server);
  watch("", "p");
  EXPECT_TRUE(page.hears(kLists));
}
