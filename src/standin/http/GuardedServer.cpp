#include "standin/http/GuardedServer.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>
#include <thread>

namespace standin {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Time = SteadyClock::time_point;

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
  const bool good = serve(socket, entry);
  connections_.remove(entry);
  return good;
}

bool GuardedServer::serve(socket_t socket, WebConnections::Entry entry) {
  const auto waits = [&](bool value) { connections_.waits(entry, value); };
  if (identity_ != nullptr && !firstIsTls(socket, waits)) return false;
  const std::unique_ptr<Channel> channel =
      identity_ != nullptr ? identity_->channel(socket) : std::make_unique<PlainChannel>(socket);
  GuardedStream stream(socket, *channel, limits_, waits);
  bool good = stream.begin();
  bool closed = false;
  for (int left = limits_.requests; good && !closed && left > 0; --left) {
    if (connections_.ending() || !stream.next()) break;
    good = process_request(stream, left == 1, closed, nullptr);
  }
  stream.drainBody();
  channel->endSending();
  return good;
}

bool GuardedServer::firstIsTls(socket_t socket, const std::function<void(bool)>& waits) {
  waits(true);
  char first = 0;
  const bool said = ReadyBefore(SteadyClock::now() + limits_.whole, socket, POLLIN) &&
                    ::recv(socket, &first, 1, MSG_PEEK | MSG_DONTWAIT) == 1;
  waits(false);
  if (!said || BeginsTls(first)) return said;
  // An address that is typed begins by plain http.
  constexpr std::string_view kText = "This server speaks https: its address begins with https://\n";
  const std::string answer =
      "HTTP/1.1 400 Bad Request\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
      std::to_string(kText.size()) + "\r\nConnection: close\r\n\r\n" + std::string(kText);
  PlainChannel plain(socket);
  GuardedStream stream(socket, plain, limits_, waits);
  stream.write(answer.data(), answer.size());
  stream.drainBody();
  return false;
}

}  // namespace standin
