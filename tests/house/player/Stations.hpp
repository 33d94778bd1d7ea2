#pragma once
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support {

/// A station that takes every listener in, says what it is given to say, and is silent from then on.
class StallingStation {
 public:
  explicit StallingStation(std::string says = {}) : says_(std::move(says)) {
    ears_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof place;
    ::bind(ears_, reinterpret_cast<sockaddr*>(&place), size);
    ::listen(ears_, 8);
    ::getsockname(ears_, reinterpret_cast<sockaddr*>(&place), &size);
    port_ = ntohs(place.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  ~StallingStation() {
    over_ = true;
    thread_.join();
    for (const int each : listeners_) ::close(each);
    ::close(ears_);
  }
  StallingStation(const StallingStation&) = delete;
  StallingStation& operator=(const StallingStation&) = delete;
  StallingStation(StallingStation&&) = delete;
  StallingStation& operator=(StallingStation&&) = delete;

  [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/radio"; }

 private:
  void serve() {
    while (!over_) {
      pollfd called{ears_, POLLIN, 0};
      if (::poll(&called, 1, 50) <= 0) continue;
      const int listener = ::accept(ears_, nullptr, nullptr);
      if (listener < 0) continue;
      listeners_.push_back(listener);
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
  int ears_ = -1;
  int port_ = 0;
  std::vector<int> listeners_;
  std::thread thread_;
};

}  // namespace support
