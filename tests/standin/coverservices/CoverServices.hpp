#pragma once
#include <httplib.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// A server that answers as MusicBrainz and the Cover Art Archive document: the releases of a disc's table of
/// contents as JSON, and a release's pictures by way of a redirection.
class CoverServices {
 public:
  static constexpr const char* kRelease = "76df3287-6cda-33eb-8e9a-044b5e15ffdd";

  /// What is answered to the two questions.
  std::function<void(httplib::Response&)> disc = [](httplib::Response& answer) {
    answer.set_content(R"({"release-count": 2, "releases": [
      {"id": "11111111-6cda-33eb-8e9a-044b5e15ffdd", "cover-art-archive": {"front": false}},
      {"id": "76df3287-6cda-33eb-8e9a-044b5e15ffdd", "title": "Dummy", "cover-art-archive": {"front": true}}]})",
                       "application/json");
  };
  std::function<void(httplib::Response&)> picture = [](httplib::Response& answer) {
    answer.set_redirect("/archive/picture", 307);
  };
  std::string stored{};  ///< the picture that the redirection leads to

  CoverServices() {
    const auto note = [this](const httplib::Request& request) {
      const std::lock_guard lock(mutex_);
      asked_.push_back(request.target);
      agent_ = request.get_header_value("User-Agent");
    };
    server_.Get("/ws/2/discid/-", [this, note](const httplib::Request& request, httplib::Response& answer) {
      note(request);
      disc(answer);
    });
    server_.Get("/release/.*", [this, note](const httplib::Request& request, httplib::Response& answer) {
      note(request);
      picture(answer);
    });
    server_.Get("/archive/picture", [this](const httplib::Request&, httplib::Response& answer) {
      answer.set_content(stored, "image/jpeg");
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();  // one that has not begun does not stop
  }
  ~CoverServices() {
    server_.stop();
    thread_.join();
  }
  CoverServices(const CoverServices&) = delete;
  CoverServices& operator=(const CoverServices&) = delete;
  CoverServices(CoverServices&&) = delete;
  CoverServices& operator=(CoverServices&&) = delete;

  [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(port_); }
  [[nodiscard]] std::vector<std::string> asked() {
    const std::lock_guard lock(mutex_);
    return asked_;
  }
  [[nodiscard]] std::string agent() {
    const std::lock_guard lock(mutex_);
    return agent_;
  }

 private:
  httplib::Server server_;
  std::mutex mutex_;
  std::vector<std::string> asked_;
  std::string agent_;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace support
