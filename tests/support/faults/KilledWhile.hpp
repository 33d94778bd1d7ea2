#pragma once
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <random>
#include <stdexcept>
#include <thread>

namespace support {

/// Tells, from the process that is to be killed, that everything up to this number has been done.
using Acknowledge = std::function<void(int)>;

/// Runs `work`, which never ends by itself, in a process of its own. Once it has acknowledged `count` times
/// it is killed, as a pulled plug would, at a moment within the next milliseconds that chance chooses.
/// Answers the last number that was acknowledged; none if the work ended before.
inline std::optional<int> KilledWhile(int count, const std::function<void(const Acknowledge&)>& work) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    ::close(ends[0]);
    try {
      work([&](int number) {
        if (::write(ends[1], &number, sizeof number) != sizeof number) ::_exit(1);
      });
    } catch (...) {
      ::_exit(2);
    }
    ::_exit(3);
  }
  ::close(ends[1]);
  std::optional<int> last;
  const auto next = [&] {
    int number = 0;
    if (::read(ends[0], &number, sizeof number) != static_cast<ssize_t>(sizeof number)) return false;
    last = number;
    return true;
  };
  bool running = true;
  for (int told = 0; running && told < count; ++told) running = next();
  std::this_thread::sleep_for(std::chrono::microseconds(std::random_device{}() % 3000));
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  while (next()) {
  }
  ::close(ends[0]);
  return running && WIFSIGNALED(status) ? last : std::nullopt;
}

}  // namespace support
