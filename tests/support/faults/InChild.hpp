#pragma once
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <functional>

namespace support {

/// Runs a part of a test in a process of its own, so that what it does to its rights and its mounts ends with
/// it. True when none of its expectations failed; what failed is on the test's output.
inline bool InChild(const std::function<void()>& part) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) return false;
  if (child == 0) {
    int code = 0;
    try {
      part();
      code = ::testing::Test::HasFailure() ? 1 : 0;
    } catch (const std::exception& failure) {
      std::fprintf(stderr, "in the child: %s\n", failure.what());
      code = 2;
    }
    std::fflush(nullptr);
    ::_exit(code);
  }
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace support
