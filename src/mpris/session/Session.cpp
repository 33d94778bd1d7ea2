#include "mpris/session/Session.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "base/Attempt.hpp"
#include "bus/Errors.hpp"
#include "bus/Paths.hpp"

namespace mpris {

using base::Milliseconds;

namespace {

/// By the clock that the bus library tells its limits in.
std::uint64_t MonotonicMicroseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000U +
         static_cast<std::uint64_t>(now.tv_nsec) / 1000U;
}

}  // namespace

Session::Session(Parts parts, const Exported& object)
    : parts_(std::move(parts)),
      object_(object),
      retry_(parts_.loop.makeTimer(kFirstPause, [this] { attempt(); })),
      timeout_(parts_.loop.makeTimer(kLongestPause, [this] { process(); })) {}

void Session::open() {
  if (!bus_ && !retry_->enabled()) attempt();
}

void Session::attempt() {
  retry_->enabled(false);
  const std::string address = parts_.address();
  if (address.empty() || !connect(address)) return lost();
  process();
}

bool Session::connect(const std::string& address) {
  sd_bus* made = nullptr;
  if (sd_bus_new(&made) < 0) return false;
  bus_.reset(made);
  ++generation_;
  if (sd_bus_set_address(made, address.c_str()) < 0 || sd_bus_set_bus_client(made, 1) < 0) return false;
  sd_bus_slot* slot = nullptr;
  const int added = sd_bus_add_filter(
      made, &slot,
      [](sd_bus_message* message, void* self, sd_bus_error*) {
        return static_cast<Session*>(self)->received(message);
      },
      this);
  filter_.reset(slot);
  return added >= 0 && sd_bus_start(made) >= 0;
}

/// Whoever holds the other end is the user himself, whatever the address says.
bool Session::isOwn() const {
  ucred peer{};
  socklen_t size = sizeof peer;
  const int got = ::getsockopt(sd_bus_get_fd(bus_.get()), SOL_SOCKET, SO_PEERCRED, &peer, &size);
  return got == 0 && peer.uid == parts_.user;
}

void Session::close() {
  ready_ = asked_ = askedOther_ = blocked_ = false;
  watch_.reset();
  watched_ = -1;
  timeout_->enabled(false);
  calls_.clear();
  naming_.reset();
  filter_.reset();
  bus_.reset();
}

void Session::lost() {
  close();
  retry_->interval(pause_);
  retry_->enabled(true);
  pause_ = std::min(2 * pause_, kLongestPause);
}

void Session::process() {
  // What waits to be sent goes first, also while no more calls are taken in.
  for (bool sends = true; bus_ && (sends || calls_.size() < kMostHeld); sends = false) {
    const int result = sd_bus_process(bus_.get(), nullptr);
    if (result < 0) return lost();
    if (result == 0) break;
  }
  if (!bus_) return;
  if (!asked_ && sd_bus_is_ready(bus_.get()) > 0) {
    if (!isOwn()) return lost();
    asked_ = true;
    requestName(parts_.name);
  }
  if (bus_) watchWhat();
  if (bus_ && blocked_ && canSend()) {
    blocked_ = false;
    serveSoon();
    if (ready_) post(parts_.flowing);
  }
}

void Session::watchWhat() {
  const int descriptor = sd_bus_get_fd(bus_.get());
  int events = sd_bus_get_events(bus_.get());
  if (descriptor < 0 || events < 0) return lost();
  const bool full = calls_.size() >= kMostHeld;
  if (full) events &= ~POLLIN;
  if (descriptor != watched_) {
    watch_ = parts_.loop.watch(descriptor, 0, [this](short) { process(); });
    watched_ = descriptor;
  }
  watch_->events(static_cast<short>(events));
  std::uint64_t until = 0;
  const bool limited = !full && sd_bus_get_timeout(bus_.get(), &until) > 0 && until != UINT64_MAX;
  if (limited) {
    const std::uint64_t now = MonotonicMicroseconds();
    timeout_->interval(Milliseconds(until > now ? (until - now) / 1000 + 1 : 1));
  }
  timeout_->enabled(limited);
}

