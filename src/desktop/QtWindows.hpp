#pragma once
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "desktop/loader/Windows.hpp"

class QApplication;

namespace desktop {

class LastWords;
class MainContext;

/// The desktop of a process: as long as it lives there may be windows, and the loop serves them on every
/// turn. While nothing happens on the screen, it wakes the loop for nothing. Make one, after the process's
/// signals are blocked and before any window; it goes after the last window.
///
/// When the desktop goes, Qt would end the process. So Qt is only called within `enter`, which nobody enters
/// any more from then on; and when the desktop goes while Qt is at work, `enter` is left at once. What Qt
/// holds then stays as it is to the end of the process.
class QtWindows {
 public:
  /// Nothing when Qt can't show windows there.
  static std::unique_ptr<QtWindows> open(WindowsParts parts);
  ~QtWindows();
  QtWindows(const QtWindows&) = delete;
  QtWindows& operator=(const QtWindows&) = delete;
  QtWindows(QtWindows&&) = delete;
  QtWindows& operator=(QtWindows&&) = delete;

  /// Does something to windows, from outside or within their own events. False when it was not done, or not
  /// to its end, since the desktop has gone.
  bool enter(const std::function<void()>& act);
  /// True from when the desktop is known to have gone.
  [[nodiscard]] bool gone() const { return gone_; }
  /// Runs `act` on the loop's next turn, behind the event of a window that is being handled now.
  void later(std::function<void()> act) { loop_.post(std::move(act)); }
  /// Waits until `done`, or until the desktop has gone. Calls on the bus, timers, the player's events and all
  /// windows go on.
  void waitUntil(const std::function<bool()>& done);
  /// Within `enter`: lets windows draw themselves and the screen answer, at most until `done` or for `limit`.
  /// Nothing else happens meanwhile, no key and no click either.
  static void drawUntil(const std::function<bool()>& done, base::Milliseconds limit);

 private:
  explicit QtWindows(WindowsParts parts);
  bool run(const std::function<void()>& act);
  void work();
  void leave();

  bus::PollLoop& loop_;
  Display display_;
  std::function<void()> tellGone_;
  bool gone_ = false;
  std::unique_ptr<LastWords> words_;
  int argumentCount_ = 1;
  std::string program_ = "vxif_WMP";
  char* arguments_[2] = {program_.data(), nullptr};
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<MainContext> context_;
  std::unique_ptr<bus::PollLoop::Watch> watch_;
  int depth_ = 0;  // of work within work
};

/// A window, or what else of Qt belongs to somebody: it goes with its owner, unless the desktop has gone
/// before.
template <class Widget>
class Owned {
 public:
  explicit Owned(QtWindows& windows) : windows_(windows) {}
  ~Owned() { reset(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Owned(Owned&&) = delete;
  Owned& operator=(Owned&&) = delete;

  [[nodiscard]] Widget* get() const { return widget_.get(); }
  Widget* operator->() const { return widget_.get(); }
  explicit operator bool() const { return widget_ != nullptr; }
  void reset(std::unique_ptr<Widget> next = nullptr) {
    if (!windows_.enter([&] { widget_.reset(); })) static_cast<void>(widget_.release());
    widget_ = std::move(next);
  }

 private:
  QtWindows& windows_;
  std::unique_ptr<Widget> widget_;
};

}  // namespace desktop
