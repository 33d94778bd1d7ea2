#pragma once
#include <httplib.h>

#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace engine::testing {

/// A server on this machine that sends what the test wants and notes whatever is asked of it.
class SmallServer {
 public:
  SmallServer() : port_(server_.bind_to_any_port("127.0.0.1")) {
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& /*answer*/) {
      const std::lock_guard lock(mutex_);
      asked_.push_back(request.path);
      return httplib::Server::HandlerResponse::Unhandled;
    });
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
  }
  ~SmallServer() {
    server_.stop();
    thread_.join();
  }
  SmallServer(const SmallServer&) = delete;
  SmallServer& operator=(const SmallServer&) = delete;
  SmallServer(SmallServer&&) = delete;
  SmallServer& operator=(SmallServer&&) = delete;

  void sends(const std::string& path, const std::string& body, const std::string& type) {
    server_.Get(path,
                [=](const httplib::Request&, httplib::Response& answer) { answer.set_content(body, type); });
  }
  void leadsTo(const std::string& path, const std::string& place) {
    server_.Get(path, [=](const httplib::Request&, httplib::Response& answer) {
      answer.status = 302;
      answer.headers.emplace("Location", place);
    });
  }
  /// The head, and then the same lines for as long as anybody takes them.
  void sendsForEver(const std::string& path, const std::string& head, const std::string& lines,
                    const std::string& type) {
    server_.Get(path, [=](const httplib::Request&, httplib::Response& answer) {
      answer.set_content_provider(type, [=](std::size_t offset, httplib::DataSink& sink) {
        const std::string& part = offset == 0 ? head : lines;
        return sink.write(part.data(), part.size());
      });
    });
  }
  [[nodiscard]] std::string port() const { return std::to_string(port_); }
  /// The address of what lies there.
  [[nodiscard]] std::string operator/(const std::string& path) const {
    return "http://127.0.0.1:" + port() + "/" + path;
  }
  [[nodiscard]] std::vector<std::string> asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
  }

 private:
  httplib::Server server_;
  mutable std::mutex mutex_;
  std::vector<std::string> asked_;
  int port_;
  std::thread thread_;
};

/// A file as it is, to be sent.
inline std::string Content(const std::string& path) {
  std::ostringstream all;
  all << std::ifstream(path, std::ios::binary).rdbuf();
  return all.str();
}

}  // namespace engine::testing
