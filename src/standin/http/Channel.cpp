#include "standin/http/Channel.hpp"

#include <sys/socket.h>

#include <cerrno>

namespace standin {
namespace {

Channel::Step StepOf(ssize_t count, Channel::State wants) {
  if (count > 0) return {.state = Channel::State::kMoved, .count = static_cast<std::size_t>(count)};
  const bool again = count < 0 && (errno == EAGAIN || errno == EINTR);
  return {.state = again ? wants : Channel::State::kEnded};
}

}  // namespace

Channel::Step PlainChannel::receive(char* into, std::size_t size) {
  return StepOf(::recv(socket_, into, size, MSG_DONTWAIT), State::kReads);
}

Channel::Step PlainChannel::send(const char* from, std::size_t size) {
  return StepOf(::send(socket_, from, size, MSG_NOSIGNAL | MSG_DONTWAIT), State::kWrites);
}

void PlainChannel::endSending() { ::shutdown(socket_, SHUT_WR); }

}  // namespace standin
