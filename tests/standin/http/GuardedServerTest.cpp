// A web server that nobody holds up. None of its limits of time can run out while a test lasts, so whatever
// comes to an end here was ended for a better reason.
#include "standin/http/GuardedServer.hpp"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
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
                                  .answered = kForEver,
                                  .requests = 1 << 30}} {
    server.Get("/", [](const httplib::Request&, httplib::Response& response) {
      response.set_content("here", "text/plain");
    });
    server.Get("/large", [](const httplib::Request&, httplib::Response& response) {
      response.set_content(std::string(32U << 20U, 'x'), "text/plain");
    });
    port = server.bind("127.0.0.1", 0);
    server.Get("/wait", [this](const httplib::Request&, httplib::Response&) {
      std::unique_lock lock(mutex);
      ++atWork;
      changed.notify_all();
      changed.wait(lock, [this] { return over; });
    });
    server.Get("/turn", [this](const httplib::Request&, httplib::Response&) {
      std::unique_lock lock(mutex);
      const int turn = ++atWork;
      changed.notify_all();
      changed.wait(lock, [&] { return over || turn <= allowed; });
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

  void expectAnswer() const {
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(120);
    const auto answer = client.Get("/");
    ASSERT_TRUE(answer) << answer.error();
    EXPECT_EQ(answer->body, "here");
  }

  standin::GuardedServer server;
  int port = 0;
  std::thread thread;
  std::mutex mutex;
  std::condition_variable changed;
  int atWork = 0;
  int allowed = 0;  ///< of those who are at work on a turn
  bool over = false;
};

/// To it nobody keeps it waiting for long.
class APatientServer : public AGuardedServer {
 protected:
  APatientServer() : AGuardedServer(kForEver) {}
};

/// It waits for a while, which those who come are careful not to take up at once.
class AServerOfSippers : public AGuardedServer {
 protected:
  AServerOfSippers() : AGuardedServer(std::chrono::milliseconds(200)) {}
};

/// Does something again and again, on a thread of its own, until it goes.
class Repeated {
 public:
  explicit Repeated(const std::function<void()>& step)
      : thread_([this, step] {
          while (!over_) step();
        }) {}
  Repeated(const Repeated&) = delete;
  Repeated& operator=(const Repeated&) = delete;
  Repeated(Repeated&&) = delete;
  Repeated& operator=(Repeated&&) = delete;
  ~Repeated() {
    over_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> over_ = false;
  std::thread thread_;
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
    expectAnswer();
  }
}

TEST_F(AServerOfSippers, AnswersBesideThoseWhoSendALittleNowAndThen) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int i = 0; i < 8; ++i) others.push_back(silent());
  const Repeated sips([&] {
    for (const auto& each : others) ::send(each->get(), "x", 1, MSG_NOSIGNAL);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  });
  expectAnswer();
}

TEST_F(AServerOfSippers, AnswersBesideThoseWhoDoNotRead) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int i = 0; i < 8; ++i)
    others.push_back(support::ConnectionTo(port, "GET /large HTTP/1.1\r\nHost: localhost\r\n\r\n"));
  expectAnswer();
}

TEST_F(APatientServer, AnswersBesideThoseWhoAskOnAndOn) {
  const std::string request = "GET /turn HTTP/1.1\r\nHost: localhost\r\n\r\n";
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int i = 0; i < 8; ++i) others.push_back(support::ConnectionTo(port, request + request));
  {
    // No request is answered before there is another one behind the next.
    const Repeated asks([&] {
      std::unique_lock lock(mutex);
      changed.wait(lock, [this] { return over || atWork > allowed; });
      if (over) return;
      const int seen = atWork;
      lock.unlock();
      for (const auto& each : others) ::send(each->get(), request.data(), request.size(), MSG_NOSIGNAL);
      lock.lock();
      allowed = seen;
      changed.notify_all();
    });
    expectAnswer();
    const std::lock_guard lock(mutex);
    over = true;
    changed.notify_all();
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

TEST_F(AGuardedServer, PacksItsAnswersInTheWayThatCostsLittle) {
  httplib::Client client("127.0.0.1", port);
  client.set_decompress(false);
  const auto packing = [&](const httplib::Headers& headers) {
    const auto answer = client.Get("/", headers);
    return answer ? answer->get_header_value("Content-Encoding") : "no answer";
  };
  EXPECT_EQ(packing({{"Accept-Encoding", "br, gzip"}}), "gzip");
  EXPECT_EQ(packing({{"Accept-Encoding", "br"}}), "");
  EXPECT_EQ(packing({{"Accept-Encoding", "br;q=0, GZIP ; q=0.001"}}), "gzip");
  EXPECT_EQ(packing({{"Accept-Encoding", "gzip;q=0, br"}}), "");
  EXPECT_EQ(packing({{"Accept-Encoding", "gzip; q=0.000"}}), "");
  EXPECT_EQ(packing({{"Accept-Encoding", "gzip"}, {"Range", "bytes=0-1"}}), "");
}
