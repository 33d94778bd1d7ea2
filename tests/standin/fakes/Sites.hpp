// Places elsewhere that a page may be led to.
#pragma once
#include <arpa/inet.h>
#include <httplib.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>

#include "files/Descriptor.hpp"

namespace support {

/// A server that nobody should come to: it only knows whether somebody has.
class ForeignServer {
 public:
  ForeignServer() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* name = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_.get(), name, size) != 0 || listen(socket_.get(), 16) != 0 ||
        getsockname(socket_.get(), name, &size) != 0) {
      throw std::runtime_error("no foreign server");
    }
    port_ = ntohs(address.sin_port);
  }
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] bool wasVisited() const {
    pollfd one{socket_.get(), POLLIN, 0};
    return poll(&one, 1, 0) > 0;
  }
  /// What the visitors that are there have said so far.
  [[nodiscard]] std::string heard() const {
    std::string all;
    while (wasVisited()) {
      const files::Descriptor visitor(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      std::array<char, 4096> part{};
      const ssize_t got = ::recv(visitor.get(), part.data(), part.size(), MSG_DONTWAIT);
      if (got > 0) all.append(part.data(), static_cast<std::size_t>(got));
    }
    return all;
  }

 private:
  files::Descriptor socket_{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  int port_ = 0;
};

/// A site that is not the server's, with one page.
class OtherSite {
 public:
  explicit OtherSite(std::string page) : page_(std::move(page)) {
    server_.Get(".*", [this](const httplib::Request&, httplib::Response& response) {
      response.set_content(page_, "text/html");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~OtherSite() {
    while (!server_.is_running()) std::this_thread::yield();
    server_.stop();
    thread_.join();
  }
  OtherSite(const OtherSite&) = delete;
  OtherSite& operator=(const OtherSite&) = delete;
  OtherSite(OtherSite&&) = delete;
  OtherSite& operator=(OtherSite&&) = delete;

  /// By another name than the server's: the ports of one name are one site.
  [[nodiscard]] std::string address() const { return "http://localhost:" + std::to_string(port_) + "/"; }

 private:
  std::string page_;
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace support
