#pragma once
#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <stdexcept>

#include "files/Descriptor.hpp"

namespace support {

/// Listens on a port of this machine, lets everybody connect, and never says a word.
class SilentServer {
 public:
  SilentServer() {
    constexpr int kWaiting = 100;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* name = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket_.get(), name, size) != 0 || ::listen(socket_.get(), kWaiting) != 0 ||
        ::getsockname(socket_.get(), name, &size) != 0) {
      throw std::runtime_error("no port to listen on");
    }
    port_ = ntohs(address.sin_port);
  }
  [[nodiscard]] int port() const { return port_; }
  /// Whether somebody has connected who hasn't been taken, or does so within some milliseconds.
  [[nodiscard]] bool wasVisited(int within = 0) const {
    pollfd one{socket_.get(), POLLIN, 0};
    return ::poll(&one, 1, within) > 0;
  }

 protected:
  /// Takes the next visitor.
  [[nodiscard]] files::Descriptor visitor() const {
    return files::Descriptor(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
  }

 private:
  files::Descriptor socket_{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  int port_ = 0;
};

}  // namespace support
