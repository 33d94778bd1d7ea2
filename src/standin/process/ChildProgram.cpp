#include "standin/process/ChildProgram.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace standin {
namespace {

constexpr std::size_t kLongestComplaint = 500;
constexpr std::size_t kMostAtOnce = std::size_t{1} << 20U;

struct Pair {
  files::Descriptor ours;
  files::Descriptor theirs;
};

/// A socket tells a process that has gone by an error, where a pipe would end this one.
Pair Sockets() {
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
    throw std::runtime_error(std::strerror(errno));
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return {files::Descriptor(ends[0]), files::Descriptor(ends[1])};
}

std::vector<std::string> Environment(const std::vector<const char*>& names) {
  std::vector<std::string> all;
  for (const char* name : names) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody changes it
    if (value != nullptr) all.push_back(std::string(name) + "=" + value);
  }
  return all;
}

/// As programs are given them. The texts have to outlive it.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> all;
  all.reserve(texts.size() + 1);
  for (std::string& text : texts) all.push_back(text.data());
  all.push_back(nullptr);
  return all;
}

/// Some of what there is to be read now, as one who writes without a pause would hold the loop; false once
/// the other side has gone.
bool ReadInto(int descriptor, std::string& text) {
  std::array<char, 65536> part;  // NOLINT(cppcoreguidelines-pro-type-member-init): read into
  for (std::size_t all = 0; all < kMostAtOnce;) {
    const ssize_t got = ::recv(descriptor, part.data(), part.size(), MSG_DONTWAIT);
    if (got > 0) {
      const auto some = static_cast<std::size_t>(got);
      text.append(part.data(), some);
      all += some;
      if (some < part.size()) return true;  // that was all; the next look tells of an end
    } else if (got == 0 || (errno != EINTR)) {
      return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
  }
  return true;
}

/// How it has ended; nothing where it hasn't.
std::optional<int> EndOf(pid_t process, int how) {
  int status = 0;
  while (true) {
    const pid_t ended = ::waitpid(process, &status, how);
    if (ended == 0) return std::nullopt;
    if (ended > 0 || errno != EINTR) return status;
  }
}

/// A process that was told to end is gone in a moment, but for one that a driver of the system's holds: that
/// one is waited for elsewhere.
std::optional<int> Bury(pid_t process) {
  constexpr int kMoments = 10;
  for (int i = 0; i < kMoments; ++i) {
    if (const auto status = EndOf(process, WNOHANG)) return status;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  try {
    std::thread([process] { EndOf(process, 0); }).detach();
  } catch (const std::system_error&) {  // nobody is hurt by a process that has ended and wasn't asked why
  }
  return std::nullopt;
}

/// The end of what a process has complained of, which tells most.
std::string Shortened(std::string complaint) {
  if (complaint.size() > kLongestComplaint) complaint.erase(0, complaint.size() - kLongestComplaint);
  return complaint;
}

}  // namespace

ChildProgram::ChildProgram(bus::PollLoop& loop, const Command& command, Told told)
    : loop_(loop), told_(std::move(told)) {
  try {
    start(command);
  } catch (const std::exception& failure) {
    endSoon(failure.what());
  }
}

ChildProgram::~ChildProgram() { kill(); }

void ChildProgram::start(const Command& command) {
  Pair in = Sockets();
  Pair out = Sockets();
  Pair errors = Sockets();
  std::vector<std::string> words{command.program.string()};
  words.insert(words.end(), command.arguments.begin(), command.arguments.end());
  std::vector<std::string> variables = Environment(command.environment);
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.theirs.get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.theirs.get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.theirs.get(), STDERR_FILENO);
  // Not everything here is marked as the server's own: the web's connections aren't.
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  // The loop blocks the signals that it watches; a child would never hear them.
  posix_spawnattr_t attributes{};
  posix_spawnattr_init(&attributes);
  sigset_t none{};
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  const int failed = ::posix_spawn(&process_, command.program.c_str(), &actions, &attributes,
                                   Pointers(words).data(), Pointers(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (failed != 0) {
    process_ = -1;
    throw std::runtime_error(command.program.string() + " can’t be started: " + std::strerror(failed));
  }
  in_ = std::move(in.ours);
  out_ = std::move(out.ours);
  errors_ = std::move(errors.ours);
  outWatch_ = loop_.watch(out_.get(), POLLIN, [this](short) { hear(); });
  errorWatch_ = loop_.watch(errors_.get(), POLLIN, [this](short) { hearErrors(); });
  inWatch_ = loop_.watch(in_.get(), 0, [this](short) { write(); });
}

std::optional<int> ChildProgram::kill() {
  if (process_ <= 0) return std::nullopt;
  ::kill(process_, SIGKILL);  // which changes nothing for one that has ended
  return Bury(std::exchange(process_, -1));
}

void ChildProgram::endSoon(std::string why) {
  if (std::exchange(ended_, true)) return;
  outWatch_.reset();
  errorWatch_.reset();
  inWatch_.reset();
  const std::optional<int> status = kill();
  if (status && WIFSIGNALED(*status)) signal_ = WTERMSIG(*status);
  why = Shortened(std::move(why));
  while (why.ends_with('\n')) why.pop_back();
  if (why.empty()) why = "It has ended";
  loop_.post([this, why = std::move(why), alive = std::weak_ptr(alive_)] {
    if (!alive.lock()) return;
    const auto end = std::move(told_.end);  // which may be the end of this object
    end(why);
  });
}

void ChildProgram::hearErrors() {
  const bool there = ReadInto(errors_.get(), complaint_);
  complaint_ = Shortened(std::move(complaint_));
  if (!there) errorWatch_.reset();
}

void ChildProgram::hear() {
  const bool there = ReadInto(out_.get(), come_);
  const auto alive = std::weak_ptr(alive_);
  told_.come(come_);
  if (!alive.lock() || ended_ || there) return;
  if (errorWatch_) hearErrors();
  endSoon(complaint_);
}

void ChildProgram::send(std::string message) {
  if (ended_ || message.empty()) return;
  toSend_.push_back(std::move(message));
  if (toSend_.size() == 1) write();
}

/// A piece now and in each turn of the loop: a network may have some hundred MiB.
void ChildProgram::write() {
  const std::string& message = toSend_.front();
  const std::size_t size = std::min(message.size() - sent_, kMostAtOnce);
  const ssize_t sent = ::send(in_.get(), message.data() + sent_, size, MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent < 0) {
    const bool later = errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
    inWatch_->events(later ? POLLOUT : 0);  // where it has gone, that is heard at the other end
    return;
  }
  sent_ += static_cast<std::size_t>(sent);
  if (sent_ == message.size()) {
    toSend_.pop_front();
    sent_ = 0;
  }
  inWatch_->events(toSend_.empty() ? 0 : POLLOUT);
}

}  // namespace standin
