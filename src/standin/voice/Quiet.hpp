#pragma once
#include <map>
#include <memory>
#include <string>

#include "bus/PollLoop.hpp"
#include "standin/voice/AudioEvents.hpp"

namespace standin {

/// Quiet for those who speak to the house: players make room from when one begins to when he has said it, as
/// they do while the house itself speaks. On the loop's thread.
class Quiet {
 public:
  /// Nobody is listened to for longer than that: who hasn't told his end has gone.
  static constexpr base::Milliseconds kLongest = std::chrono::seconds(35);

  Quiet(bus::PollLoop& loop, AudioEvents& events, base::Milliseconds longest = kLongest)
      : loop_(loop), events_(events), longest_(longest) {}
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
  Quiet(Quiet&&) = delete;
  Quiet& operator=(Quiet&&) = delete;
  ~Quiet() = default;

  /// `who` as `VoiceCommands` has him. To begin again gives him his time once more; to end what was not begun
  /// does nothing.
  void begin(const std::string& who);
  void end(const std::string& who);
  /// Whether anybody but `who` speaks now.
  [[nodiscard]] bool hasOthers(const std::string& who) const {
    return speakers_.size() > (speakers_.contains(who) ? 1U : 0U);
  }

 private:
  static constexpr std::size_t kMost = 20;  ///< beyond that nobody would hear anybody

  bus::PollLoop& loop_;
  AudioEvents& events_;
  base::Milliseconds longest_;
  std::map<std::string, std::unique_ptr<base::Timer>> speakers_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