void Session::requestName(const std::string& name) {
  sd_bus_slot* slot = nullptr;
  const int sent = sd_bus_request_name_async(
      bus_.get(), &slot, name.c_str(), 0,
      [](sd_bus_message* reply, void* self, sd_bus_error*) {
        static_cast<Session*>(self)->nameAnswered(reply);
        return 1;
      },
      this);
  naming_.reset(slot);
  // The bus library is not to be let go of from within itself.
  if (sent < 0) post([this] { lost(); });
}

void Session::nameAnswered(sd_bus_message* reply) {
  constexpr std::uint32_t kOwner = 1;
  constexpr std::uint32_t kOwnerAlready = 4;
  std::uint32_t answer = 0;
  const bool told = sd_bus_message_is_method_error(reply, nullptr) == 0 &&
                    sd_bus_message_read_basic(reply, SD_BUS_TYPE_UINT32, &answer) > 0;
  if (told && (answer == kOwner || answer == kOwnerAlready)) {
    ready_ = true;
    pause_ = kFirstPause;
    return post([this] {
      if (ready_) parts_.opened();
    });
  }
  post([this, again = !std::exchange(askedOther_, true)] {
    if (!bus_) return;
    // Another house of this user has it; the interface says how the second one is called then.
    if (!again) return lost();
    requestName(parts_.name + ".instance" + std::to_string(::getpid()));
    watchWhat();
  });
}

int Session::received(sd_bus_message* message) {
  std::uint8_t type = 0;
  sd_bus_message_get_type(message, &type);
  if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
  if (std::string_view(bus::OrEmpty(sd_bus_message_get_interface(message))) == bus::kPeer) return 0;
  base::Attempt step;
  step([&] {
    calls_.push_back(object_.admit(message));
    serveSoon();
  });
  return 1;
}

void Session::serveSoon() {
  if (calls_.empty() || serving_ || std::exchange(servesSoon_, true)) return;
  post([this] {
    servesSoon_ = false;
    serve();
  });
}

/// What is done for a call may turn the loop, and the bus may go meanwhile.
void Session::serve() {
  if (calls_.empty() || serving_) return;
  if (!canSend()) {
    blocked_ = true;
    return;
  }
  Exported::Call call = std::move(calls_.front());
  calls_.pop_front();
  const int generation = generation_;
  serving_ = true;
  base::Attempt step;
  step([&] {
    const bus::Message reply = object_.answer(std::move(call));
    if (generation == generation_ && bus_) send(reply);
  });
  serving_ = false;
  process();
  serveSoon();
}

bool Session::canSend() {
  const int events = bus_ ? sd_bus_get_events(bus_.get()) : -1;
  if (events < 0) return false;
  if ((events & POLLOUT) != 0) {
    blocked_ = true;
    return false;
  }
  return true;
}

void Session::send(const bus::Message& message) {
  // A bus that has gone is noticed by the next look at it.
  static_cast<void>(sd_bus_send(bus_.get(), message.get(), nullptr));
}

void Session::emit(const std::string& interface, const std::string& name, const Values& values) {
  if (!ready_) return;
  sd_bus_message* made = nullptr;
  bus::Check(
      sd_bus_message_new_signal(bus_.get(), &made, object_.path().c_str(), interface.c_str(), name.c_str()));
  const bus::Message signal(made);
  for (const Value& value : values) Append(made, value, SignatureOf(value));
  send(signal);
  watchWhat();
}

void Session::post(std::function<void()> work) {
  parts_.loop.post([alive = std::weak_ptr<char>(alive_), work = std::move(work)] {
    if (!alive.expired()) work();
  });
}

}  // namespace mpris
