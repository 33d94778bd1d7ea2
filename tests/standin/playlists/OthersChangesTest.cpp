// What others change in a playlist that a page shows can be undone there.
#include <gmock/gmock.h>

#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlaylists;
using support::LivePage;
using testing::ElementsAre;

class OthersChanges : public support::PlaylistHouse {
 protected:
  json undo(const std::string& name = "Mine") { return show(name, true).at("undo"); }
  /// What would be undone in the collection.
  json undoOfAll() { return web->json("/api/playlists").at("undo"); }
};

}  // namespace

TEST_F(OthersChanges, AreStepsLikeItsOwn) {
  show();
  lists->put("Mine", {at("A"), at("B"), at("C"), at("D"), at("E")});
  EXPECT_EQ(undo(), "adding “E”");
  lists->put("Mine", {at("A"), at("C"), at("D"), at("E")});
  EXPECT_EQ(undo(), "removing “B”");
  lists->put("Mine", {at("E"), at("A"), at("C"), at("D")});
  EXPECT_EQ(undo(), "moving “E”");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(undo(), nullptr);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(turn("redo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("E", "A", "C", "D"));
}

TEST_F(OthersChanges, AreSeenWhileAPageShowsTheList) {
  LivePage page(*server);
  show();
  watch("Mine", "p");
  lists->put("Mine", {at("A"), at("B"), at("D")});
  EXPECT_TRUE(page.hears(R"("name":"Mine")"));
  EXPECT_EQ(show().at("undo"), "removing “C”");
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(OthersChanges, ComeBeforeTheStepThatFollowsThem) {
  show();
  lists->put("Mine", {at("A"), at("B"), at("C"), at("D"), at("E")});
  EXPECT_EQ(remove(0, "A"), 200) << last;
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_EQ(last.at("said"), "removing “A” is undone");
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_EQ(last.at("said"), "adding “E” is undone");
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(OthersChanges, AreStillThereAfterAKill) {
  show();
  lists->put("Mine", {at("B"), at("C"), at("D")});
  EXPECT_EQ(undo(), "removing “A”");
  pullThePlug();
  EXPECT_EQ(show().at("undo"), "removing “A”");
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(OthersChanges, AreNotTakenTwiceForTheServersOwn) {
  show();
  EXPECT_EQ(remove(0, "A"), 200);
  EXPECT_EQ(move(0, 2, "B", "D", nullptr), 200) << last;
  undo();
  EXPECT_EQ(turn("undo"), 200);
  undo();
  EXPECT_EQ(turn("undo"), 200);
  EXPECT_EQ(undo(), nullptr) << "two steps, and none besides";
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(OthersChanges, AListThatTheyHaveDeletedComesBack) {
  show();
  lists->drop("Mine");
  EXPECT_EQ(web->get("/api/playlist?group=Mine&limit=9&fresh=1")->status, 404);
  EXPECT_EQ(undoOfAll(), "deleting “Mine”");
  EXPECT_EQ(turn("undo", ""), 200) << last;
  EXPECT_TRUE(Eventually([&] { return mine() == FakePlaylists::Names{"A", "B", "C", "D"}; }));
}

TEST_F(OthersChanges, AListThatTheyHaveRenamedKeepsItsSteps) {
  show();
  EXPECT_EQ(remove(0, "A"), 200);
  lists->rename("Mine", "Ours");
  EXPECT_EQ(web->get("/api/playlist?group=Mine&limit=9&fresh=1")->status, 404);
  EXPECT_EQ(undo("Ours"), "renaming “Mine” to “Ours”");
  EXPECT_EQ(turn("undo", "Ours"), 200) << last;
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(OthersChanges, AnotherTitleOfTheSameNameIsOne) {
  show();
  const json version = show().at("version");
  lists->put("Mine", {at("A"), {"B", "Green/B"}, at("C"), at("D")});
  EXPECT_NE(show("Mine", true).at("version"), version);
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(lists->sources("Mine"), ElementsAre("Blue/A", "Blue/B", "Blue/C", "Blue/D"));
}

TEST_F(OthersChanges, OfALongListAreShownAndNotTakenDown) {
  std::vector<FakePlaylists::Title> titles;
  for (int i = 0; i <= 10'000; ++i) titles.push_back({std::to_string(i), "Long/" + std::to_string(i)});
  lists->put("Long", titles);
  show("Long");
  titles.pop_back();
  lists->put("Long", titles);
  EXPECT_EQ(show("Long", true).at("total"), 10'000);
  EXPECT_EQ(show("Long").at("undo"), nullptr);
  titles.pop_back();
  lists->put("Long", titles);
  EXPECT_EQ(undo("Long"), "removing “9999”") << "from here on it is short enough";
}
