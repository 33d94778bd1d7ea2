#include "bus/PollLoop.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <vector>

#include "base/Failure.hpp"
#include "base/Restored.hpp"
#include "files/Descriptor.hpp"

namespace bus {

using base::Milliseconds;
using SteadyClock = std::chrono::steady_clock;

namespace {

/// Marks an entry as being in its event, also when the event throws.
class Running {
 public:
  explicit Running(bool& flag) : flag_(flag) { flag_ = true; }
  ~Running() { flag_ = false; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  Running(Running&&) = delete;
  Running& operator=(Running&&) = delete;

 private:
  bool& flag_;
};

struct TimerEntry {
  PollLoop::Clock clock;
  Milliseconds interval{0};
  bool enabled = false;
  bool alive = true;
  bool running = false;
  SteadyClock::time_point due;
  std::function<void()> event;

  [[nodiscard]] bool armed() const { return alive && enabled && !running && interval.count() > 0; }
  void restart() { due = clock() + interval; }

  void fire(SteadyClock::time_point time) {
    due += interval;
    if (due <= time) due = time + interval;
    const Running mark(running);
    event();
  }
};

struct WatchEntry {
  int descriptor = -1;
  short events = 0;
  bool alive = true;
  bool running = false;
  bool isSignal = false;
  std::uint64_t served = 0;  // tells a turn that a turn inside it has already handled the readiness it saw
  std::function<void(short)> event;
};

class PollTimer : public base::Timer {
 public:
  explicit PollTimer(std::shared_ptr<TimerEntry> entry) : entry_(std::move(entry)) {}
  ~PollTimer() override { entry_->alive = false; }
  PollTimer(const PollTimer&) = delete;
  PollTimer& operator=(const PollTimer&) = delete;
  PollTimer(PollTimer&&) = delete;
  PollTimer& operator=(PollTimer&&) = delete;

  [[nodiscard]] Milliseconds interval() const override { return entry_->interval; }
  void interval(Milliseconds value) override {
    entry_->interval = value;
    entry_->restart();
  }
  [[nodiscard]] bool enabled() const override { return entry_->enabled; }
  void enabled(bool value) override {
    if (value && !entry_->enabled) entry_->restart();
    entry_->enabled = value;
  }

 private:
  std::shared_ptr<TimerEntry> entry_;
};

class PollWatch : public PollLoop::Watch {
 public:
  explicit PollWatch(std::shared_ptr<WatchEntry> entry) : entry_(std::move(entry)) {}
  ~PollWatch() override { entry_->alive = false; }
  PollWatch(const PollWatch&) = delete;
  PollWatch& operator=(const PollWatch&) = delete;
  PollWatch(PollWatch&&) = delete;
  PollWatch& operator=(PollWatch&&) = delete;

  void events(short value) override { entry_->events = value; }

 private:
  std::shared_ptr<WatchEntry> entry_;
};

class SignalWatch : public PollLoop::Watch {
 public:
  SignalWatch(files::Descriptor descriptor, std::shared_ptr<WatchEntry> entry)
      : descriptor_(std::move(descriptor)), watch_(std::move(entry)) {}
  void events(short value) override { watch_.events(value); }

 private:
  files::Descriptor descriptor_;
  PollWatch watch_;
};

template <class Entry>
void RemoveDead(std::vector<std::shared_ptr<Entry>>& entries) {
  // The dead are moved out first: what their events had captured may touch the list when it goes.
  std::vector<std::shared_ptr<Entry>> dead;
  const auto living =
      std::stable_partition(entries.begin(), entries.end(), [](const auto& entry) { return entry->alive; });
  dead.assign(std::make_move_iterator(living), std::make_move_iterator(entries.end()));
  entries.erase(living, entries.end());
}

}  // namespace

struct PollLoop::State {
  struct Work {
    std::uint64_t order = 0;
    std::function<void()> run;
  };
  struct Ready {
    std::shared_ptr<WatchEntry> entry;
    std::uint64_t served = 0;
    short events = 0;
  };

  explicit State(Clock clock) : clock(std::move(clock)) {}

