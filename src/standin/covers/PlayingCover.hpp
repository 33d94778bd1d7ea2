#pragma once
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "standin/covers/Covers.hpp"
#include "standin/house/House.hpp"
#include "standin/player/NowPlaying.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// Finds the picture of what plays on a thread of its own, when another item plays or the plug-in has found
/// another picture for it, and somebody looks. The live feed hears "cover" when it is another one. Made and
/// ended on the loop's thread.
class PlayingCover {
 public:
  struct Parts {
    LoopGate& gate;
    Covers& covers;
    NowPlaying& now;
    PluginKeeper& plugin;
    House& house;
  };
  explicit PlayingCover(const Parts& parts);
  /// Closes the gate, so that nothing is waited for.
  ~PlayingCover();
  PlayingCover(const PlayingCover&) = delete;
  PlayingCover& operator=(const PlayingCover&) = delete;
  PlayingCover(PlayingCover&&) = delete;
  PlayingCover& operator=(PlayingCover&&) = delete;

 private:
  void want();
  bool waitForWish();
  void findAll();
  void found(const Covers::Cover& cover);
  void notFound();

  LoopGate& gate_;
  Covers& covers_;
  NowPlaying& now_;
  House& house_;
  std::string told_;  ///< the key that the pages were told last
  std::mutex mutex_;
  std::condition_variable changed_;
  bool wanted_ = false;
  bool ended_ = false;
  DeviceHearing devices_;
  std::thread finder_;
};

}  // namespace standin
