// Places elsewhere that a page may be led to.
#pragma once
#include <httplib.h>
#include <sys/socket.h>

#include <array>
#include <string>
#include <thread>

#include "files/Descriptor.hpp"
#include "support/faults/SilentServer.hpp"

namespace support {

/// A server that nobody should come to.
class ForeignServer : public SilentServer {
 public:
  /// What the visitors that are there have said so far.
  [[nodiscard]] std::string heard() const {
    std::string all;
    while (wasVisited()) {
      const files::Descriptor next = visitor();
      std::array<char, 4096> part{};
      const ssize_t got = ::recv(next.get(), part.data(), part.size(), MSG_DONTWAIT);
      if (got > 0) all.append(part.data(), static_cast<std::size_t>(got));
    }
    return all;
  }
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
