#pragma once
#include <httplib.h>

#include <nlohmann/json.hpp>
#include <string>

#include "standin/fakes/ServerProcess.hpp"
#include "support/JsonText.hpp"
#include "support/Process.hpp"

namespace support {

/// A browser, as far as headers go. Made from a server's process it is the owner's, from a port a stranger's.
class WebClient {
 public:
  static constexpr const char* kForm = "application/x-www-form-urlencoded";

  explicit WebClient(int port)
      : origin_("http://127.0.0.1:" + std::to_string(port)), client_("127.0.0.1", port) {
    client_.set_read_timeout(60);
  }
  explicit WebClient(const ServerProcess& server) : WebClient(server.port()) { enter(server.key()); }

  /// Opens the address with the key and keeps the cookie.
  void enter(const std::string& key) {
    const auto answer = get("/?key=" + key);
    if (answer) keepCookie(*answer);
  }

  httplib::Result get(const std::string& path, httplib::Headers headers = {}) {
    addCookie(headers);
    return client_.Get(path, headers);
  }
  nlohmann::json json(const std::string& path) {
    const auto answer = get(path);
    return answer ? JsonIfAny(answer->body) : nlohmann::json();
  }
  /// The status of a post from a page of the server's own; 0 without an answer.
  int post(const std::string& path, const nlohmann::json& body) {
    return postText(path, TextOf(body), "application/json", {{"Origin", origin_}});
  }
  /// The same of a form.
  int postForm(const std::string& path, const std::string& form) {
    return postText(path, form, kForm, {{"Origin", origin_}});
  }
  int postText(const std::string& path, const std::string& body, const std::string& type,
               httplib::Headers headers) {
    addCookie(headers);
    const auto answer = client_.Post(path, headers, body, type);
    if (!answer) return 0;
    last = answer->body;
    keepCookie(*answer);
    return answer->status;
  }
  [[nodiscard]] const std::string& origin() const { return origin_; }
  httplib::Client& raw() { return client_; }

  std::string last;          ///< body of the last answer to a post
  std::string cookie;        ///< sent with each request
  std::string cookieHeader;  ///< as the server set it

 private:
  void keepCookie(const httplib::Response& answer) {
    if (!answer.has_header("Set-Cookie")) return;
    cookieHeader = answer.get_header_value("Set-Cookie");
    cookie = cookieHeader.substr(0, cookieHeader.find(';'));
  }
  void addCookie(httplib::Headers& headers) const {
    if (!cookie.empty()) headers.emplace("Cookie", cookie);
  }
  std::string origin_;
  httplib::Client client_;
};

}  // namespace support
