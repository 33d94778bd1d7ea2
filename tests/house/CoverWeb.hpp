#pragma once
#include <httplib.h>

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// A metadata service and a cover service that say what they are told to.
class CoverWeb {
 public:
  CoverWeb() {
    server_.Get(".*", [this](const httplib::Request& request, httplib::Response& reply) {
      const std::lock_guard lock(mutex_);
      const bool metadata = request.path == "/redir/GetMDRCD.asp";
      asked_.push_back(metadata ? "metadata" : request.path.substr(path().size()));
      if (metadata) reply.set_content(answer_, "text/plain");
      const auto found = pictures_.find(asked_.back());
      if (found != pictures_.end()) reply.set_content(found->second, "image/jpeg");
      if (!metadata && found == pictures_.end()) reply.status = 404;
    });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();  // one that has not begun does not stop
  }
  ~CoverWeb() {
    server_.stop();
    thread_.join();
  }
  CoverWeb(const CoverWeb&) = delete;
  CoverWeb& operator=(const CoverWeb&) = delete;
  CoverWeb(CoverWeb&&) = delete;
  CoverWeb& operator=(CoverWeb&&) = delete;

  void says(const std::string& answer, const std::map<std::string, std::string>& pictures) {
    const std::lock_guard lock(mutex_);
    answer_ = answer;
    pictures_ = pictures;
    asked_.clear();
  }
  /// "metadata" or what stood behind the cover service's address, in the order of asking.
  std::vector<std::string> asked() {
    const std::lock_guard lock(mutex_);
    return asked_;
  }
  [[nodiscard]] std::string metadata() const { return "http://127.0.0.1:" + std::to_string(port_); }
  /// Of 39 characters, so that four more make the shortest address of a cover.
  [[nodiscard]] std::string covers() const { return metadata() + path(); }

 private:
  [[nodiscard]] std::string path() const {
    constexpr std::size_t kLength = 39;
    const std::string end = "/cover/";
    return "/" + std::string(kLength - metadata().size() - end.size() - 1, 'x') + end;
  }

  httplib::Server server_;
  std::mutex mutex_;
  std::string answer_;
  std::map<std::string, std::string> pictures_;
  std::vector<std::string> asked_;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace support
