#pragma once
#include <chrono>
#include <string>

#include "bus/PollLoop.hpp"

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
  virtual void seconds(int count) = 0;
  /// A page by HTTP; throws as `FetchUrl` does.
  virtual std::string fetch(const std::string& host, const std::string& page, int port) = 0;
};

/// On the server's loop.
class LoopWaits : public HostWaits {
 public:
  explicit LoopWaits(bus::PollLoop& loop, std::chrono::milliseconds fetchLimit = std::chrono::seconds(20))
      : loop_(loop), fetchLimit_(fetchLimit) {}
  void pendingEvents() override;
  void seconds(int count) override;
  std::string fetch(const std::string& host, const std::string& page, int port) override;

 private:
  bus::PollLoop& loop_;
  std::chrono::milliseconds fetchLimit_;
};

}  // namespace standin
