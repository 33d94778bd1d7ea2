// What is played, changed through the server's program, step by step and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlaylists;
using testing::ElementsAre;
using testing::IsEmpty;

class QueuePages : public support::PlaylistHouse {
 protected:
  QueuePages() { lists->choose({at("A"), at("B"), at("C"), at("D")}, 1); }
  json queue() { return show("\x1Fqueue"); }
  std::string name() { return queue().at("name"); }
  int queueing(const std::string& action, const json& body) {
    const int status = web->post("/api/queue/" + action, body);
    last = json::parse(web->last);
    return status;
  }
  json album(std::initializer_list<json> titles) {
    return {{"category", "Album"}, {"group", "Blue"}, {"titles", json(titles)}};
  }
  FakePlaylists::Names queued() { return lists->queued(); }
};

}  // namespace

TEST_F(QueuePages, IsShownAsThePlayerHoldsIt) {
  const json page = queue();
  EXPECT_EQ(page.at("names"), json({"A", "B", "C", "D"}));
  EXPECT_EQ(page.at("titles").at(0).at("mark"), mark(at("A")));
  EXPECT_EQ(page.at("undo"), nullptr);
  EXPECT_THAT(lists->lists(), ElementsAre("Mine")) << "it is none of the playlists";
}

TEST_F(QueuePages, EveryChangeIsAStepWithANameThatIsUndoneAndRedone) {
  const std::string mine = name();
  EXPECT_EQ(act("remove", {{"name", mine}, {"at", 0}, {"title", "A"}, {"mark", mark(at("A"))}}), 200) << last;
  EXPECT_EQ(last.at("undo"), "removing “A”");
  EXPECT_EQ(act("move", {{"name", mine},
                         {"from", 2},
                         {"to", 0},
                         {"title", "D"},
                         {"mark", mark(at("D"))},
                         {"before", nullptr},
                         {"after", mark(at("B"))}}),
            200);
  EXPECT_THAT(queued(), ElementsAre("D", "B", "C"));
  json next = album({row(4, at("E"))});
  next["next"] = true;
  EXPECT_EQ(queueing("add", next), 200) << last;
  EXPECT_THAT(queued(), ElementsAre("D", "B", "E", "C")) << "behind the current one";
  EXPECT_EQ(queueing("add", album({row(0, at("A"))})), 200);
  EXPECT_THAT(queued(), ElementsAre("D", "B", "E", "C", "A")) << "at the end";
  EXPECT_EQ(queueing("clear", json::object()), 200);
  EXPECT_EQ(last.at("undo"), "clearing the list of 5 titles");
  EXPECT_THAT(queued(), IsEmpty());
  for (int i = 0; i < 5; ++i) EXPECT_EQ(turn("undo", mine), 200) << last;
  EXPECT_THAT(queued(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(queue().at("redo"), "removing “A”");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(turn("redo", mine), 200) << last;
  EXPECT_THAT(queued(), IsEmpty());
}

TEST_F(QueuePages, AnAlbumThatNobodyHasIsLookedForInOneCall) {
  const auto asked = [&] {
    const auto calls = plugin.calls();
    return std::count(calls.begin(), calls.end(), "GetCategoryList Album");
  };
  const auto before = asked();
  EXPECT_EQ(queueing("add", {{"category", "Album"}, {"group", "no such album"}, {"titles", json::array()}}),
            404)
      << last;
  EXPECT_EQ(asked(), before + 1);
}

TEST_F(QueuePages, StepsSurviveTheServerAsLongAsThePlayerHoldsThatQueue) {
  const std::string mine = name();
  EXPECT_EQ(queueing("add", album({row(4, at("E"))})), 200);
  pullThePlug();
  EXPECT_EQ(queue().at("undo"), "adding “E”");
  EXPECT_EQ(turn("undo", mine), 200);
  EXPECT_THAT(queued(), ElementsAre("A", "B", "C", "D"));
  lists->choose({at("B")});
  EXPECT_EQ(turn("redo", mine), 404) << "there is another queue now";
  EXPECT_EQ(queue().at("redo"), nullptr);
  EXPECT_NE(name(), mine);
  EXPECT_EQ(
      web->get("/api/playlist?limit=9&fresh=1&group=" + httplib::detail::encode_query_param(mine))->status,
      404);
}

TEST_F(QueuePages, IsSavedAsAPlaylistInOneStep) {
  EXPECT_EQ(queueing("save", {{"to", " Evening "}}), 200) << last;
  EXPECT_THAT(lists->names("Evening"), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(queueing("save", {{"to", "evening"}}), 409);
  EXPECT_EQ(queueing("save", {{"to", "  "}}), 400);
  EXPECT_EQ(web->json("/api/playlists").at("undo"), "saving 4 titles as “Evening”");
  EXPECT_EQ(turn("undo", ""), 200);
  EXPECT_FALSE(lists->has("Evening"));
  EXPECT_EQ(turn("redo", ""), 200);
  EXPECT_THAT(lists->names("Evening"), ElementsAre("A", "B", "C", "D"));
  lists->put("Evening", {at("A")});
  EXPECT_EQ(turn("undo", ""), 409) << "somebody has changed it since";
}

TEST_F(QueuePages, WhatIsNotThereIsNotQueued) {
  EXPECT_EQ(queueing("add", {{"category", "Album"}, {"group", "Nothing"}}), 404) << last;
  EXPECT_EQ(queueing("add", album({row(9, {"Nobody", "nowhere"})})), 409);
  EXPECT_EQ(queueing("add", {{"category", "Album"}}), 400);
  EXPECT_EQ(queueing("clear", json::object()), 200);
  EXPECT_EQ(queueing("clear", json::object()), 400) << "there is nothing left";
  EXPECT_EQ(act("rename", {{"name", name()}, {"to", "Other"}}), 400) << last;
  EXPECT_EQ(act("delete", {{"name", name()}}), 400) << last;
}
