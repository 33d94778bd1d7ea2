#pragma once
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// Waits until `condition` holds, at most `limit`. True when it did.
template <class Condition>
bool Eventually(Condition&& condition, std::chrono::milliseconds limit = std::chrono::minutes(2)) {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

/// A program that a test runs; killed with its owner. Its standard output and error are read as one text.
class Process {
 public:
  /// `words`: the program, found on the path, and its arguments. `variables` ("NAME=value") come on top of
  /// the test's own.
  explicit Process(std::vector<std::string> words, const std::vector<std::string>& variables = {}) {
    if (!variables.empty()) {
      words.insert(words.begin(), variables.begin(), variables.end());
      words.insert(words.begin(), "env");
    }
    // A test that is killed takes its programs along.
    words.insert(words.begin(), {"setpriv", "--pdeathsig", "KILL", "--"});
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    output_ = ends[0];
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 2);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int failed = ::posix_spawnp(&id_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failed != 0) throw std::runtime_error("can't run " + words.front());
  }
  ~Process() {
    kill();
    ::close(output_);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  Process(Process&&) = delete;
  Process& operator=(Process&&) = delete;

  [[nodiscard]] pid_t id() const { return id_; }
  void signal(int number) const {
    if (id_ > 0) ::kill(id_, number);
  }
  /// Ends it at once, as a pulled plug would.
  void kill() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    int status = 0;
    ::waitpid(id_, &status, 0);
    id_ = -1;
  }
  /// Its exit code, or -1 when it does not end by itself in time.
  int wait(std::chrono::milliseconds limit = std::chrono::minutes(2)) {
    int status = 0;
    const bool ended = Eventually(
        [&] {
          read(std::chrono::milliseconds(0));
          return ::waitpid(id_, &status, WNOHANG) == id_;
        },
        limit);
    if (!ended) return -1;
    id_ = -1;
    read(std::chrono::milliseconds(0));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// All that it has written so far.
  const std::string& output() {
    read(std::chrono::milliseconds(0));
    return text_;
  }
  /// Waits for a text in its output and gives all of it. Throws when it does not come.
  const std::string& outputWith(const std::string& wanted,
                                std::chrono::milliseconds limit = std::chrono::minutes(2)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (text_.find(wanted) == std::string::npos) {
      if (std::chrono::steady_clock::now() > end || !read(std::chrono::milliseconds(200)))
        throw std::runtime_error("no '" + wanted + "' in: " + text_);
    }
    return text_;
  }

 private:
  /// False at the end of the output.
  bool read(std::chrono::milliseconds limit) {
    for (int wait = static_cast<int>(limit.count());; wait = 0) {
      pollfd ready{output_, POLLIN, 0};
      if (::poll(&ready, 1, wait) <= 0) return true;
      std::array<char, 4096> piece{};
      const auto got = ::read(output_, piece.data(), piece.size());
      if (got <= 0) return false;
      text_.append(piece.data(), static_cast<std::size_t>(got));
    }
  }

  pid_t id_ = -1;
  int output_ = -1;
  std::string text_;
};

}  // namespace support
