#include "standin/http/GuardedServer.hpp"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <string>
#include <string_view>
#include <thread>

namespace standin {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Time = SteadyClock::time_point;

/// Whether the socket is ready for one of the events before the time is over.
bool ReadyBefore(Time end, socket_t socket, short events) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - SteadyClock::now());
    pollfd one{socket, events, 0};
    const int ready = ::poll(&one, 1, static_cast<int>(std::max<std::int64_t>(0, left.count())));
    if (ready > 0) return (one.revents & (events | POLLHUP | POLLERR)) != 0;
    if (ready == 0 || errno != EINTR) return false;
  }
}

/// One request and its answer on a socket, within the limits.
class GuardedStream : public httplib::Stream {
 public:
  GuardedStream(socket_t socket, const WebLimits& limits, std::function<void(bool)> waits)
      : socket_(socket), limits_(limits), waits_(std::move(waits)), end_(SteadyClock::now() + limits.whole) {}

  [[nodiscard]] bool is_readable() const override { return ReadyBefore(end_, socket_, POLLIN); }
  [[nodiscard]] bool is_writable() const override {
    if (!ReadyBefore(SteadyClock::now() + limits_.answered, socket_, POLLOUT)) return false;
    char next = 0;
    const ssize_t got = ::recv(socket_, &next, 1, MSG_PEEK | MSG_DONTWAIT);
    return got > 0 || (got < 0 && (errno == EAGAIN || errno == EINTR));
  }

  ssize_t read(char* into, std::size_t size) override {
    if (used_ == filled_ && !fill()) return -1;
    const std::size_t count = std::min(size, filled_ - used_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(used_), count, into);
    used_ += count;
    return countRead(std::string_view(into, count)) ? static_cast<ssize_t>(count) : -1;
  }

