#include <gmock/gmock.h>
#include <httplib.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>

#include "engine/common/Fixtures.hpp"
#include "engine/common/SmallServer.hpp"

namespace engine::testing {
namespace {

/// A station that says what it plays within its sound. It begins when it has something to say.
class Station {
 public:
  explicit Station(std::string sound)
      : sound_(std::move(sound)), port_(server_.bind_to_any_port("127.0.0.1")) {
    server_.Get("/radio", [this](const httplib::Request&, httplib::Response& answer) {
      answer.set_header("icy-metaint", std::to_string(kBetween));
      answer.set_header("icy-name", "Radio of the test");
      answer.set_content_provider("audio/mpeg",
                                  [this](std::size_t, httplib::DataSink& sink) { return serve(sink); });
    });
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~Station() {
    end();
    server_.stop();
    thread_.join();
  }
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;
  Station(Station&&) = delete;
  Station& operator=(Station&&) = delete;

  /// What it plays from now on.
  void say(const std::string& title) {
    const std::lock_guard lock(mutex_);
    title_ = title;
    begun_ = true;
    changed_.notify_all();
  }
  void end() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
  }
  [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/radio"; }

 private:
  static constexpr std::size_t kBetween = 1024;

  bool serve(httplib::DataSink& sink) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return begun_ || ended_; });
    changed_.wait_for(lock, std::chrono::milliseconds(50));  // as fast as it sounds
    if (ended_) {
      sink.done();
      return true;
    }
    std::string block = sound_.substr(at_ % (sound_.size() - kBetween), kBetween);
    if (at_ == 0) block = sound_.substr(0, kBetween);
    at_ += kBetween;
    std::string said;
    if (title_ != said_) {
      said = "StreamTitle='" + title_ + "';StreamUrl='';";
      said.resize((said.size() + 15) / 16 * 16);
      said_ = title_;
    }
    block += static_cast<char>(said.size() / 16);
    block += said;
    lock.unlock();
    return sink.write(block.data(), block.size());
  }

  std::string sound_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string title_;
  std::string said_;
  std::size_t at_ = 0;
  bool begun_ = false;
  bool ended_ = false;
  httplib::Server server_;
  int port_;
  std::thread thread_;
};

class Stations : public PlayerTest {
 protected:
  static std::string endlessSound(const std::string& path) {
    const std::string line =
        "ffmpeg -v error -f lavfi -i sine=440:d=300 -b:a 128k -y '" + path + "' < /dev/null > /dev/null 2>&1";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
  }
  [[nodiscard]] std::string title() const { return player->currentMedia()->getItemInfo("StreamTitle"); }

  Stations() { config.untimed = false; }

  Station station{endlessSound(folder / "sound.mp3")};
};

TEST_F(Stations, WhatAStationSaysThatItPlaysIsToldEachTimeItChanges) {
  start();
  player->URL(station.address());
  const std::string name = player->currentMedia()->name();
  station.say("Ann - First");
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.titles > 0; }));
  EXPECT_EQ(title(), "Ann - First");
  const int before = told.titles;
  station.say("Ben - Second; it's \xC3\xB6");
  ASSERT_TRUE(until([&] { return title() != "Ann - First"; }));
  EXPECT_EQ(title(), "Ben - Second; it's \xC3\xB6");
  ASSERT_TRUE(until([&] { return told.titles > before; }));
  EXPECT_EQ(player->currentMedia()->name(), name);  // which a playlist knows it by
  // A title is no new item.
  EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kTransitioning), 1);
  EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kMediaEnded), 0);
  station.end();
  ASSERT_TRUE(untilState(player::kStopped));
}

TEST_F(Stations, ATitleOfStrangeBytesIsATextOfOneLine) {
  start();
  player->URL(station.address());
  station.say("Bj\xF6rk\r\n<b>\x01" + std::string(2000, 'x'));
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.titles > 0; }));
  const std::string text = title();
  EXPECT_EQ(text.find_first_of("\r\n\x01"), std::string::npos);
  EXPECT_LT(text.size(), 1100U);
  EXPECT_EQ(text.rfind("Bj", 0), 0U);
}

TEST_F(Stations, WhatIsPlayedNextHasNoneOfIt) {
  const std::string path = addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1);
  startWith(1);
  player->URL(station.address());
  const player::MediaRef radio = player->currentMedia();
  station.say("Ann - First");
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.titles > 0; }));
  player->URL(path);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_EQ(player->currentMedia()->getItemInfo("StreamTitle"), "");
  station.end();
}

using ListsOfStations = PlayerTest;

TEST_F(ListsOfStations, OneThatNeverEndsIsGivenUpBeforeItFillsTheMemory) {
  std::string lines;
  for (int i = 0; i < 5000; ++i) lines += "#EXTINF:1,\na.ts\n";
  SmallServer server;
  server.sendsForEver("/list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n", lines,
                      "application/vnd.apple.mpegurl");
  config.titleMemory = std::size_t{64} << 20U;
  start();
  player->URL(server / "list.m3u8");
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.errors > 0; }));
  EXPECT_THAT(player->Error().item(0).errorDescription,
              ::testing::HasSubstr("list.m3u8: it takes more memory than a title may"));
  ASSERT_TRUE(untilState(player::kStopped));
  // The player goes on.
  player->URL(addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1));
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.states.back() == player::kMediaEnded || told.states.size() > 4; }));
  EXPECT_EQ(told.errors, 1);
}

}  // namespace
}  // namespace engine::testing
