#include "platform/PosixPlatform.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "base/Failure.hpp"
#include "support/TempFolder.hpp"

namespace {

class ThePlatform : public ::testing::Test {
 protected:
  support::TempFolder folder;
  platform::PosixPlatform platform;

  /// What `body` leaves as the exit code of a process of its own.
  template <class Body>
  int inProcess(Body&& body) {
    const pid_t child = ::fork();
    if (child == 0) {
      body();
      _exit(99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

}  // namespace

TEST_F(ThePlatform, EmptiesAFileWhosePathHasBackslashes) {
  std::filesystem::create_directory(folder.path() / "Media Player");
  std::ofstream(folder.path() / "Media Player" / "cover.jpg") << "picture";
  platform.emptyFile(folder.path().string() + "\\Media Player\\cover.jpg");
  EXPECT_EQ(std::filesystem::file_size(folder.path() / "Media Player" / "cover.jpg"), 0U);
}

TEST_F(ThePlatform, MakesAFileThatIsNotThereForItsOwnerAlone) {
  const mode_t before = ::umask(022);
  platform.emptyFile(folder.path().string() + "\\new.jpg");
  ::umask(before);
  EXPECT_EQ(std::filesystem::status(folder.path() / "new.jpg").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(ThePlatform, AFolderThatIsNotThereIsAFailureOfItsOwn) {
  try {
    platform.emptyFile(folder.path().string() + "\\nowhere\\cover.jpg");
    FAIL() << "no failure";
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kPathNotFound);
  }
}

TEST_F(ThePlatform, EndsTheProcessAtOnce) {
  EXPECT_EQ(inProcess([&] { platform.end(); }), 0);
}

TEST_F(ThePlatform, LowersItsPriorityClassAgain) {
  // Lowering needs no privilege; each class is a step of its own.
  EXPECT_EQ(inProcess([&] {
              ::setpriority(PRIO_PROCESS, 0, -1);  // may be refused
              platform.setPriorityClass(32);
              _exit(::getpriority(PRIO_PROCESS, 0) == 0 ? 7 : 8);
            }),
            7);
}

TEST_F(ThePlatform, ARefusedPriorityIsPermissionDenied) {
  const int code = inProcess([&] {
    ::setpriority(PRIO_PROCESS, 0, 0);  // however low this program itself was started
    if (::geteuid() == 0 && ::setuid(65534) != 0) _exit(50);
    try {
      platform.setPriorityClass(32768);
    } catch (const base::Failure& failure) {
      _exit(failure.number());
    }
    _exit(51);
  });
  EXPECT_EQ(code, base::number::kPermissionDenied);
}

TEST_F(ThePlatform, KnowsTheSystemsMajorVersion) { EXPECT_GE(platform.osMajorVersion(), 2); }
