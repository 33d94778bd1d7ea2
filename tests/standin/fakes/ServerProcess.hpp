#pragma once
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/ReadFile.hpp"

namespace support {

/// The server's program, run as its users run it.
class ServerProcess {
 public:
  /// Waits for the server's line, or for its end when it refuses to start.
  ServerProcess(const std::string& bus, const std::filesystem::path& data,
                const std::vector<std::string>& more = {})
      : errors_(data.string() + ".stderr") {
    std::vector<std::string> words{STANDIN_PROGRAM, "--bus", bus, "--data", data.string()};
    words.insert(words.end(), more.begin(), more.end());
    if (std::find(more.begin(), more.end(), "--port") == more.end())
      words.insert(words.end(), {"--port", "0"});
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, errors_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int failed =
        ::posix_spawn(&process_, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failed != 0) throw std::runtime_error("the server can't be started");
    char character = 0;
    while (::read(ends[0], &character, 1) == 1 && character != '\n') line_ += character;
    ::close(ends[0]);
  }
  ~ServerProcess() {
    if (process_ > 0) end(SIGKILL);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ServerProcess(ServerProcess&&) = delete;
  ServerProcess& operator=(ServerProcess&&) = delete;

  /// What it said when it was ready.
  [[nodiscard]] const std::string& line() const { return line_; }
  [[nodiscard]] int port() const { return std::stoi(line_.substr(line_.rfind(':') + 1)); }
  /// The owner's key in that line; empty where a password is needed.
  [[nodiscard]] std::string key() const {
    const auto at = line_.find("?key=");
    return at == std::string::npos ? std::string() : line_.substr(at + 5);
  }
  /// The address in that line, with the key: for a browser of the owner's.
  [[nodiscard]] std::string address() const { return line_.substr(line_.find("http")); }
  [[nodiscard]] std::string errors() const { return files::TextOf(errors_).value_or(""); }
  /// Sends the signal and waits; the exit code, or minus the signal that ended it.
  int end(int signal = SIGTERM) {
    ::kill(process_, signal);
    return wait();
  }
  int wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  std::string errors_;
  pid_t process_ = -1;
  std::string line_;
};

}  // namespace support
