#pragma once
#include <httplib.h>

#include <chrono>
#include <mutex>
#include <string>
#include <thread>

#include "standin/fakes/WebClient.hpp"
#include "support/Process.hpp"

namespace support {

/// A page that hears what happens in the house, from its construction on.
class LivePage {
 public:
  explicit LivePage(const ServerProcess& server) : client_("127.0.0.1", server.port()) {
    client_.set_default_headers({{"Cookie", WebClient(server).cookie}});
    client_.set_read_timeout(60);
    thread_ = std::thread([this] {
      client_.Get("/api/live", [this](const char* text, std::size_t size) {
        const std::lock_guard lock(mutex_);
        heard_.append(text, size);
        return !over_;
      });
    });
    // The feed greets whom it has let in.
    Eventually([this] { return !heard().empty(); });
  }
  ~LivePage() {
    {
      const std::lock_guard lock(mutex_);
      over_ = true;
    }
    client_.stop();
    thread_.join();
  }
  LivePage(const LivePage&) = delete;
  LivePage& operator=(const LivePage&) = delete;
  LivePage(LivePage&&) = delete;
  LivePage& operator=(LivePage&&) = delete;

  [[nodiscard]] std::string heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  /// Waits for the text in what comes or has come.
  bool hears(const std::string& text, std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    return Eventually([&] { return heard().find(text) != std::string::npos; }, limit);
  }

 private:
  httplib::Client client_;
  std::mutex mutex_;
  std::string heard_;
  bool over_ = false;
  std::thread thread_;
};

}  // namespace support
