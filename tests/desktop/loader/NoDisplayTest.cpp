#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "desktop/loader/WindowsModule.hpp"
#include "files/Descriptor.hpp"
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

TEST_F(NoDisplay, TheNamedScreenTakesTheCallAndSaysNothing) {
  constexpr int kFirstPort = 6000;
  constexpr int kScreens = 1000;
  const files::Descriptor hanging(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  int screen = 1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const auto* name = reinterpret_cast<const sockaddr*>(&address);
  do {
    address.sin_port = htons(static_cast<std::uint16_t>(kFirstPort + screen));
  } while (::bind(hanging.get(), name, sizeof address) != 0 && ++screen < kScreens);
  ASSERT_EQ(::listen(hanging.get(), 4), 0);
  ::setenv("DISPLAY", ("127.0.0.1:" + std::to_string(screen)).c_str(), 1);
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
