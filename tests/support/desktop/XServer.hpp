#pragma once
#include <cstdlib>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Process.hpp"

namespace support {

/// A screen of the test's own, 1280 by 800 pixels, which goes with its owner.
class XServer {
 public:
  /// `options` are the server's own, such as "-dpi", "192".
  explicit XServer(const std::vector<std::string>& options = {}) : server_(command(options)) {}

  /// Its name, as DISPLAY has it.
  [[nodiscard]] const std::string& display() const { return display_; }
  /// It goes, as when its user signs out (SIGTERM) or when it breaks (SIGKILL).
  void end(int signal = SIGKILL) const { server_.signal(signal); }
  /// Sends this process's windows there.
  void use() const {
    ::setenv("DISPLAY", display_.c_str(), 1);
    for (const char* name : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE"})
      ::unsetenv(name);
  }

 private:
  /// The server says the number on a line of its own, perhaps behind complaints about numbers that are taken.
  std::string name() {
    std::smatch found;
    const std::regex number("(?:^|\\n)(\\d+)\\n");
    const bool said = Eventually([&] {
      said_ = server_.output();
      return std::regex_search(said_, found, number);
    });
    if (!said) throw std::runtime_error("no screen: " + said_);
    return ":" + found[1].str();
  }

  static std::vector<std::string> command(const std::vector<std::string>& options) {
    std::vector<std::string> words = {
        "Xvfb",      "-displayfd", "1",        "-screen", "0", "1280x800x24",
        "-nolisten", "tcp",        "-noreset", "-r"};  // no key repeats itself because its release comes late
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  std::string said_;
  Process server_;
  std::string display_ = name();
};

/// Tells all programs on the screen that DISPLAY names how many of its dots an inch has, as desktops do.
inline void TellDots(int perInch) {
  Process tell({"xprop", "-root", "-f", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER",
                "Xft.dpi:\t" + std::to_string(perInch)});
  tell.wait();
}

/// The screen that this process's windows go to.
class Screen {
 public:
  explicit Screen(const std::vector<std::string>& options = {}) : server_(options) { server_.use(); }
  void end(int signal = SIGKILL) const { server_.end(signal); }

 private:
  XServer server_;
};

}  // namespace support
