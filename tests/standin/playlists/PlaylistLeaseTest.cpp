// For how long a playlist is looked at, in a time that passes as the test likes.
#include <gtest/gtest.h>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/playlists/Playlists.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

class AShownPlaylist : public testing::Test {
 protected:
  AShownPlaylist() {
    lists->put("Mine", {{"A", "Blue/A"}, {"B", "Blue/B"}});
    keeper.start();
    while (keeper.state() != standin::PluginPhase::kReady) pass(std::chrono::milliseconds(100));
    bool shown = false;
    playlists.show("Mine", false, [&](const standin::Playlists::Outcome& outcome) {
      EXPECT_EQ(outcome.error, "");
      shown = true;
    });
    EXPECT_TRUE(shown);
  }
  /// In steps of a second, or one that is shorter.
  void pass(base::Milliseconds all) {
    for (base::Milliseconds step(0); all.count() > 0; all -= step) {
      step = std::min<base::Milliseconds>(all, std::chrono::seconds(1));
      time += step;
      loop.pump();
    }
  }
  support::FakePlugin::Manner manner() const {
    support::FakePlugin::Manner manner;
    manner.library.playlists = lists;
    return manner;
  }
  static base::ObjectRef callback() {
    const auto host = std::make_shared<support::TableOf>("host", std::vector<base::Member>{});
    return std::make_shared<support::TableOf>(
        "callback",
        std::vector<base::Member>{
            {"GetVXIface", base::MemberKind::kOperation, {}, base::Type::kObject, [host](base::Args&) {
               return base::Value(base::ObjectRef(host));
             }}});
  }
  /// How often the player is asked for something in that time.
  int askedWithin(base::Milliseconds all) {
    const int before = lists->asked();
    pass(all);
    return lists->asked() - before;
  }

  std::chrono::steady_clock::time_point time;
  bus::PollLoop loop{[this] { return time; }};
  support::BusDaemon daemon;
  support::TempFolder folder;
  std::shared_ptr<support::FakePlaylists> lists = std::make_shared<support::FakePlaylists>();
  support::FakePlugin plugin{daemon.address(), manner()};
  bus::Connection connection{loop, daemon.address()};
  standin::House house{folder.path()};
  standin::PluginKeeper keeper{loop, connection, house, callback()};
  standin::PlayerLibrary library{loop, connection, keeper};
  standin::Playlists playlists{loop, connection, keeper, house, library};
};

}  // namespace

TEST_F(AShownPlaylist, IsLookedAtWhileAPageSaysSoAndNobodyIsAskedAfterThat) {
  EXPECT_EQ(askedWithin(std::chrono::hours(1)), 0);
  for (int i = 0; i < 5; ++i) {
    playlists.watch("page", "Mine");
    EXPECT_GT(askedWithin(std::chrono::seconds(10)), 0);
  }
  pass(std::chrono::seconds(10));
  EXPECT_EQ(askedWithin(std::chrono::hours(1)), 0);
}
