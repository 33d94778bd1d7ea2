#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/loader/WindowsModule.hpp"
#include "support/TempFolder.hpp"

namespace {

class NoDisplay : public ::testing::Test {
 protected:
  NoDisplay() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) ::unsetenv(name);
    ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
  }
  /// True when there are no windows, and nobody has been told of trouble.
  bool none() {
    std::string problem;
    const auto windows = desktop::LoadWindows(
        loop, nullptr, [] {}, [&](const std::string& told) { problem = told; });
    return windows == nullptr && problem.empty();
  }

  support::TempFolder folder;
  bus::PollLoop loop;
};

}  // namespace

TEST_F(NoDisplay, NoneIsNamed) { EXPECT_TRUE(none()); }

TEST_F(NoDisplay, TheNamedScreenDoesNotAnswer) {
  ::setenv("DISPLAY", ":54321", 1);
  EXPECT_TRUE(none());
  ::setenv("DISPLAY", "nonsense", 1);
  EXPECT_TRUE(none());
}

TEST_F(NoDisplay, TheNamedWaylandSocketIsDead) {
  ::setenv("WAYLAND_DISPLAY", "wayland-7", 1);
  EXPECT_TRUE(none());
  ::setenv("WAYLAND_DISPLAY", std::string(500, 'x').c_str(), 1);
  EXPECT_TRUE(none());
}

TEST_F(NoDisplay, TheUserWantsNone) {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  EXPECT_TRUE(none());
}
