#pragma once
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "files/Descriptor.hpp"
#include "support/faults/SilentServer.hpp"

namespace support {

/// A station that takes every listener in, says what it is given to say, and is silent from then on.
class StallingStation : private SilentServer {
 public:
  explicit StallingStation(std::string says = {}) : says_(std::move(says)) {
    thread_ = std::thread([this] { serve(); });
  }
  ~StallingStation() {
    over_ = true;
    thread_.join();
  }
  StallingStation(const StallingStation&) = delete;
  StallingStation& operator=(const StallingStation&) = delete;
  StallingStation(StallingStation&&) = delete;
  StallingStation& operator=(StallingStation&&) = delete;

  [[nodiscard]] std::string address() const {
    return "http://127.0.0.1:" + std::to_string(port()) + "/radio";
  }

 private:
  void serve() {
    while (!over_) {
      if (!wasVisited(50)) continue;
      files::Descriptor taken = visitor();
      if (!taken.valid()) continue;
      const int listener = taken.get();
      listeners_.push_back(std::move(taken));
      const char* at = says_.data();
      for (std::size_t left = says_.size(); left > 0 && !over_;) {
        pollfd ready{listener, POLLOUT, 0};
        if (::poll(&ready, 1, 50) <= 0) continue;
        const ssize_t said = ::send(listener, at, left, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (said <= 0) break;
        at += said;
        left -= static_cast<std::size_t>(said);
      }
    }
  }

  std::string says_;
  std::atomic<bool> over_{false};
  std::vector<files::Descriptor> listeners_;
  std::thread thread_;
};

}  // namespace support
