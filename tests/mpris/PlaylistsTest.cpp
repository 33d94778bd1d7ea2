#include <gmock/gmock.h>

#include <limits>

#include "Desk.hpp"

using mpris::ActivePlaylist;
using mpris::ListedPlaylist;
using mpris::Path;
using mpris_test::Desk;
using mpris_test::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr std::uint32_t kAll = std::numeric_limits<std::uint32_t>::max();

class Lists : public Desk {
 protected:
  Lists() { player.playlists = {"evening", "Blue", "blues", "Äther"}; }

  std::vector<ListedPlaylist> page(std::uint32_t from, std::uint32_t count, bool reverse = false,
                                   const char* order = "Alphabetical") {
    const auto answer = call("GetPlaylists", {from, count, order, reverse}, kPlaylists);
    return std::get<std::vector<ListedPlaylist>>(answer.at(0).held);
  }
  std::vector<std::string> names(std::uint32_t from, std::uint32_t count, bool reverse = false) {
    std::vector<std::string> found;
    for (const auto& each : page(from, count, reverse)) found.push_back(each.name);
    return found;
  }
};

}  // namespace

TEST_F(Lists, AreSortedByTheirNamesWithoutRegardToCase) {
  EXPECT_THAT(names(0, kAll), ElementsAre("Blue", "blues", "evening", "Äther"));
  EXPECT_THAT(names(0, 2, true), ElementsAre("Äther", "evening"));
  EXPECT_THAT(names(1, 2), ElementsAre("blues", "evening"));
  EXPECT_THAT(names(3, 7), ElementsAre("Äther"));
  EXPECT_THAT(names(4, 1), IsEmpty());
  EXPECT_THAT(names(kAll, kAll), IsEmpty());
  EXPECT_THAT(names(0, 0), IsEmpty());
}

TEST_F(Lists, OtherOrdersAreRefused) {
  for (const char* order : {"CreationDate", "alphabetical", ""})
    EXPECT_EQ(refusal([&] { page(0, 1, false, order); }), "org.freedesktop.DBus.Error.NotSupported") << order;
}

TEST_F(Lists, AreReadOnceUntilTheyChange) {
  page(0, kAll);
  page(0, kAll);
  EXPECT_EQ(player.namesRead, 4);
  player.playlists.push_back("New");
  face.playlistsChanged();
  EXPECT_EQ(page(0, kAll).size(), 5U);
}

TEST_F(Lists, ArePlayedByTheIdThatTheyWereToldBy) {
  for (const auto& each : page(0, kAll)) call("ActivatePlaylist", {each.id}, kPlaylists);
  EXPECT_THAT(player.journal.lines(), ElementsAre("Play PlayList Blue", "Play PlayList blues",
                                                  "Play PlayList evening", "Play PlayList Äther"));
}

TEST_F(Lists, ThatHaveGoneAreRefusedAndSoIsWhatWasNeverOne) {
  const Path gone = page(0, 1).front().id;
  player.playlists.clear();
  for (const std::string& id :
       {gone.text, std::string("/"), std::string("/org/vantorix/playlist/_"),
        std::string("/org/vantorix/playlist/_zz"), std::string("/org/vantorix/track/1")})
    EXPECT_EQ(refusal([&] { call("ActivatePlaylist", {Path{id}}, kPlaylists); }),
              "org.freedesktop.DBus.Error.InvalidArgs")
        << id;
  EXPECT_THAT(player.journal.lines(), IsEmpty());
}

TEST_F(Lists, ANameThatIsNoTextOfTheBusIsShownMendedAndPlayedAsItIs) {
  player.playlists = {"a\xFFz"};
  const auto all = page(0, kAll);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].name, "a\xEF\xBF\xBDz");
  call("ActivatePlaylist", {all[0].id}, kPlaylists);
  EXPECT_THAT(player.journal.lines(), ElementsAre("Play PlayList a\xFFz"));
}

TEST_F(Lists, TheOneThatPlaysIsActive) {
  EXPECT_EQ(get("ActivePlaylist", kPlaylists), Value(ActivePlaylist()));
  player.playedStored = "Blue";
  EXPECT_EQ(get("ActivePlaylist", kPlaylists), Value(ActivePlaylist{true, page(0, 1).front()}));
}

TEST_F(Lists, HowManyThereAreIsTold) {
  face.begin();
  player.playlists.pop_back();
  changes();
  EXPECT_THAT(told(), IsEmpty()) << "the player says when there are others";
  face.playlistsChanged();
  settle();
  EXPECT_THAT(told(), ElementsAre("PlaylistCount"));
  EXPECT_EQ(get("PlaylistCount", kPlaylists), Value(std::uint32_t{3}));
}