  ssize_t write(const char* data, std::size_t size) override {
    // What follows such an answer on the connection may be the body that it refuses.
    const std::string_view text(data, size);
    if (text.starts_with("HTTP/1.1 4") && text.find("\r\nConnection: close\r\n") != std::string_view::npos) {
      bodyRefused_ = true;
    }
    const Time end = SteadyClock::now() + limits_.answered;
    std::size_t sent = 0;
    while (sent < size) {
      if (!ReadyBefore(end, socket_, POLLOUT)) return -1;
      const ssize_t count = ::send(socket_, data + sent, size - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
      if (count < 0 && errno != EAGAIN && errno != EINTR) return -1;
      if (count > 0) sent += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(size);
  }

  void get_remote_ip_and_port(std::string& ip, int& port) const override {
    address(&::getpeername, ip, port);
  }
  void get_local_ip_and_port(std::string& ip, int& port) const override { address(&::getsockname, ip, port); }
  [[nodiscard]] socket_t socket() const override { return socket_; }

  /// Waits for the next request on the same connection. After one that was too long nothing on it can be
  /// understood any more.
  bool next() {
    if (overflowed_ || bodyRefused_) return false;
    if (used_ == filled_) {
      waits_(true);
      const bool ready = ReadyBefore(SteadyClock::now() + limits_.idle, socket_, POLLIN);
      waits_(false);
      if (!ready) return false;
    }
    end_ = SteadyClock::now() + limits_.whole;
    read_ = 0;
    lineLength_ = 0;
    inBody_ = false;
    return true;
  }

  /// Takes what a peer goes on sending of a body that was refused, so that the answer reaches it: a
  /// connection closed with bytes unread is reset, and takes the answer along.
  void drainBody() {
    if (!bodyRefused_) return;
    ::shutdown(socket_, SHUT_WR);
    end_ = SteadyClock::now() + limits_.drained;
    for (std::size_t taken = 0; taken < limits_.leftOver && fill(); taken += filled_) {
    }
  }

 private:
  bool fill() {
    waits_(true);
    ssize_t got = -1;
    while (ReadyBefore(end_, socket_, POLLIN)) {
      got = ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
      if (got >= 0 || (errno != EAGAIN && errno != EINTR)) break;
    }
    waits_(false);
    if (got <= 0) return false;
    used_ = 0;
    filled_ = static_cast<std::size_t>(got);
    return true;
  }

  bool countRead(std::string_view part) {
    read_ += part.size();
    for (std::size_t i = 0; !inBody_ && i < part.size(); ++i) {
      if (part[i] == '\n') {
        inBody_ = lineLength_ == 0;
        lineLength_ = 0;
      } else if (part[i] != '\r') {
        ++lineLength_;
      }
    }
    overflowed_ = read_ > (inBody_ ? limits_.request : limits_.head);
    return !overflowed_;
  }

  template <class Ask>
  void address(Ask ask, std::string& ip, int& port) const {
    sockaddr_storage storage{};
    socklen_t size = sizeof storage;
    auto* peer = reinterpret_cast<sockaddr*>(&storage);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    if (ask(socket_, peer, &size) != 0 ||
        ::getnameinfo(peer, size, host.data(), host.size(), service.data(), service.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
      return;
    }
    ip = host.data();
    port = std::stoi(service.data());
  }

  socket_t socket_;
  const WebLimits& limits_;
  std::function<void(bool)> waits_;
  Time end_;
  std::array<char, 4096> buffer_{};
  std::size_t used_ = 0;
  std::size_t filled_ = 0;
  std::size_t read_ = 0;
  std::size_t lineLength_ = 0;
  bool inBody_ = false;
  bool overflowed_ = false;
  bool bodyRefused_ = false;
};

/// Threads for so many connections; one too many takes the place of one that keeps us waiting.
class GuardedQueue : public httplib::TaskQueue {
 public:
  GuardedQueue(const WebLimits& limits, WebConnections& connections)
      : limits_(limits), connections_(connections), threads_(limits.threads) {}
  void enqueue(std::function<void()> work) override {
    if (++pending_ > static_cast<int>(limits_.connections)) connections_.makeRoom();
    threads_.enqueue([this, work = std::move(work)] {
      work();
      --pending_;
    });
  }
  void shutdown() override { threads_.shutdown(); }

 private:
  const WebLimits& limits_;
  WebConnections& connections_;
  std::atomic<int> pending_ = 0;
  httplib::ThreadPool threads_;
};

}  // namespace

WebConnections::Entry WebConnections::add(socket_t socket) {
  const std::lock_guard lock(mutex_);
  if (ending_) ::shutdown(socket, SHUT_RD);
  return open_.insert(open_.end(), WebConnection{socket});
}

void WebConnections::remove(Entry entry) {
  const std::lock_guard lock(mutex_);
  if (!entry->ended && owed_ > 0) --owed_;
  ::shutdown(entry->socket, SHUT_RDWR);
  ::close(entry->socket);  // under the lock: nobody ends another one that has got its number
  open_.erase(entry);
}

void WebConnections::waits(Entry entry, bool value) {
  const std::lock_guard lock(mutex_);
  entry->waits = value;
  if (!value || owed_ == 0 || entry->ended) return;
  --owed_;
  end(*entry);
}

std::size_t WebConnections::count() const {
  const std::lock_guard lock(mutex_);
  return open_.size();
}

bool WebConnections::ending() const {
  const std::lock_guard lock(mutex_);
  return ending_;
}

void WebConnections::end(WebConnection& connection) {
  ::shutdown(connection.socket, SHUT_RDWR);
  connection.ended = true;  // the next one makes room by another
}

void WebConnections::makeRoom() {
  const std::lock_guard lock(mutex_);
  const auto oldest =
      std::find_if(open_.begin(), open_.end(), [](const auto& each) { return each.waits && !each.ended; });
  if (oldest != open_.end()) {
    end(*oldest);
  } else {
    ++owed_;
  }
}

void WebConnections::endReading() {
  const std::lock_guard lock(mutex_);
  ending_ = true;
  for (const WebConnection& each : open_) ::shutdown(each.socket, SHUT_RD);
}

void WebConnections::endAll() {
  const std::lock_guard lock(mutex_);
  ending_ = true;
  for (const WebConnection& each : open_) ::shutdown(each.socket, SHUT_RDWR);
}

GuardedServer::GuardedServer(const WebLimits& limits) : limits_(limits) {
  new_task_queue = [this] { return new GuardedQueue(limits_, connections_); };
}

void GuardedServer::stopNow() {
  // A server that has not begun yet would not notice its stop.
  for (int i = 0; i < 2000 && !is_running(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  connections_.endReading();
  stop();
  const Time end = SteadyClock::now() + std::chrono::seconds(1);
  while (connections_.count() > 0 && SteadyClock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  connections_.endAll();
}

bool GuardedServer::process_and_close_socket(socket_t socket) {
  const auto entry = connections_.add(socket);
  GuardedStream stream(socket, limits_, [&](bool value) { connections_.waits(entry, value); });
  bool good = true;
  bool closed = false;
  for (int left = limits_.requests; good && !closed && left > 0; --left) {
    if (connections_.ending() || !stream.next()) break;
    good = process_request(stream, left == 1, closed, nullptr);
  }
  stream.drainBody();
  connections_.remove(entry);
  return good;
}

}  // namespace standin