  Clock clock;
  files::Descriptor wake{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  std::vector<std::shared_ptr<TimerEntry>> timers;
  std::vector<std::shared_ptr<WatchEntry>> watches;
  std::mutex mutex;
  std::deque<Work> posted;      // guarded by the mutex
  std::uint64_t lastOrder = 0;  // guarded by the mutex
  std::optional<int> quitCode;
  bool quitting = false;
  int runs = 0;

  std::shared_ptr<WatchEntry> addWatch(int descriptor, short events, std::function<void(short)> event) {
    auto entry = std::make_shared<WatchEntry>();
    entry->descriptor = descriptor;
    entry->events = events;
    entry->event = std::move(event);
    watches.push_back(entry);
    return entry;
  }

  bool anyPosted() {
    const std::scoped_lock lock(mutex);
    return !posted.empty();
  }

  int waitFor(Milliseconds limit) {
    if (anyPosted()) return 0;
    const auto time = clock();
    auto wait = std::max(limit, Milliseconds(0));
    for (const auto& timer : timers) {
      if (!timer->armed()) continue;
      const auto left = std::chrono::ceil<Milliseconds>(timer->due - time);
      wait = std::clamp(left, Milliseconds(0), wait);
    }
    return static_cast<int>(std::min<Milliseconds::rep>(wait.count(), 60'000));
  }

  /// Waits for `first` beside the watches, or those of signals alone.
  std::vector<Ready> pollWatches(pollfd& first, int wait, bool signalsOnly) const {
    std::vector<pollfd> descriptors{first};
    std::vector<Ready> candidates;
    for (const auto& watch : watches) {
      if (!watch->alive || watch->running || watch->events == 0) continue;
      if (signalsOnly && !watch->isSignal) continue;
      descriptors.push_back({watch->descriptor, watch->events, 0});
      candidates.push_back({watch, watch->served, 0});
    }
    if (::poll(descriptors.data(), descriptors.size(), wait) <= 0) return {};
    first = descriptors.front();
    std::vector<Ready> ready;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      candidates[i].events = descriptors[i + 1].revents;
      if (candidates[i].events != 0) ready.push_back(std::move(candidates[i]));
    }
    return ready;
  }

  [[nodiscard]] std::vector<Ready> pollAll(int wait) const {
    pollfd woken{wake.get(), POLLIN, 0};
    auto ready = pollWatches(woken, wait, false);
    if (woken.revents != 0) {
      std::uint64_t ignored = 0;
      [[maybe_unused]] const auto size = ::read(wake.get(), &ignored, sizeof ignored);
    }
    return ready;
  }

  void runTimers() {
    const auto time = clock();
    std::vector<std::shared_ptr<TimerEntry>> due;
    for (const auto& timer : timers) {
      if (timer->armed() && timer->due <= time) due.push_back(timer);
    }
    for (const auto& timer : due) {
      if (timer->armed() && timer->due <= time) timer->fire(time);
    }
  }

  /// Runs what had been posted when the turn began. Items are taken one by one, so that a turn inside one of
  /// them goes on with the next.
  void runPosted() {
    std::unique_lock lock(mutex);
    const auto last = lastOrder;
    while (!posted.empty() && posted.front().order <= last) {
      const auto work = std::move(posted.front().run);
      posted.pop_front();
      lock.unlock();
      work();
      lock.lock();
    }
  }

  static void runWatches(const std::vector<Ready>& ready) {
    for (const auto& [entry, served, events] : ready) {
      if (!entry->alive || entry->running || entry->served != served) continue;
      ++entry->served;
      const Running mark(entry->running);
      entry->event(events);
    }
  }
};

PollLoop::PollLoop(Clock clock) : state_(std::make_unique<State>(std::move(clock))) {
  if (state_->wake.get() < 0) throw base::Failure(base::number::kDeviceIo);
}

PollLoop::~PollLoop() = default;

std::unique_ptr<base::Timer> PollLoop::makeTimer(Milliseconds interval, std::function<void()> event) {
  auto entry = std::make_shared<TimerEntry>();
  entry->clock = state_->clock;
  entry->interval = interval;
  entry->event = std::move(event);
  state_->timers.push_back(entry);
  return std::make_unique<PollTimer>(std::move(entry));
}

void PollLoop::post(std::function<void()> work) {
  // The lock is held to the end: once the work can run, it may be the loop's last.
  const std::scoped_lock lock(state_->mutex);
  state_->posted.push_back({++state_->lastOrder, std::move(work)});
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto size = ::write(state_->wake.get(), &one, sizeof one);
}

void PollLoop::pump() { turn(Milliseconds(0)); }

void PollLoop::whileOpen(const std::function<void()>& body) {
  const base::Restored open(openDepth_, openDepth_ + 1);
  body();
}

void PollLoop::whileClosed(const std::function<void()>& body) {
  const base::Restored closed(openDepth_, 0);
  body();
}

Milliseconds PollLoop::now() const {
  return std::chrono::duration_cast<Milliseconds>(state_->clock().time_since_epoch());
}

std::unique_ptr<PollLoop::Watch> PollLoop::watch(int descriptor, short events,
                                                 std::function<void(short)> event) {
  return std::make_unique<PollWatch>(state_->addWatch(descriptor, events, std::move(event)));
}

std::unique_ptr<PollLoop::Watch> PollLoop::onSignal(int signal, std::function<void()> event) {
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, signal);
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  files::Descriptor descriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  if (descriptor.get() < 0) throw base::Failure(base::number::kDeviceIo);
  const int number = descriptor.get();
  auto entry = state_->addWatch(number, POLLIN, [number, event = std::move(event)](short) {
    signalfd_siginfo info{};
    if (::read(number, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) event();
  });
  entry->isSignal = true;
  return std::make_unique<SignalWatch>(std::move(descriptor), std::move(entry));
}

int PollLoop::run() {
  const base::Restored running(state_->runs, state_->runs + 1);
  state_->quitting = state_->quitCode.has_value();
  while (!state_->quitCode) turn(Milliseconds(60'000));
  const int code = *state_->quitCode;
  state_->quitCode.reset();
  if (state_->runs > 1) state_->quitting = false;  // the outer one goes on
  return code;
}

void PollLoop::quit(int code) {
  state_->quitCode = code;
  state_->quitting = true;
}

bool PollLoop::quitting() const { return state_->quitting; }

void PollLoop::waitFor(int descriptor, short events, Milliseconds limit) {
  pollfd first{descriptor, events, 0};
  const int wait = static_cast<int>(std::clamp<Milliseconds::rep>(limit.count(), 0, 60'000));
  const auto signals = state_->pollWatches(first, wait, true);
  whileClosed([&] { State::runWatches(signals); });
}

void PollLoop::turn(Milliseconds limit) {
  const base::Restored deeper(depth_, depth_ + 1);
  RemoveDead(state_->timers);
  RemoveDead(state_->watches);
  if (beforeWait_) beforeWait_();
  const auto ready = state_->pollAll(state_->waitFor(limit));
  // An event's own calls wait in the plain way, however open the wait is that the event came in.
  whileClosed([&] {
    state_->runTimers();
    State::runWatches(ready);
    state_->runPosted();
  });
}

}  // namespace bus
