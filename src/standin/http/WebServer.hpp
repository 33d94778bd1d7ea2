#pragma once
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "standin/house/LiveFeed.hpp"
#include "standin/http/RefusedPosts.hpp"
#include "standin/http/WebApi.hpp"
#include "standin/http/WebRules.hpp"

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace standin {

class GuardedServer;
class TlsIdentity;

/// The web's port, taken before anything else is touched. Throws number 70 when it is in use.
class WebPort {
 public:
  WebPort(const std::string& address, int port);
  /// Speaks https where the identity is not null.
  WebPort(const std::string& address, int port, std::unique_ptr<TlsIdentity> identity);
  ~WebPort();
  WebPort(const WebPort&) = delete;
  WebPort& operator=(const WebPort&) = delete;
  WebPort(WebPort&&) = delete;
  WebPort& operator=(WebPort&&) = delete;

  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] bool speaksTls() const;
  [[nodiscard]] GuardedServer& server() { return *server_; }

 private:
  std::unique_ptr<GuardedServer> server_;
  int port_ = 0;
};

/// Serves the house's pages on threads of its own for as long as it lives.
class WebServer {
 public:
  struct Parts {
    WebApi& api;
    LoopGate& gate;
    LiveFeed& live;
    RefusedPosts& refused;
    AllowedHosts hosts;
    std::filesystem::path htmlFolder;  ///< of the house's own files
  };
  WebServer(WebPort& port, const Parts& parts);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;
  WebServer(WebServer&&) = delete;
  WebServer& operator=(WebServer&&) = delete;

 private:
  /// Of the session, as the browser sends it.
  [[nodiscard]] std::string tokenOf(const httplib::Request& request) const;
  void answerGet(const httplib::Request& request, httplib::Response& response);
  /// Why a post is refused before a byte of its body is looked at; nothing when it may be read. `route` is
  /// null where there is none.
  std::optional<WebAnswer> refusedUnread(const httplib::Request& request, const Route* route);
  void answerPost(const httplib::Request& request, httplib::Response& response, const Route& route,
                  std::string body);
  void stream(const Route& route, const httplib::Request& request, httplib::Response& response);

  GuardedServer& server_;
  WebApi& api_;
  LoopGate& gate_;
  LiveFeed& live_;
  RefusedPosts& refused_;
  AllowedHosts hosts_;
  std::filesystem::path htmlFolder_;
  std::string cookie_;  ///< its name
  std::thread thread_;
};

}  // namespace standin
