#include "mpris/session/SessionAddress.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

using mpris::SessionAddress;

namespace {

/// The variables that say where the bus is, as the test sets them.
class TheAddress : public ::testing::Test {
 protected:
  TheAddress() {
    for (const char* name : kNames) ::unsetenv(name);
  }
  ~TheAddress() override {
    for (const char* name : kNames) ::unsetenv(name);
  }
  TheAddress(const TheAddress&) = delete;
  TheAddress& operator=(const TheAddress&) = delete;
  TheAddress(TheAddress&&) = delete;
  TheAddress& operator=(TheAddress&&) = delete;
  static void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

  static constexpr const char* kNames[] = {"VANTORIX_SESSION_BUS", "DBUS_SESSION_BUS_ADDRESS",
                                           "XDG_RUNTIME_DIR"};
};

}  // namespace

TEST_F(TheAddress, IsNowhereWhereNobodySaysAnything) { EXPECT_EQ(SessionAddress(), ""); }

TEST_F(TheAddress, IsTheUsersRatherThanThatOfTheHousesOwnBus) {
  set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/user/1/vantorix/bus");
  EXPECT_EQ(SessionAddress(), "unix:path=/run/user/1/vantorix/bus");
  set("VANTORIX_SESSION_BUS", "unix:abstract=/tmp/dbus-x,guid=1");
  EXPECT_EQ(SessionAddress(), "unix:abstract=/tmp/dbus-x") << "another run of the bus there is as good";
}

TEST_F(TheAddress, IsTheSocketInTheUsersFolderOnceItIsThere) {
  const support::TempFolder folder;
  set("VANTORIX_SESSION_BUS", "");
  set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/user/1/vantorix/bus");
  set("XDG_RUNTIME_DIR", folder.path().string());
  EXPECT_EQ(SessionAddress(), "");
  const support::BusDaemon daemon;
  std::filesystem::create_symlink(daemon.folder() / "socket", folder.path() / "bus");
  EXPECT_NE(SessionAddress().find("unix:path="), std::string::npos);
}

TEST_F(TheAddress, IsNoFileThatIsNoSocket) {
  const support::TempFolder folder;
  std::filesystem::create_directory(folder.path() / "bus");
  set("XDG_RUNTIME_DIR", folder.path().string());
  EXPECT_EQ(SessionAddress(), "");
}

TEST_F(TheAddress, IsOnThisMachineAndStartsNothing) {
  set("VANTORIX_SESSION_BUS",
      "tcp:host=example.org,port=1;unixexec:path=/bin/false;unix:path=/run/bus;unix:abstract=x");
  EXPECT_EQ(SessionAddress(), "unix:path=/run/bus;unix:abstract=x");
}
