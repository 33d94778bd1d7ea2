// Playlists changed through the server's program, with a plug-in whose playlists others change as well.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlaylists;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class PlaylistPages : public support::PlaylistHouse {};

}  // namespace

TEST_F(PlaylistPages, AreShownAsThePlayerHasThem) {
  const json page = show();
  EXPECT_EQ(page.at("names"), json({"A", "B", "C", "D"}));
  EXPECT_EQ(page.at("total"), 4);
  EXPECT_EQ(page.at("undo"), nullptr);
  const json found = web->json("/api/playlist?group=mine&q=c&limit=9");
  EXPECT_EQ(found.at("name"), "Mine");
  EXPECT_EQ(found.at("places"), json({2}));
  EXPECT_EQ(web->get("/api/playlist?group=Nobody&limit=9")->status, 404);
}

TEST_F(PlaylistPages, TitlesAreMovedAddedAndRemovedAndAllOfItIsUndone) {
  EXPECT_EQ(move(0, 2, "A", "C", "D"), 200);
  EXPECT_THAT(mine(), ElementsAre("B", "C", "A", "D"));
  EXPECT_EQ(remove(1, "C"), 200);
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Blue"}, {"titles", {row(4, at("E"))}}}), 200);
  EXPECT_THAT(mine(), ElementsAre("B", "A", "D", "E"));
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Blue"}, {"to", 1}}), 200);
  EXPECT_EQ(last.at("said"), "adding 5 titles");
  EXPECT_THAT(mine(), ElementsAre("B", "A", "B", "C", "D", "E", "A", "D", "E"));
  EXPECT_EQ(show().at("names").size(), 9U);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(turn("undo"), 404);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(turn("redo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("B", "A", "B", "C", "D", "E", "A", "D", "E"));
  EXPECT_EQ(show().at("redo"), nullptr);
}

TEST_F(PlaylistPages, AreUndoneAfterAKill) {
  EXPECT_EQ(move(3, 0, "D", nullptr, "A"), 200);
  EXPECT_EQ(remove(1, "A"), 200);
  EXPECT_EQ(turn("undo"), 200);
  pullThePlug();
  EXPECT_EQ(show().at("undo"), "moving “D”");
  EXPECT_EQ(show().at("redo"), "removing “A”");
  EXPECT_EQ(turn("redo"), 200);
  EXPECT_THAT(mine(), ElementsAre("D", "B", "C"));
  pullThePlug();
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(PlaylistPages, TheVeryTitleOfTwoAlikeIsTaken) {
  lists->put("Mine", {at("A"), at("B"), at("A"), at("C"), at("A")});
  EXPECT_EQ(remove(2, "A"), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "A"));
  EXPECT_EQ(move(3, 2, "A", "B", "C"), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "A", "C"));
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "A", "C", "A"));
}

TEST_F(PlaylistPages, OfTwoOfOneNameTheOneThatWasSeenIsTakenThoughTheOtherStandsInItsPlace) {
  const FakePlaylists::Title other{"B", "Green/B"};
  lists->put("Mine", {at("A"), other, at("C"), at("B")});
  show();
  lists->put("Mine", {at("A"), at("B"), at("C"), other});  // somebody has changed them round
  EXPECT_EQ(act("remove", row(1, other)), 200) << last;
  EXPECT_THAT(lists->sources("Mine"), ElementsAre("Blue/A", "Blue/B", "Blue/C"));
  lists->put("Mine", {at("A"), at("B"), other, at("C")});
  EXPECT_EQ(act("move", {{"from", 1},
                         {"to", 0},
                         {"title", "B"},
                         {"mark", mark(other)},
                         {"before", nullptr},
                         {"after", mark(at("A"))}}),
            200)
      << last;
  EXPECT_THAT(lists->sources("Mine"), ElementsAre("Green/B", "Blue/A", "Blue/B", "Blue/C"));
  lists->put("Mine", {at("A"), at("B")});
  EXPECT_EQ(act("remove", row(1, other)), 409);
  EXPECT_EQ(act("remove", {{"at", 1}, {"title", "B"}}), 400);
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Blue"}, {"titles", {{{"at", 4}, {"title", "E"}}}}}),
            400);
}

