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
                             std::function<void(Waits)> waits)
    : socket_(socket),
      channel_(channel),
      limits_(limits),
      waits_(std::move(waits)),
      end_(SteadyClock::now() + limits.whole),
      patience_(limits.brief) {}

bool GuardedStream::is_readable() const { return channel_.holds() || ReadyBefore(end_, socket_, POLLIN); }

bool GuardedStream::is_writable() const {
  // Whether the peer is there; it is waited for when something is written.
  char next = 0;
  const ssize_t got = ::recv(socket_, &next, 1, MSG_PEEK | MSG_DONTWAIT);
  return got > 0 || (got < 0 && (errno == EAGAIN || errno == EINTR));
}

ssize_t GuardedStream::read(char* into, std::size_t size) {
  if (headRead_ < head_.size()) {
    const std::size_t count = head_.copy(into, size, headRead_);
    headRead_ += count;
    return static_cast<ssize_t>(count);
  }
  if (body_.ended() || body_.broken() || (used_ == filled_ && !fill())) return -1;
  const std::size_t count = body_.take({&buffer_.at(used_), std::min(size, filled_ - used_)});
  std::copy_n(&buffer_.at(used_), count, into);
  used_ += count;
  return count > 0 ? static_cast<ssize_t>(count) : -1;
}

ssize_t GuardedStream::write(const char* data, std::size_t size) {
  answered_ = true;
  const Time end = SteadyClock::now() + limits_.answered;
  std::size_t sent = 0;
  while (sent < size) {
    const auto count = taken(end, [&] { return channel_.send(data + sent, size - sent); });
    if (!count) return -1;
    sent += *count;
  }
  return static_cast<ssize_t>(size);
}

template <class Step>
std::optional<std::size_t> GuardedStream::taken(Time end, const Step& step) {
  // What is there already keeps nobody waiting.
  if (const auto count = TakenBefore(Time(), socket_, step)) return count;
  return Awaited(end, patience_, waits_, [&](Time until) { return TakenBefore(until, socket_, step); });
}

void GuardedStream::get_remote_ip_and_port(std::string& ip, int& port) const {
  Address(socket_, &::getpeername, ip, port);
}

void GuardedStream::get_local_ip_and_port(std::string& ip, int& port) const {
  Address(socket_, &::getsockname, ip, port);
}

bool GuardedStream::begin() {
  return taken(end_, [&] { return channel_.begin(); }).has_value();
}

bool GuardedStream::next() {
  if (refused_ || ended_ || headRead_ < head_.size() || !body_.ended()) return false;
  if (used_ == filled_ && !channel_.holds() && !ReadyBefore(SteadyClock::now(), socket_, POLLIN)) {
    // Between two requests nobody is cut off, so that need not wait for anything.
    if (answered_) patience_ = Patience::zero();
    const bool ready = Awaited(SteadyClock::now() + limits_.idle, patience_, waits_,
                               [&](Time end) { return ReadyBefore(end, socket_, POLLIN); });
    if (!ready) return false;
  }
  patience_ = limits_.brief;
  end_ = SteadyClock::now() + limits_.whole;
  head_.clear();
  headRead_ = 0;
  return takeHead();
}

bool GuardedStream::takeHead() {
  constexpr HeadRefusal kTooLong{431, "Request Header Fields Too Large", "The request's head is too long"};
  std::size_t lineBegin = 0;
  for (;;) {
    if (used_ == filled_ && !fill()) return false;
    const char c = buffer_.at(used_++);
    head_ += c;
    if (head_.size() > limits_.head) {
      refuse(kTooLong);
      ended_ = true;  // nobody waits for the end of one that may have none
      return false;
    }
    if (c != '\n') continue;
    const std::string_view line = std::string_view(head_).substr(lineBegin);
    lineBegin = head_.size();
    const bool first = line.size() == head_.size();
    if (line == "\r\n" && !first) break;
    if (line == "\r\n" || !line.ends_with("\r\n")) {
      refuse({});
      return false;
    }
  }
  const std::variant<RequestHead, HeadRefusal> read = ReadHead(head_);
  if (const auto* refusal = std::get_if<HeadRefusal>(&read)) {
    refuse(*refusal);
    return false;
  }
  body_ = BodyFrame(std::get<RequestHead>(read), limits_.body);
  return true;
}

void GuardedStream::refuse(const HeadRefusal& why) {
  refuse(why, "application/json", R"({"error":")" + std::string(why.text) + R"("})");
}

void GuardedStream::refuse(const HeadRefusal& why, std::string_view type, std::string_view text) {
  std::string answer = "HTTP/1.1 " + std::to_string(why.status) + " ";
  answer.append(why.reason).append("\r\nContent-Type: ").append(type);
  answer += "\r\nX-Content-Type-Options: nosniff\r\nCache-Control: no-store\r\nContent-Length: " +
            std::to_string(text.size()) + "\r\nConnection: close\r\n\r\n";
  answer.append(text);
  refused_ = true;
  write(answer.data(), answer.size());
}

void GuardedStream::drainBody() {
  if (!answered_ || ended_ || (!refused_ && headRead_ == head_.size() && body_.ended())) return;
  channel_.endSending();
  end_ = SteadyClock::now() + limits_.drained;
  for (std::size_t taken = 0; taken < limits_.leftOver && fill(); taken += filled_) {
  }
}

bool GuardedStream::fill() {
  const auto count = taken(end_, [&] { return channel_.receive(buffer_.data(), buffer_.size()); });
  ended_ = !count;
  if (ended_) return false;
  used_ = 0;
  filled_ = *count;
  return true;
}

}  // namespace standin
