#include "files/WriteFile.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "base/Failure.hpp"
#include "files/Descriptor.hpp"
#include "files/ReadFile.hpp"
#include "files/RefusedCalls.hpp"
#include "files/Stamp.hpp"
#include "files/SyncSpy.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"

namespace files::testing {
namespace {

namespace fs = std::filesystem;
using support::FailureNumberOf;

void WriteText(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

std::string FileContent(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

std::vector<std::string> Hidden(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name.front() == '.') names.push_back(name);
  }
  return names;
}

class Files : public ::testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return root.path() / name; }
  [[nodiscard]] mode_t modeOf(const std::string& name) const {
    struct stat info {};
    return ::stat(path(name).c_str(), &info) == 0 ? info.st_mode & 07777U : 0;
  }
  const support::TempFolder root;
};

TEST_F(Files, ANewFileHasTheModeThatTheProcessGivesAndAnOldOneKeepsIts) {
  const mode_t before = ::umask(027);
  WriteFile(path("a"), "1");
  ::umask(before);
  EXPECT_EQ(modeOf("a"), 0640U);
  ::chmod(path("a").c_str(), 0604);
  WriteFile(path("a"), "2");
  EXPECT_EQ(modeOf("a"), 0604U);
  EXPECT_EQ(FileContent(path("a")), "2");
  EXPECT_TRUE(Hidden(root.path()).empty());
}

TEST_F(Files, WhatTakesThePlaceOfAnotherIsForItsOwnerAloneWhileItIsWritten) {
  const mode_t before = ::umask(0);
  WriteText(path("a"), "1");
  ::chmod(path("a").c_str(), 0600);
  WriteText(path("b"), "1");
  ::chmod(path("b").c_str(), 0640);
  std::vector<mode_t> seen;
  const auto look = [&](int file, const void* bytes, std::size_t size) {
    struct stat info {};
    ::fstat(file, &info);
    seen.push_back(info.st_mode & 07777U);
    return WriteBytes(file, bytes, size);
  };
  for (const char* name : {"a", "b"}) WriteFile(path(name), "2", {.write = look});
  WriteFile(path("new"), "2", {.mode = kForOwner, .write = look});
  ::umask(before);
  EXPECT_EQ(seen, (std::vector<mode_t>{0600, 0600, 0600}));
  EXPECT_EQ(modeOf("a"), 0600U);
  EXPECT_EQ(modeOf("b"), 0640U);
  EXPECT_EQ(modeOf("new"), 0600U);
}

TEST_F(Files, WhatAGroupWasAllowedIsAllowedNoOther) {
  constexpr gid_t kGroup = 54321;
  constexpr uid_t kNobody = 65534;
  const bool superuser = ::geteuid() == 0;
  fs::permissions(root.path(), fs::perms::all);
  for (const bool member : {false, true}) {
    WriteText(path("a"), "1");
    ASSERT_EQ(::chown(path("a").c_str(), static_cast<uid_t>(-1), superuser ? kGroup : ::getegid()), 0);
    ASSERT_EQ(::chmod(path("a").c_str(), 0664), 0);
    EXPECT_TRUE(support::InChild([&] {
      if (superuser) {
        ASSERT_EQ(::setgroups(member ? 1 : 0, &kGroup), 0);
        ASSERT_EQ(::setresgid(kNobody, kNobody, kNobody), 0);
        ASSERT_EQ(::setresuid(kNobody, kNobody, kNobody), 0);
      }
      WriteFile(path("a"), "2");
    }));
    struct stat info {};
    ASSERT_EQ(::stat(path("a").c_str(), &info), 0);
    EXPECT_EQ(FileContent(path("a")), "2");
    if (superuser) {
      EXPECT_EQ(info.st_gid, member ? kGroup : kNobody);
    }
    EXPECT_EQ(info.st_mode & 07777U, member || !superuser ? 0664U : 0604U);
  }
}

TEST_F(Files, WhereAMountGivesAllFilesOneModeTheyAreWrittenAllTheSame) {
  WriteFile(path("a"), "1", {.mode = kForOwner});
  Refused().modes = true;
  EXPECT_NO_THROW(WriteFile(path("a"), "2"));
  Refused().modes = false;
  EXPECT_EQ(FileContent(path("a")), "2");
  ::chmod(path("a").c_str(), 0640);
  Refused().modes = true;
  EXPECT_EQ(FailureNumberOf([&] { WriteFile(path("a"), "3"); }), base::number::kPermissionDenied)
      << "a file that would then be of another mode";
  Refused().modes = false;
  EXPECT_EQ(FileContent(path("a")), "2");
  EXPECT_TRUE(Hidden(root.path()).empty());
}

TEST_F(Files, WhereNothingIsToldOfAnOpenFileNothingIsWrittenNorLeft) {
  WriteFile(path("a"), "1");
  Refused().looking = true;
  const int refused = FailureNumberOf([&] { WriteFile(path("a"), "2"); });
  Refused().looking = false;
  EXPECT_EQ(refused, base::number::kDeviceIo);
  EXPECT_EQ(FileContent(path("a")), "1");
  EXPECT_TRUE(Hidden(root.path()).empty());
}

