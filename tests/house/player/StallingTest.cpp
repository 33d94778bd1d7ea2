// Titles that are opened or wait for more of themselves: they can be paused and stopped like others.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "demo/Sound.hpp"
#include "house/player/Listener.hpp"
#include "house/player/Stations.hpp"

namespace {

using nlohmann::json;
using support::Listener;
using support::StallingStation;

class StallingStations : public support::PlayerBar {
 protected:
  /// The beginning of an answer that never comes to its end.
  std::string someSound() {
    const std::string path = (house.folder() / "sound.wav").string();
    engine::demo::WriteSound(path, engine::demo::Tone(440, 8, 48000), engine::demo::FileFormat::kWav);
    std::ifstream file(path, std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(file)), {});
    return "HTTP/1.1 200 OK\r\nContent-Type: audio/wav\r\nContent-Length: " + std::to_string(all.size()) +
           "\r\n\r\n" + all.substr(0, all.size() / 2);
  }
  void play(const StallingStation& station) {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    const base::ObjectRef script = connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass");
    const base::ObjectRef player = base::ToObject(script->get("WMPObject"));
    player->put("URL", base::Value(station.address()));
    base::ToObject(player->get("controls"))->call("play");
  }
};

TEST_F(StallingStations, PauseIsRememberedOfWhatIsStillBeingOpened) {
  const StallingStation silent;
  Listener listener(house, 1280);
  play(silent);
  ASSERT_TRUE(playerHas("play", "loading")) << player();
  ASSERT_TRUE(listener.shows("#player-bar .main[aria-label=Pause]:not(:disabled)"));
  listener.browser.click("//aside//button[@aria-label='Pause']");
  EXPECT_TRUE(playerHas("play", "paused")) << player();
  EXPECT_TRUE(playerHas("state", 9)) << player();
  ASSERT_EQ(house.post("/api/player/pause", json::object()), 200);
  EXPECT_EQ(player().at("state"), 9) << "a second time changes nothing";
  ASSERT_TRUE(listener.shows("#player-bar .main[aria-label=Play]:not(:disabled)"));
  listener.browser.click("//aside//button[@aria-label='Play']");
  EXPECT_TRUE(playerHas("play", "loading")) << player();
}

TEST_F(StallingStations, PauseHoldsWhatWaitsForMoreOfItself) {
  const StallingStation station(someSound());
  Listener listener(house, 1280);
  play(station);
  ASSERT_TRUE(support::Eventually([&] {
    const auto now = player();
    return now.at("state") == 6 && now.at("position").get<double>() > 0;
  })) << player();
  ASSERT_TRUE(listener.shows("#player-bar .main[aria-label=Pause]:not(:disabled)"));
  listener.browser.click("//aside//button[@aria-label='Pause']");
  EXPECT_TRUE(playerHas("play", "paused")) << player();
  EXPECT_GT(player().at("position").get<double>(), 0);
}

TEST_F(StallingStations, TheLockScreensStopStopsThem) {
  Listener listener(house, 1280);
  listener.browser.beforeEachPage(
      "window.keys = {}; MediaSession.prototype.setActionHandler = function (word, act) { keys[word] = act; "
      "}");
  listener.open("#playing");
  const StallingStation silent;
  play(silent);
  ASSERT_TRUE(playerHas("play", "loading")) << player();
  listener.browser.run("keys.stop({})");
  EXPECT_TRUE(playerHas("play", "stopped")) << player();
  playFrom(listener, "One");
  listener.browser.run("keys.stop({})");
  EXPECT_TRUE(playerHas("play", "stopped")) << "and what plays: it begins anew";
}

}  // namespace