TEST_F(PlaylistPages, AMoveFindsItsWayInAListThatHasChanged) {
  show();
  lists->put("Mine", {at("E"), at("A"), at("B"), at("C"), at("D")});
  EXPECT_EQ(move(0, 2, "A", "C", "D"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("E", "B", "C", "A", "D"));
  lists->put("Mine", {at("C"), at("D")});
  EXPECT_EQ(move(0, 2, "A", "C", "D"), 409);
  EXPECT_THAT(last.at("error").get<std::string>(), HasSubstr("“A” is no longer in the list"));
  lists->put("Mine", {at("B"), at("A"), at("A")});
  EXPECT_EQ(remove(0, "A"), 409);
  EXPECT_THAT(mine(), ElementsAre("B", "A", "A"));
}

TEST_F(PlaylistPages, AreShownAsTheyAreAfterAStepThoughOthersHaveChangedThemBefore) {
  show();
  lists->put("Mine", {at("B"), at("A"), at("C"), at("D")});
  EXPECT_EQ(move(2, 3, "C", "D", nullptr), 200) << last;
  EXPECT_EQ(show().at("names"), json({"B", "A", "D", "C"}));
  lists->put("Mine", {at("A"), at("B"), at("D"), at("C")});
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_EQ(show().at("names"), json({"A", "B", "C", "D"}));
}

TEST_F(PlaylistPages, ATitleThatComesBackHasTheNameThatItHasNow) {
  show();
  EXPECT_EQ(remove(1, "B"), 200);
  std::find_if(lists->library.begin(), lists->library.end(), [](const auto& title) {
    return title.name == "B";
  })->name = "Bee";
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_EQ(show().at("names"), json({"A", "Bee", "C", "D"}));
}

TEST_F(PlaylistPages, NothingOfOthersIsUndone) {
  EXPECT_EQ(move(0, 2, "A", "C", "D"), 200);
  lists->put("Mine", {at("B"), at("C"), at("E"), at("D"), at("A")});
  EXPECT_EQ(turn("undo"), 409);
  EXPECT_EQ(last.at("error"),
            "Undoing moving “A” isn’t possible: “A” is no longer where it was moved to. Nothing was changed");
  EXPECT_EQ(last.at("stuck"), true);
  EXPECT_EQ(last.at("undo"), "moving “A”");
  EXPECT_THAT(mine(), ElementsAre("B", "C", "E", "D", "A"));
  // What stands in the way goes when somebody says so.
  EXPECT_EQ(turn("skip-undo"), 200);
  EXPECT_EQ(show().at("undo"), nullptr);
}

TEST_F(PlaylistPages, ARemovedTitleComesBackBesideOneOfItsNeighbours) {
  EXPECT_EQ(remove(2, "C"), 200);
  lists->put("Mine", {at("A"), at("B"), at("E")});
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "E"));
  EXPECT_EQ(turn("redo"), 200);
  lists->put("Mine", {at("E"), at("E"), at("E")});
  EXPECT_EQ(turn("undo"), 409);
  EXPECT_THAT(mine(), ElementsAre("E", "E", "E"));
}

TEST_F(PlaylistPages, ATitleWhoseFileHasGoneComesBackAsItWas) {
  EXPECT_EQ(remove(3, "D"), 200);
  lists->library.erase(lists->library.begin() + 3);
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(lists->sources("Mine").back(), "Blue/D");
}

TEST_F(PlaylistPages, ListsAreMadeRenamedAndDeletedAndAllOfItIsUndone) {
  EXPECT_EQ(act("create", {{"name", "  New\none "}}), 200);
  EXPECT_EQ(last.at("name"), "New one");
  EXPECT_EQ(act("create", {{"name", "new ONE"}}), 409);
  EXPECT_EQ(act("create", {{"name", "   "}}), 400);
  EXPECT_EQ(act("rename", {{"to", "New one"}}), 409);
  EXPECT_EQ(act("rename", {{"to", "Yours"}}), 200);
  EXPECT_EQ(turn("delete", "Yours"), 200);
  EXPECT_THAT(lists->lists(), ElementsAre("New one"));
  pullThePlug();
  EXPECT_EQ(web->json("/api/playlists").at("undo"), "deleting “Yours”");
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_THAT(lists->sources("Yours"), ElementsAre("Blue/A", "Blue/B", "Blue/C", "Blue/D"));
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_THAT(mine(), SizeIs(4));
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_THAT(lists->lists(), ElementsAre("Mine"));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(turn("redo", ""), 200) << last;
  EXPECT_THAT(lists->lists(), ElementsAre("New one"));
}

TEST_F(PlaylistPages, ADeletedListDoesNotComeBackOverAnotherOfItsName) {
  EXPECT_EQ(turn("delete"), 200);
  lists->put("Mine", {at("E")});
  EXPECT_EQ(turn("undo", ""), 409);
  EXPECT_THAT(last.at("error").get<std::string>(), HasSubstr("There is another playlist named “Mine”"));
  EXPECT_THAT(mine(), ElementsAre("E"));
  lists->drop("Mine");
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
  lists->put("Mine", {at("A"), at("B"), at("C"), at("E")});
  EXPECT_EQ(turn("redo", ""), 409);  // it holds somebody's title now
  EXPECT_THAT(mine(), SizeIs(4));
}

TEST_F(PlaylistPages, AMadeListThatHasBeenFilledIsNotTakenAway) {
  EXPECT_EQ(act("create", {{"name", "New"}}), 200);
  lists->put("New", {at("E")});
  EXPECT_EQ(turn("undo", "New"), 409);
  EXPECT_TRUE(lists->has("New"));
}

