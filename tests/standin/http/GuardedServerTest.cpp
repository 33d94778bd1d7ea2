// A web server that nobody holds up. None of its limits of time can run out while a test lasts, so whatever
// comes to an end here was ended for a better reason.
#include "standin/http/GuardedServer.hpp"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <condition_variable>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "files/Descriptor.hpp"
#include "standin/fakes/LocalConnection.hpp"
#include "support/Process.hpp"

namespace {

constexpr std::chrono::seconds kForEver = std::chrono::hours(24);

class AGuardedServer : public testing::Test {
 protected:
  AGuardedServer() : AGuardedServer(std::chrono::milliseconds(1)) {}
  explicit AGuardedServer(std::chrono::milliseconds brief)
      : server{standin::WebLimits{.connections = 8,
                                  .queued = 64,
                                  .threads = 8,
                                  .whole = kForEver,
                                  .idle = kForEver,
                                  .brief = brief,
                                  .drained = kForEver,
                                  .answered = kForEver}} {
    server.Get("/", [](const httplib::Request&, httplib::Response& response) {
      response.set_content("here", "text/plain");
    });
    port = server.bind("127.0.0.1", 0);
    server.Get("/wait", [this](const httplib::Request&, httplib::Response&) {
      std::unique_lock lock(mutex);
      ++atWork;
      changed.notify_all();
      changed.wait(lock, [this] { return over; });
    });
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

  standin::GuardedServer server;
  int port = 0;
  std::thread thread;
  std::mutex mutex;
  std::condition_variable changed;
  int atWork = 0;
  bool over = false;
};

/// To it nobody keeps it waiting for long.
class APatientServer : public AGuardedServer {
 protected:
  APatientServer() : AGuardedServer(kForEver) {}
};

}  // namespace

TEST_F(APatientServer, HearsEachOfMoreThanItHasRoomForWhoHaveOnlyJustCome) {
  std::vector<std::unique_ptr<files::Descriptor>> all;
  for (int i = 0; i < 40; ++i) all.push_back(support::ConnectionTo(port, ""));
  const std::string request = "GET / HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
  for (const auto& each : all) {
    ASSERT_EQ(::send(each->get(), request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    std::string answer;
    std::array<char, 4096> part{};
    for (ssize_t got = 0; (got = ::recv(each->get(), part.data(), part.size(), 0)) > 0;)
      answer.append(part.data(), static_cast<std::size_t>(got));
    ASSERT_TRUE(answer.ends_with("here")) << answer;
  }
}

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

TEST_F(AGuardedServer, ClosesWhatItHasNoRoomToQueue) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  const std::string request = "GET /wait HTTP/1.1\r\nHost: localhost\r\n\r\n";
  for (int i = 0; i < 8; ++i) others.push_back(support::ConnectionTo(port, request));
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return atWork == 8; });
  }
  // 8 that are at work, 64 that wait: the others are closed, whether or not they have said anything.
  std::vector<std::unique_ptr<files::Descriptor>> late;
  for (int i = 0; i < 300; ++i) late.push_back(support::ConnectionTo(port, ""));
  // Reading ends when a connection is closed, and not before.
  const auto closed = [&](std::size_t each) {
    char none = 0;
    return ::recv(late.at(each)->get(), &none, 1, 0) <= 0;
  };
  for (std::size_t i = 64; i < late.size(); ++i) EXPECT_TRUE(closed(i)) << i;
  {
    const std::lock_guard lock(mutex);
    over = true;
  }
  changed.notify_all();
  others.clear();
  late.clear();
  httplib::Client client("127.0.0.1", port);
  client.set_read_timeout(120);
  EXPECT_TRUE(support::Eventually([&] {
    const auto answer = client.Get("/");
    return answer && answer->body == "here";
  }));
}

TEST_F(AGuardedServer, LetsTheSystemTakeManyConnectionsAtOnce) {
  // Of the sockets of this process that listen, the one on the port.
  int backlog = 0;
  for (int each = 3; each < 200; ++each) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    tcp_info info{};
    socklen_t infoSize = sizeof info;
    if (::getsockname(each, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        ntohs(address.sin_port) != port || ::getsockopt(each, IPPROTO_TCP, TCP_INFO, &info, &infoSize) != 0 ||
        info.tcpi_state != TCP_LISTEN)
      continue;
    backlog = static_cast<int>(info.tcpi_sacked);
  }
  EXPECT_GE(backlog, 128);
}
