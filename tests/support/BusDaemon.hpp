#pragma once
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/TempFolder.hpp"

namespace support {

/// A message bus of the test's own, in a folder of its own, that ends with the test.
class BusDaemon {
 public:
  struct Service {
    std::string name;
    std::string command;  ///< finds the bus in DBUS_STARTER_ADDRESS
  };

  /// `services`: what the bus starts when someone asks for the name.
  explicit BusDaemon(const std::vector<Service>& services = {}) {
    std::filesystem::create_directory(serviceFolder());
    for (const auto& [name, command] : services) {
      std::ofstream(serviceFolder() / (name + ".service"))
          << "[D-BUS Service]\nName=" << name << "\nExec=" << command << "\n";
    }
    writeConfiguration();
    start();
  }
  ~BusDaemon() { kill(); }
  BusDaemon(const BusDaemon&) = delete;
  BusDaemon& operator=(const BusDaemon&) = delete;
  BusDaemon(BusDaemon&&) = delete;
  BusDaemon& operator=(BusDaemon&&) = delete;

  [[nodiscard]] const std::string& address() const { return address_; }
  /// The bus's own folder, for whatever a test keeps beside it.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

  /// Another run of it, in the same place.
  void again() {
    address_.clear();
    start();
  }
  /// Has it stand still, and go on.
  void stand() const { ::kill(process_, SIGSTOP); }
  void goOn() const { ::kill(process_, SIGCONT); }
  /// Ends the bus at once, as a crash would.
  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
  }

 private:
  [[nodiscard]] std::filesystem::path serviceFolder() const { return folder_.path() / "services"; }

  void writeConfiguration() const {
    std::ofstream(folder_.path() / "bus.conf") << R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path=)" << (folder_.path() / "socket").string()
                                               << "</listen>\n  <auth>EXTERNAL</auth>\n  <servicedir>"
                                               << serviceFolder().string() << R"(</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_replies_per_connection">50000</limit>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="service_start_timeout">240000</limit>
  <limit name="auth_timeout">240000</limit>
</busconfig>
)";
  }

  void start() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    const std::string log = (folder_.path() / "bus.log").string();
    posix_spawn_file_actions_addopen(&actions, 2, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::string program = "dbus-daemon";
    std::string config = "--config-file=" + (folder_.path() / "bus.conf").string();
    std::string foreground = "--nofork";
    std::string print = "--print-address=1";
    std::array<char*, 5> arguments{program.data(), config.data(), foreground.data(), print.data(), nullptr};
    const int failed =
        ::posix_spawnp(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failed == 0) readAddress(ends[0]);
    ::close(ends[0]);
    if (address_.empty()) throw std::runtime_error("dbus-daemon can't be started");
  }

  void readAddress(int from) {
    char character = 0;
    while (::read(from, &character, 1) == 1 && character != '\n') address_ += character;
  }

  TempFolder folder_;
  pid_t process_ = -1;
  std::string address_;
};

}  // namespace support
