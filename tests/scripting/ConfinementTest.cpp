// What a script's process can ask of the system, tried in processes that do no more than that.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "scripting/lua/Confinement.hpp"

namespace {

/// How a process ends that prepares itself, is confined as a script's and then does this. Its code is what
/// the work answers.
int StatusOf(
    const std::function<int()>& work, const std::function<void()>& prepare = [] {}) {
  const pid_t process = ::fork();
  if (process == 0) {
    int code = 255;
    try {
      prepare();
      scripting::Confine();
      scripting::RefuseOtherCalls();
      code = work();
    } catch (...) {
      code = 254;
    }
    ::_exit(code);
  }
  int status = -1;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

/// The code with which it ends, -1 where a signal ends it.
int CodeOf(
    const std::function<int()>& work, const std::function<void()>& prepare = [] {}) {
  const int status = StatusOf(work, prepare);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The error of a call that answers less than 0 where it can't be made; 0 where it was.
int ErrorOf(const std::function<long()>& call) {
  return CodeOf([&] { return call() < 0 ? errno : 0; });
}

TEST(Confinement, RefusesWhatReachesOtherProcesses) {
  const pid_t self = ::getpid();
  EXPECT_EQ(ErrorOf([&] { return ::kill(self, 0); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::execl("/nowhere", "nowhere", nullptr); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::fork(); }), EPERM);
}

TEST(Confinement, RefusesFilesAndConnections) {
  EXPECT_EQ(ErrorOf([] { return ::unlink("/nowhere"); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::open("/nowhere", O_RDONLY | O_CLOEXEC); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::chdir("/"); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::socket(AF_UNIX, SOCK_STREAM, 0); }), EPERM);
  EXPECT_EQ(ErrorOf([] { return ::dup(STDIN_FILENO); }), EPERM);
}

TEST(Confinement, RefusesMemoryThatIsExecuted) {
  constexpr std::size_t kPage = 4096;
  const auto mapped = [](int allowed) {
    return ::mmap(nullptr, kPage, allowed, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  };
  EXPECT_EQ(ErrorOf([&] { return mapped(PROT_READ | PROT_EXEC) == MAP_FAILED ? -1 : 0; }), EPERM);
  EXPECT_EQ(ErrorOf([&] {
              void* place = mapped(PROT_READ | PROT_WRITE);
              if (place == MAP_FAILED) return 0;
              return ::mprotect(place, kPage, PROT_READ | PROT_EXEC);
            }),
            EPERM);
}

TEST(Confinement, LeavesMemoryTheTimeAndExceptions) {
  EXPECT_EQ(CodeOf([] { return std::vector<char>(std::size_t{64} << 20U, 'x').back(); }), 'x');
  EXPECT_EQ(CodeOf([] { return std::time(nullptr) > 0 && std::clock() >= 0 ? 7 : 0; }), 7);
  EXPECT_EQ(CodeOf([] {
              try {
                throw std::runtime_error("told");
              } catch (const std::exception& failure) {
                return failure.what() == std::string("told") ? 7 : 0;
              }
            }),
            7);
}

/// The hour of the day that a summer's noon in UTC is, taken as Lua takes it. It needs none of the zone's
/// files.
int HourOfNoon() {
  const std::time_t noon = 1'751'371'200;
  tm parts{};
  ::localtime_r(&noon, &parts);
  return std::mktime(&parts) == noon ? parts.tm_hour : 100;
}

TEST(Confinement, LeavesTheTimeZone) {
  const int here = HourOfNoon();
  EXPECT_EQ(CodeOf(HourOfNoon), here);
  EXPECT_EQ(CodeOf(HourOfNoon, [] { ::setenv("TZ", "HOUSE-9", 1); }), 21);
}

/// Or each use of the time would look for the zone's file, which is refused, and go on in UTC.
TEST(Confinement, NamesATimeZoneWhereNoneIsNamed) {
  const auto unnamed = [] { ::unsetenv("TZ"); };
  EXPECT_EQ(CodeOf([] { return std::getenv("TZ") != nullptr ? 7 : 0; }, unnamed), 7);
}

TEST(Confinement, AProcessAtFaultStillEndsItself) {
  const int status = StatusOf([] {
    std::abort();
    return 0;
  });
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGABRT);
}

}  // namespace