TEST_F(Files, AFolderThatIsMadeIsOnTheDiskWithThoseItLiesIn) {
  SyncSpy spy;
  MakeFolder(path("a/b/c"));
  EXPECT_TRUE(fs::is_directory(path("a/b/c")));
  EXPECT_THAT(spy.take(), ::testing::UnorderedElementsAre(root.path().string(), path("a"), path("a/b")));
  MakeFolder(path("a/b/c"));
  EXPECT_THAT(spy.take(), ::testing::IsEmpty());
}

TEST_F(Files, AFileOfAFarFutureHasAStampThatItsChangeChanges) {
  constexpr std::int64_t kYear2300 = 10'413'792'000;
  WriteText(path("a"), "1");
  const auto dated = [&](std::int64_t seconds) {
    const std::array<timespec, 2> times{timespec{seconds, 0}, timespec{seconds, 0}};
    EXPECT_EQ(::utimensat(AT_FDCWD, path("a").c_str(), times.data(), 0), 0);
    return StampOf(path("a"));
  };
  EXPECT_NE(dated(kYear2300), dated(kYear2300 + 1));
}

TEST_F(Files, TheStampThatIsAnsweredIsThatOfTheFile) {
  const FileStamp written = WriteFile(path("a"), "text");
  EXPECT_EQ(written, StampOf(path("a")));
  EXPECT_EQ(ReadFile(path("a"), 4).stamp, StampOf(path("a")));
  EXPECT_EQ(ReadFile(path("a"), 4).text, "text");
  EXPECT_EQ(FailureNumberOf([&] { ReadFile(path("a"), 3); }), base::number::kDeviceIo);
}

TEST_F(Files, OneThatIsTooLargeIsNotRead) {
  constexpr std::int64_t kMost = 8 << 20;
  WriteText(path("a"), "");
  fs::resize_file(path("a"), kMost + 1);
  const auto readSoFar = [] {  // by this process, as the system counts it
    std::istringstream lines(FileContent("/proc/self/io"));
    std::string name;
    std::int64_t bytes = -1;
    lines >> name >> bytes;
    return name == "rchar:" ? bytes : -1;
  };
  const std::int64_t before = readSoFar();
  ASSERT_GE(before, 0);
  EXPECT_EQ(FailureNumberOf([&] { ReadFile(path("a"), kMost); }), base::number::kDeviceIo);
  EXPECT_LT(readSoFar() - before, kMost / 2);
  fs::resize_file(path("a"), kMost);
  EXPECT_EQ(ReadFile(path("a"), kMost).text.size(), static_cast<std::size_t>(kMost));
  EXPECT_GE(readSoFar() - before, kMost);
}

TEST_F(Files, ANewFileReplacesNothing) {
  EXPECT_TRUE(WriteNewFile(path("a"), "1").has_value());
  EXPECT_FALSE(WriteNewFile(path("a"), "2").has_value());
  EXPECT_EQ(FileContent(path("a")), "1");
  WriteFile(path("b"), "3");
  EXPECT_FALSE(MoveFile(path("b"), path("a")));
  EXPECT_EQ(FileContent(path("a")), "1");
  EXPECT_TRUE(Hidden(root.path()).empty());
}

TEST_F(Files, WhatAKilledProcessHasLeftIsClearedAndNothingElse) {
  for (const char* name : {".vantorix-0123456789abcdef.part", ".vantorix-0123456789abcde.part",
                           ".vantorix-0123456789abcdeX.part", "vantorix-0123456789abcdef.part", "L.m3u8",
                           "L.m3u8.backup", ".hidden"}) {
    WriteText(path(name), "x");
  }
  const std::string folder = ".vantorix-00000000000000ff.part";
  const std::string living = ".vantorix-ffffffffffffffff.part";
  fs::create_directory(path(folder));
  WriteText(path(living), "x");
  const Descriptor owner(::open(path(living).c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(owner.get(), LOCK_EX), 0);
  ClearLeftovers(root.path());
  EXPECT_THAT(Hidden(root.path()),
              ::testing::UnorderedElementsAre(".vantorix-0123456789abcde.part",
                                              ".vantorix-0123456789abcdeX.part", ".hidden", folder, living));
  EXPECT_TRUE(fs::exists(path("vantorix-0123456789abcdef.part")));
  EXPECT_TRUE(fs::exists(path("L.m3u8.backup")));
}

TEST_F(Files, AWriterThatIsClearedAtAllTimesStillWrites) {
  std::atomic<bool> end{false};
  std::thread clearing([&] {
    while (!end) ClearLeftovers(root.path());
  });
  for (int i = 0; i < 300; ++i) {
    WriteFile(path("a"), std::to_string(i));
    EXPECT_EQ(FileContent(path("a")), std::to_string(i));
  }
  end = true;
  clearing.join();
  EXPECT_TRUE(Hidden(root.path()).empty());
}

}  // namespace
}  // namespace files::testing
