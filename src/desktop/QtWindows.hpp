#pragma once
#include <functional>
#include <memory>
#include <string>

#include "bus/PollLoop.hpp"

class QApplication;

namespace desktop {

class MainContext;

/// The desktop of a process: as long as it lives there may be windows, and the loop serves them on every
/// turn. While nothing happens on the screen, it wakes the loop for nothing. Make one, after the process's
/// signals are blocked and before any window; it goes after the last window.
class QtWindows {
 public:
  /// Nothing when the process has no desktop.
  static std::unique_ptr<QtWindows> open(bus::PollLoop& loop);
  ~QtWindows();
  QtWindows(const QtWindows&) = delete;
  QtWindows& operator=(const QtWindows&) = delete;
  QtWindows(QtWindows&&) = delete;
  QtWindows& operator=(QtWindows&&) = delete;

  /// Waits until `done`. Calls on the bus, timers, the player's events and all windows go on.
  void waitUntil(const std::function<bool()>& done);
  /// Lets windows draw themselves and the screen answer, at most until `done` or for `limit`. Nothing else
  /// happens meanwhile, no key and no click either.
  static void drawUntil(const std::function<bool()>& done, base::Milliseconds limit);
  /// To be called when a window has been changed from outside of the windows' own events.
  void changed();

 private:
  QtWindows(bus::PollLoop& loop, const std::string& platform);
  void work();

  bus::PollLoop& loop_;
  int wordCount_ = 1;
  std::string program_ = "vxif_WMP";
  char* words_[2] = {program_.data(), nullptr};
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<MainContext> context_;
  int depth_ = 0;  // of work within work
};

}  // namespace desktop
