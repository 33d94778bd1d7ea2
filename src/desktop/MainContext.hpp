#pragma once
#include <poll.h>

#include <functional>
#include <memory>
#include <vector>

#include "bus/PollLoop.hpp"

namespace desktop {

/// Joins GLib's main context, on which Qt waits for its screen, its timers and its posted events, to the
/// plug-in's loop: whatever wakes the context wakes the loop, and nothing else does. A context that waits for
/// nothing costs nothing.
class MainContext {
 public:
  /// `run` is to work off what is ready. It may turn the loop again.
  MainContext(bus::PollLoop& loop, std::function<void()> run);
  ~MainContext();
  MainContext(const MainContext&) = delete;
  MainContext& operator=(const MainContext&) = delete;
  MainContext(MainContext&&) = delete;
  MainContext& operator=(MainContext&&) = delete;

  /// Has `run` run on this or the next turn in any case.
  void ask();
  /// Waits for nothing any more, and `run` does not run again.
  void stop();

 private:
  struct Watched {
    int descriptor = -1;
    short events = 0;
    std::unique_ptr<bus::PollLoop::Watch> watch;
  };
  /// How long the context may wait, in milliseconds, -1 for ever; and what it waits for.
  struct Wait {
    int timeout = -1;
    std::vector<pollfd> descriptors;
  };

  void prepare();
  void watch(const std::vector<pollfd>& descriptors);
  static Wait query();

  bus::PollLoop& loop_;
  std::function<void()> run_;
  bool stopped_ = false;
  std::vector<Watched> watched_;
  std::unique_ptr<base::Timer> timer_;
  std::shared_ptr<bool> asked_ = std::make_shared<bool>(false);  // what is posted may outlive its poster
};

}  // namespace desktop
