#include "standin/http/GuardedStream.hpp"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>

namespace standin {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// Takes the step as soon as the socket lets it, if that is before the time is over; nothing otherwise.
template <class Step>
std::optional<std::size_t> TakenBefore(SteadyClock::time_point end, socket_t socket, Step step) {
  for (;;) {
    const Channel::Step taken = step();
    if (taken.state == Channel::State::kMoved) return taken.count;
    if (taken.state == Channel::State::kEnded) return std::nullopt;
    if (!ReadyBefore(end, socket, taken.state == Channel::State::kReads ? POLLIN : POLLOUT))
      return std::nullopt;
  }
}

template <class Ask>
void Address(socket_t socket, Ask ask, std::string& ip, int& port) {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  auto* peer = reinterpret_cast<sockaddr*>(&storage);
  std::array<char, NI_MAXHOST> host{};
  std::array<char, NI_MAXSERV> service{};
  if (ask(socket, peer, &size) != 0 || ::getnameinfo(peer, size, host.data(), host.size(), service.data(),
                                                     service.size(), NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
    return;
  }
  ip = host.data();
  port = std::stoi(service.data());
}

}  // namespace

bool ReadyBefore(std::chrono::steady_clock::time_point end, socket_t socket, short events) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - SteadyClock::now());
    pollfd one{socket, events, 0};
    const int ready = ::poll(&one, 1, static_cast<int>(std::max<std::int64_t>(0, left.count())));
    if (ready > 0) return (one.revents & (events | POLLHUP | POLLERR)) != 0;
    if (ready == 0 || errno != EINTR) return false;
  }
}

GuardedStream::GuardedStream(socket_t socket, Channel& channel, const WebLimits& limits,
                             std::function<void(bool)> waits)
    : socket_(socket),
      channel_(channel),
      limits_(limits),
      waits_(std::move(waits)),
      end_(SteadyClock::now() + limits.whole) {}

bool GuardedStream::is_readable() const { return channel_.holds() || ReadyBefore(end_, socket_, POLLIN); }

bool GuardedStream::is_writable() const {
  if (!ReadyBefore(SteadyClock::now() + limits_.answered, socket_, POLLOUT)) return false;
  char next = 0;
  const ssize_t got = ::recv(socket_, &next, 1, MSG_PEEK | MSG_DONTWAIT);
  return got > 0 || (got < 0 && (errno == EAGAIN || errno == EINTR));
}

ssize_t GuardedStream::read(char* into, std::size_t size) {
  if (used_ == filled_ && !fill()) return -1;
  const std::size_t count = std::min(size, filled_ - used_);
  std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(used_), count, into);
  used_ += count;
  return countRead(std::string_view(into, count)) ? static_cast<ssize_t>(count) : -1;
}

ssize_t GuardedStream::write(const char* data, std::size_t size) {
  // What follows such an answer on the connection may be the body that it refuses.
  const std::string_view text(data, size);
  if (text.starts_with("HTTP/1.1 4") && text.find("\r\nConnection: close\r\n") != std::string_view::npos) {
    bodyRefused_ = true;
  }
  const Time end = SteadyClock::now() + limits_.answered;
  std::size_t sent = 0;
  while (sent < size) {
    const auto count = TakenBefore(end, socket_, [&] { return channel_.send(data + sent, size - sent); });
    if (!count) return -1;
    sent += *count;
  }
  return static_cast<ssize_t>(size);
}

void GuardedStream::get_remote_ip_and_port(std::string& ip, int& port) const {
  Address(socket_, &::getpeername, ip, port);
}

void GuardedStream::get_local_ip_and_port(std::string& ip, int& port) const {
  Address(socket_, &::getsockname, ip, port);
}

bool GuardedStream::begin() {
  waits_(true);
  const bool begun = TakenBefore(end_, socket_, [&] { return channel_.begin(); }).has_value();
  waits_(false);
  return begun;
}

bool GuardedStream::next() {
  if (overflowed_ || bodyRefused_) return false;
  if (used_ == filled_ && !channel_.holds()) {
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

void GuardedStream::drainBody() {
  if (!bodyRefused_) return;
  channel_.endSending();
  end_ = SteadyClock::now() + limits_.drained;
  for (std::size_t taken = 0; taken < limits_.leftOver && fill(); taken += filled_) {
  }
}

bool GuardedStream::fill() {
  waits_(true);
  const auto count =
      TakenBefore(end_, socket_, [&] { return channel_.receive(buffer_.data(), buffer_.size()); });
  waits_(false);
  if (!count) return false;
  used_ = 0;
  filled_ = *count;
  return true;
}

bool GuardedStream::countRead(std::string_view part) {
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

}  // namespace standin