TEST_F(PlaylistPages, ALongListComesBackStepByStepAndAlsoAfterAKill) {
  std::vector<FakePlaylists::Title> titles;
  for (int i = 0; i < 4500; ++i) titles.push_back({std::to_string(i), "Long/" + std::to_string(i)});
  lists->put("Long", titles);
  EXPECT_EQ(turn("delete", "Long"), 200);
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_EQ(last.at("restoring"), json({1000, 4500}));
  EXPECT_EQ(remove(0, "A"), 200);  // others go on meanwhile
  pullThePlug();
  if (lists->names("Long").size() < 4500) {
    EXPECT_EQ(turn("undo", ""), 200) << last;
  }
  EXPECT_TRUE(Eventually([&] { return lists->names("Long").size() == 4500; }));
  EXPECT_EQ(lists->sources("Long")[4499], "Long/4499");
}

TEST_F(PlaylistPages, AllOfAGreatGroupIsAddedAndTakenOutWithOneChangeOfTheList) {
  for (int i = 0; i < 10'000; ++i)
    lists->groups["Genre/Folk"].push_back({std::to_string(i), "Folk/" + std::to_string(i)});
  const int before = lists->changes();
  EXPECT_EQ(act("add", {{"category", "Genre"}, {"group", "Folk"}, {"to", 1}}), 200) << last;
  EXPECT_EQ(lists->changes(), before + 1);
  EXPECT_EQ(show().at("total"), 10'004);
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_EQ(turn("redo"), 200) << last;
  EXPECT_EQ(lists->changes(), before + 3);
  EXPECT_EQ(mine().size(), 10'004U);
  EXPECT_EQ(lists->sources("Mine")[10'000], "Folk/9999");
  lists->groups["Genre/Folk"].push_back({"one more", "Folk/more"});
  EXPECT_EQ(act("add", {{"category", "Genre"}, {"group", "Folk"}}), 400);
  EXPECT_EQ(last.at("error"), "At most 10000 titles can be added at once");
}

TEST_F(PlaylistPages, WhatThePlayerRefusesIsToldAndNotInTheHistory) {
  lists->refuse(true);
  EXPECT_EQ(move(0, 1, "A", "B", "C"), 502);
  EXPECT_EQ(last.at("error"), "The disc is read-only");
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Blue"}}), 502);
  EXPECT_EQ(turn("delete"), 502);
  lists->refuse(false);
  EXPECT_EQ(show().at("undo"), nullptr);
  EXPECT_EQ(web->json("/api/playlists").at("undo"), nullptr);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(PlaylistPages, GuestsLookAndChangeNothing) {
  ASSERT_EQ(web->post("/api/password", {{"password", "correct horse battery"}, {"old", ""}}), 200)
      << web->last;
  ASSERT_EQ(web->post("/api/guests", {{"guests", "open"}}), 200) << web->last;
  web->cookie.clear();
  ASSERT_EQ(web->post("/api/login", {{"name", "guest"}, {"password", ""}}), 200) << web->last;
  EXPECT_EQ(show().at("edit"), false);
  EXPECT_EQ(show().at("names").size(), 4U);
  EXPECT_EQ(move(0, 1, "A", "B", "C"), 403);
  EXPECT_EQ(remove(0, "A"), 403);
  EXPECT_EQ(turn("undo"), 403);
  EXPECT_EQ(turn("delete"), 403);
  EXPECT_EQ(act("create", {{"name", "New"}}), 403);
  EXPECT_EQ(act("rename", {{"to", "New"}}), 403);
  EXPECT_THAT(lists->lists(), ElementsAre("Mine"));
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(PlaylistPages, PostsThatAreNoneAreRefused) {
  EXPECT_EQ(act("shuffle", {}), 404);
  EXPECT_EQ(act("move", {{"from", 0}}), 400);
  EXPECT_EQ(act("move", {{"from", "x"},
                         {"to", 1},
                         {"title", "A"},
                         {"mark", mark(at("A"))},
                         {"before", nullptr},
                         {"after", nullptr}}),
            400);
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Nowhere"}}), 404);
  EXPECT_EQ(act("add", {{"category", "Album"}, {"group", "Blue"}, {"titles", json::array()}}), 400);
  EXPECT_EQ(act("create", {{"name", std::string(1300, 'x')}}), 400);
  EXPECT_THAT(mine(), SizeIs(4));
}

TEST_F(PlaylistPages, AListOfTheSameKeyIsNotTakenForAnother) {
  lists->put("Mine!", {at("E")});
  EXPECT_EQ(show("Mine!", true).at("names"), json({"E"}));
  EXPECT_EQ(show("Mine", true).at("names").size(), 4U);
  // The plug-in's own list of a group, which it knows by its key, is not asked for.
  EXPECT_THAT(plugin.calls(), testing::Not(testing::Contains(testing::StartsWith("GetByCategory"))));
}
