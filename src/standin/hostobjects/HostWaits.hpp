#pragma once
#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>

#include "bus/PollLoop.hpp"
#include "standin/voice/Speech.hpp"

namespace standin {

/// The host operations that take their time and let everything else go on meanwhile.
class HostWaits {
 public:
  HostWaits() = default;
  HostWaits(const HostWaits&) = delete;
  HostWaits& operator=(const HostWaits&) = delete;
  HostWaits(HostWaits&&) = delete;
  HostWaits& operator=(HostWaits&&) = delete;
  virtual ~HostWaits() = default;

  /// Handles what is pending and returns.
  virtual void pendingEvents() = 0;
  /// Throws number 51 when far too many waits are pending, or more than a program other than the plug-in may
  /// have.
  virtual void seconds(int count) = 0;
  /// Has the text said; with `wait` it returns when it has been heard, and throws as `seconds`.
  virtual void speak(const std::string& text, bool wait) = 0;
  /// A page by HTTP; throws as `FetchUrl` does, and as `seconds`. `certificate` as there.
  virtual std::string fetch(const std::string& host, const std::string& page, int port,
                            const std::string& certificate) = 0;
};

/// On the server's loop. A wait ends early when the loop is asked to quit. One that begins within another
/// ends before it, as each has its place on the stack; how many may is limited. So whoever waits within the
/// plug-in's wait holds that up: others than the plug-in wait for seconds only, and only a few at once.
class LoopWaits : public HostWaits {
 public:
  static constexpr int kMostOfStrangers = 4;
  static constexpr std::chrono::seconds kLongestOfStrangers{5};
  static constexpr std::chrono::seconds kFetchLimit{20};

  /// `forStranger` tells whether a program other than the plug-in asks just now.
  LoopWaits(
      bus::PollLoop& loop, Speech& speech, std::chrono::milliseconds fetchLimit = kFetchLimit,
      std::function<bool()> forStranger = [] { return false; })
      : loop_(loop), speech_(speech), fetchLimit_(fetchLimit), forStranger_(std::move(forStranger)) {}
  void pendingEvents() override;
  void seconds(int count) override;
  void speak(const std::string& text, bool wait) override;
  std::string fetch(const std::string& host, const std::string& page, int port,
                    const std::string& certificate) override;

 private:
  bus::PollLoop& loop_;
  Speech& speech_;
  std::chrono::milliseconds fetchLimit_;
  std::function<bool()> forStranger_;
  int pending_ = 0;
  int ofStrangers_ = 0;
  std::stop_source quitting_;  ///< of all fetches
};

}  // namespace standin
