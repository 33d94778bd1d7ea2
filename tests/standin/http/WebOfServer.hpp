#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "files/Descriptor.hpp"
#include "standin/fakes/LocalConnection.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace standin::testing {

using support::ServerProcess;
using support::WebClient;

/// The server's web without a plug-in.
class Web : public ::testing::Test {
 protected:
  /// A connection that has sent these bytes; null when there is none.
  std::unique_ptr<files::Descriptor> connected(const std::string& request) const {
    return support::ConnectionTo(server.port(), request);
  }
  /// The first line of the answer to the bytes of a request.
  std::string raw(const std::string& request) const {
    const auto open = connected(request);
    if (!open) return "no connection";
    const files::Descriptor& socket = *open;
    std::string answer;
    std::array<char, 4096> part{};
    while (answer.find("\r\n") == std::string::npos) {
      const ssize_t got = read(socket.get(), part.data(), part.size());
      if (got <= 0) break;
      answer.append(part.data(), static_cast<std::size_t>(got));
    }
    return answer.substr(0, answer.find("\r\n"));
  }
  std::string rawGet(const std::string& target, const std::string& host = "localhost") const {
    return raw("GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\nCookie: " + web.cookie +
               "\r\nConnection: close\r\n\r\n");
  }

  const std::string kForm = std::string("Content-Type: ") + WebClient::kForm + "\r\n";
  support::BusDaemon bus;
  support::TempFolder folder;
  std::filesystem::path data = folder.path() / "data";
  ServerProcess server{bus.address(), data};
  WebClient web{server};
};

}  // namespace standin::testing
