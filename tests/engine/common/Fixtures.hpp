#pragma once
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "demo/Sound.hpp"
#include "demo/Tags.hpp"
#include "engine/Player.hpp"
#include "engine/common/Config.hpp"
#include "player/WMP9.hpp"
#include "support/SkippingClock.hpp"

namespace engine::testing {

namespace fs = std::filesystem;

/// A folder of the test's own, removed with it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  TempFolder(TempFolder&&) = delete;
  TempFolder& operator=(TempFolder&&) = delete;

  [[nodiscard]] std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  [[nodiscard]] std::string path() const { return path_.string(); }

 private:
  fs::path path_;
};

/// Turns the loop until `condition` holds. False when it does not within the time.
bool TurnUntil(bus::PollLoop& loop, const std::function<bool()>& condition,
               std::chrono::seconds limit = std::chrono::seconds(60));

/// Everything the player tells.
class Recorder : public player::WMP9Events {
 public:
  void PlayStateChange(std::int32_t newState) override {
    states.push_back(newState);
    times.push_back(std::chrono::steady_clock::now());
  }
  void ModeChange(const std::string& modeName, bool newValue) override {
    modes.emplace_back(modeName, newValue);
  }
  void Error() override { ++errors; }
  void Warning(std::int32_t, std::int32_t, const std::string& description) override {
    warnings.push_back(description);
  }
  void MediaCollectionChange() override { ++mediaChanges; }
  void PlaylistCollectionChange() override { ++playlistChanges; }
  void DoubleClick() override {}
  void StreamTitleChange() override { ++titles; }
  void Changed() override { ++changes; }
  void Sought() override { ++soughts; }

  std::vector<std::int32_t> states;
  std::vector<std::chrono::steady_clock::time_point> times;  ///< of the states
  std::vector<std::pair<std::string, bool>> modes;
  int errors = 0;
  int titles = 0;
  int changes = 0;
  int soughts = 0;
  int mediaChanges = 0;
  int playlistChanges = 0;
  std::vector<std::string> warnings;
};

/// A music folder, a configuration that makes no noise, and a player on it.
class PlayerTest : public ::testing::Test {
 protected:
  PlayerTest();

  /// A tagged file below the music folder. Answers its path.
  std::string addTrack(const std::string& file, const TrackTags& tags, double seconds = 0.2);
  std::string addTrack(const std::string& file, const std::string& title, const std::string& artist,
                       const std::string& album, const std::string& genre, int track = 0,
                       double seconds = 0.2);
  void writeText(const std::string& path, const std::string& text);
  /// Starts the player.
  void start();
  /// Starts it and waits until the library holds that many tracks.
  void startWith(int tracks);
  bool libraryHolds(int tracks);
  bool until(const std::function<bool()>& condition) { return TurnUntil(loop, condition); }
  bool untilState(std::int32_t state);
  /// Whatever waits for its time has come to it; what the decoder plays meanwhile is a moment.
  void minutesPass();
  [[nodiscard]] std::string music(const std::string& name) const {
    return config.musicFolders.front() + "/" + name;
  }

  TempFolder folder;
  support::SkippingClock clock;
  bus::PollLoop loop{clock.reader()};
  Config config;
  Recorder told;
  std::vector<std::string> log;
  std::unique_ptr<player::WMP9> player;
};

std::vector<std::string> Names(player::Playlist& list);
std::vector<std::string> Names(player::StringCollection& list);

}  // namespace engine::testing
