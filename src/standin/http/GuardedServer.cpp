#include "standin/http/GuardedServer.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>
#include <thread>

#include "base/Text.hpp"

namespace standin {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Time = SteadyClock::time_point;

/// Connections that the system takes for us meanwhile. The library has it take 5: a browser that comes sixth
/// begins again a second later.
constexpr int kBacklog = 512;

/// Threads for so many connections; one too many takes the place of one that keeps us waiting.
class GuardedQueue : public httplib::TaskQueue {
 public:
  GuardedQueue(const WebLimits& limits, WebConnections& connections)
      : limits_(limits), connections_(connections), threads_(limits.threads) {}
  void enqueue(std::function<void()> work) override {
    if (pending_ >= static_cast<int>(limits_.connections + limits_.queued)) {
      // The descriptors are the house's too. The work does nothing but close the connection.
      connections_.shed(work);
      return;
    }
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

/// Whether a list of ways to pack, such as "gzip;q=0.5, br", takes this one; a weight of 0 refuses it.
bool TakesGzip(std::string_view list) {
  while (!list.empty()) {
    std::string_view way = list.substr(0, list.find(','));
    list.remove_prefix(std::min(way.size() + 1, list.size()));
    const std::size_t end = std::min(way.find(';'), way.size());
    if (!base::SameText(base::TrimBlanks(way.substr(0, end)), "gzip")) continue;
    way.remove_prefix(end);
    const std::size_t weight = way.find("q=");
    return weight == std::string_view::npos ||
           way.find_first_of("123456789", weight) != std::string_view::npos;
  }
  return false;
}

/// Of the ways to pack an answer the library takes the dearest one, thirty times the work of this one.
void PackCheaply(httplib::Request& request) {
  constexpr const char* kAccepted = "Accept-Encoding";
  bool packs = false;
  for (std::size_t i = 0; i < request.get_header_value_count(kAccepted); ++i)
    packs = packs || TakesGzip(request.get_header_value(kAccepted, i));
  request.headers.erase(kAccepted);
  if (packs && !request.has_header("Range")) request.headers.emplace(kAccepted, "gzip");
}

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

void WebConnections::waits(Entry entry, Waits value) {
  const std::lock_guard lock(mutex_);
  entry->waits = value;
  if (value != Waits::kLong || owed_ == 0 || entry->ended) return;
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
  const auto oldest = std::find_if(
      open_.begin(), open_.end(), [](const auto& each) { return each.waits == Waits::kLong && !each.ended; });
  if (oldest != open_.end()) {
    end(*oldest);
  } else {
    ++owed_;
  }
}

bool WebConnections::owesRoom() const {
  const std::lock_guard lock(mutex_);
  return owed_ > 0;
}

void WebConnections::shed(const std::function<void()>& work) {
  shedder_ = std::this_thread::get_id();
  work();
  shedder_ = std::thread::id();
}

bool WebConnections::shedsHere() const { return shedder_ == std::this_thread::get_id(); }

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

int GuardedServer::bind(const std::string& address, int port) {
  const int bound = port == 0 ? bind_to_any_port(address) : bind_to_port(address, port) ? port : -1;
  if (bound > 0) ::listen(svr_sock_, kBacklog);
  return bound;
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
  if (connections_.shedsHere()) {
    ::close(socket);
    return false;
  }
  const auto entry = connections_.add(socket);
  const bool good = serve(socket, entry);
  connections_.remove(entry);
  return good;
}

bool GuardedServer::serve(socket_t socket, WebConnections::Entry entry) {
  const auto waits = [&](Waits value) { connections_.waits(entry, value); };
  if (identity_ != nullptr && !firstIsTls(socket, waits)) return false;
  const std::unique_ptr<Channel> channel =
      identity_ != nullptr ? identity_->channel(socket) : std::make_unique<PlainChannel>(socket);
  GuardedStream stream(socket, *channel, limits_, waits);
  bool good = stream.begin();
  bool last = false;
  bool closed = false;
  for (int left = limits_.requests; good && !last && !closed; --left) {
    if (connections_.ending() || !stream.next()) break;
    // While others wait for room, each answer is the last: who asks on and on would hold his place by it.
    last = left <= 1 || connections_.owesRoom();
    good = process_request(stream, last, closed, [](httplib::Request& request) {
      // The library would cut any answer, under any status, and pack the part.
      request.ranges.clear();
      PackCheaply(request);
    });
  }
  stream.drainBody();
  channel->endSending();
  return good;
}

bool GuardedServer::firstIsTls(socket_t socket, const std::function<void(Waits)>& waits) {
  char first = 0;
  Patience patience = limits_.brief;
  const bool said = Awaited(SteadyClock::now() + limits_.whole, patience, waits,
                            [&](Time end) { return ReadyBefore(end, socket, POLLIN); }) &&
                    ::recv(socket, &first, 1, MSG_PEEK | MSG_DONTWAIT) == 1;
  if (!said || BeginsTls(first)) return said;
  // An address that is typed begins by plain http.
  PlainChannel plain(socket);
  GuardedStream stream(socket, plain, limits_, waits);
  stream.refuse({}, "text/plain; charset=utf-8",
                "This server speaks https: its address begins with https://\n");
  stream.drainBody();
  return false;
}

}  // namespace standin
