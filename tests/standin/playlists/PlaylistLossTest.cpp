// Steps that the loss of the plug-in, or of what they need, has cut short.
#include <gmock/gmock.h>

#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using support::Eventually;
using support::FakePlaylists;
using support::LivePage;
using testing::ElementsAre;

class PlaylistLosses : public support::PlaylistHouse {
 protected:
  int addAll() { return act("add", {{"category", "Album"}, {"group", "Blue"}, {"to", 1}}); }
};

}  // namespace

TEST_F(PlaylistLosses, AnAdditionThatWasMadeThoughNobodyHeardIsUndone) {
  lists->dieBehind(1);
  EXPECT_EQ(addAll(), 502);
  EXPECT_EQ(last.at("error"), "The plug-in has gone");
  lists->comeBack();
  EXPECT_EQ(show().at("undo"), "adding 5 titles");
  EXPECT_EQ(turn("undo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(PlaylistLosses, AnAdditionThatHasNotBegunIsNoStep) {
  lists->dieAfter(0);
  EXPECT_EQ(addAll(), 502);
  lists->comeBack();
  EXPECT_EQ(show().at("undo"), nullptr);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
}

TEST_F(PlaylistLosses, AnUndoingThatNobodyHeardOfIsDoneAgainAndNothingIsDoubled) {
  EXPECT_EQ(addAll(), 200);
  lists->dieBehind(1);
  EXPECT_EQ(turn("undo"), 502);
  EXPECT_EQ(last.at("error"), "The plug-in has gone");
  lists->comeBack();
  EXPECT_EQ(show().at("undo"), nullptr);
  EXPECT_THAT(mine(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(turn("redo"), 200) << last;
  EXPECT_THAT(mine(), ElementsAre("A", "A", "B", "C", "D", "E", "B", "C", "D"));
}

TEST_F(PlaylistLosses, ARedoingThatHasNotBegunIsStillToCome) {
  EXPECT_EQ(addAll(), 200);
  EXPECT_EQ(turn("undo"), 200);
  lists->dieAfter(0);
  EXPECT_EQ(turn("redo"), 502);
  lists->comeBack();
  EXPECT_EQ(show().at("redo"), "adding 5 titles");
  EXPECT_EQ(turn("redo"), 200) << last;
  EXPECT_EQ(mine().size(), 9U);
}

TEST_F(PlaylistLosses, AStepThatCannotBeCheckedKeepsNobodyFromOtherLists) {
  lists->put("Yours", {at("E")});
  lists->dieAfter(0);
  EXPECT_EQ(addAll(), 502);
  lists->comeBack();
  lists->spoil("Mine", true);
  EXPECT_EQ(show("Yours").at("names"), nlohmann::json({"E"}));
  EXPECT_EQ(act("rename", {{"name", "Yours"}, {"to", "Ours"}}), 200) << last;
}

TEST_F(PlaylistLosses, TitlesThatCanNotBeFoundNowComeBackWithTheOthers) {
  std::vector<FakePlaylists::Title> titles;
  for (int i = 0; i < 2500; ++i) titles.push_back({std::to_string(i), "Long/" + std::to_string(i)});
  lists->put("Long", titles);
  EXPECT_EQ(turn("delete", "Long"), 200);
  LivePage page(*server);
  EXPECT_EQ(turn("undo", ""), 200);  // the library has none of them
  EXPECT_TRUE(page.hears("deleting “Long” is undone"));
  EXPECT_EQ(lists->names("Long").size(), 2500U);
  EXPECT_EQ(lists->sources("Long")[2499], "Long/2499");
}

TEST_F(PlaylistLosses, AReturnThatHasLeftGapsIsTakenUp) {
  std::vector<FakePlaylists::Title> titles;
  for (int i = 0; i < 2500; ++i) titles.push_back({std::to_string(i), "Long/" + std::to_string(i)});
  lists->put("Long", titles);
  EXPECT_EQ(turn("delete", "Long"), 200);
  LivePage page(*server);
  lists->dieAfter(2);  // the list is made, and the first titles are in it
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_TRUE(page.hears(R"("failed")"));
  lists->comeBack();
  std::vector<FakePlaylists::Title> some(titles.begin() + 3, titles.begin() + 900);
  some.erase(some.begin() + 100, some.begin() + 120);
  lists->put("Long", some);
  pullThePlug();
  EXPECT_EQ(turn("undo", ""), 200) << last;
  EXPECT_TRUE(Eventually([&] { return lists->names("Long").size() == 2500; }));
  for (const std::size_t i : {0, 103, 122, 899, 2499}) EXPECT_EQ(lists->sources("Long")[i], titles[i].source);
}
