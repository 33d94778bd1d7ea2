// A web server that nobody holds up. None of its limits of time can run out while a test lasts, so whatever
// comes to an end here was ended for a better reason.
#include "standin/http/GuardedServer.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "files/Descriptor.hpp"
#include "standin/fakes/LocalConnection.hpp"

namespace {

constexpr std::chrono::seconds kForEver = std::chrono::hours(24);

class AGuardedServer : public testing::Test {
 protected:
  AGuardedServer() {
    server.Get("/", [](const httplib::Request&, httplib::Response& response) {
      response.set_content("here", "text/plain");
    });
    port = server.bind_to_any_port("127.0.0.1");
    thread = std::thread([this] { server.listen_after_bind(); });
  }
  void TearDown() override { end(); }
  void end() {
    if (!thread.joinable()) return;
    server.stopNow();
    thread.join();
  }
  /// A connection that has begun a request and says nothing more.
  [[nodiscard]] std::unique_ptr<files::Descriptor> silent() const {
    auto socket = support::ConnectionTo(port, "GET / HTTP/1.1\r\nX: ");
    EXPECT_NE(socket, nullptr);
    return socket;
  }

  standin::GuardedServer server{standin::WebLimits{.connections = 8,
                                                   .threads = 8,
                                                   .whole = kForEver,
                                                   .idle = kForEver,
                                                   .drained = kForEver,
                                                   .answered = kForEver}};
  int port = 0;
  std::thread thread;
};

}  // namespace

TEST_F(AGuardedServer, AnswersBesideMoreSilentConnectionsThanItHasRoomFor) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int round = 0; round < 5; ++round) {
    for (int i = 0; i < 30; ++i) others.push_back(silent());
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(120);
    const auto answer = client.Get("/");
    ASSERT_TRUE(answer) << answer.error();
    EXPECT_EQ(answer->body, "here");
  }
}

TEST_F(AGuardedServer, EndsThoughConnectionsAreSilent) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int i = 0; i < 30; ++i) others.push_back(silent());
  end();
  EXPECT_FALSE(server.is_running());
}
