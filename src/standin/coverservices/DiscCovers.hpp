#pragma once
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "standin/covers/CoverShelf.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The covers of discs from the network, for a player that asks for them by a disc's table of contents:
/// MusicBrainz knows which release it is, and the Cover Art Archive has its pictures. Nobody is asked until
/// the owner has switched it on. What was answered is kept in a folder with a bound. For the web's threads,
/// unless it says otherwise.
class DiscCovers {
 public:
  /// MusicBrainz wants no more from one address.
  static constexpr std::chrono::milliseconds kPause = std::chrono::seconds(1);

  /// On the loop's thread, as `switchTo`. What is switched lies in the settings file "covers.ini", and beside
  /// it, for those who keep a copy of the services in their house, the addresses.
  DiscCovers(House& house, std::filesystem::path folder, std::chrono::milliseconds pause = kPause);

  [[nodiscard]] bool on();
  /// Throws number 61 when the disk is full.
  void switchTo(bool on);

  /// What the player is answered about a disc: a text with the words that lead to its covers. Nothing when
  /// it is switched off, nobody knows the disc, or no answer comes in time.
  std::optional<std::string> about(const std::string& contents);
  /// A picture of a release, as a file; nothing as above.
  std::optional<std::string> cover(const std::string& release, bool large);
  /// From now on nothing comes from the network, and whoever waits for it goes with nothing at once. On any
  /// thread.
  void end();

 private:
  struct Setup {
    bool on = false;
    std::string metadata{};
    std::string covers{};
    std::string userAgent{};
  };
  using Time = std::chrono::steady_clock::time_point;
  Setup setup();
  /// What `ask` has answered now or before; nothing is asked again for a while after it has failed.
  template <class Ask>
  std::optional<std::string> kept(const std::string& question, Ask&& ask);
  /// Waits for its turn; false when too many wait, or at the end.
  bool wait();

  House& house_;
  std::chrono::milliseconds pause_;
  CoverShelf answers_;
  std::mutex mutex_;
  std::condition_variable ending_;
  std::atomic<bool> ended_ = false;
  Setup setup_;
  Time next_{};
  std::map<std::string, Time> failed_;  ///< not to be asked again until then
};

}  // namespace standin
