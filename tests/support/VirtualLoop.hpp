#pragma once
#include <algorithm>
#include <deque>
#include <set>

#include "base/Loop.hpp"
#include "base/Restored.hpp"

namespace support {

/// A message loop in virtual time: nothing happens but by `advance` and `pump`.
class VirtualLoop : public base::Loop {
 public:
  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds interval, std::function<void()> event) override {
    return std::make_unique<VirtualTimer>(*this, interval, std::move(event));
  }
  void post(std::function<void()> work) override { posted_.push_back(std::move(work)); }
  void pump() override {
    ++pumps;
    for (std::size_t waiting = posted_.size(); waiting > 0 && !posted_.empty(); --waiting) {
      const auto work = std::move(posted_.front());
      posted_.pop_front();
      work();
    }
    runDue();
  }
  void whileOpen(const std::function<void()>& body) override {
    const base::Restored depth(openDepth, openDepth + 1);
    body();
  }
  [[nodiscard]] base::Milliseconds now() const override { return now_; }

  /// Lets time pass, a millisecond a step, with every event in its place.
  void advance(base::Milliseconds time) {
    for (const auto end = now_ + time; now_ < end;) {
      now_ += base::Milliseconds(1);
      pump();
    }
  }

  /// The same, straight from one moment that a timer is due to the next: for days at a time.
  void leap(base::Milliseconds time) {
    for (const auto end = now_ + time; now_ < end;) {
      while (!posted_.empty()) pump();
      auto next = end;
      for (const VirtualTimer* timer : timers_) next = std::min(next, std::max(timer->due(), now_));
      now_ = std::max(next, now_ + base::Milliseconds(1));
      pump();
    }
    while (!posted_.empty()) pump();
  }

  int pumps = 0;
  int openDepth = 0;

 private:
  class VirtualTimer : public base::Timer {
   public:
    VirtualTimer(VirtualLoop& loop, base::Milliseconds interval, std::function<void()> event)
        : loop_(loop), interval_(interval), event_(std::move(event)) {
      loop_.timers_.insert(this);
    }
    ~VirtualTimer() override { loop_.timers_.erase(this); }
    [[nodiscard]] base::Milliseconds interval() const override { return interval_; }
    void interval(base::Milliseconds value) override {
      interval_ = value;
      due_ = loop_.now_ + interval_;
    }
    [[nodiscard]] bool enabled() const override { return enabled_; }
    void enabled(bool value) override {
      if (value && !enabled_) due_ = loop_.now_ + interval_;
      enabled_ = value;
    }
    /// When it fires next; a time without end where it doesn't.
    [[nodiscard]] base::Milliseconds due() const {
      return enabled_ && interval_.count() > 0 ? due_ : base::Milliseconds::max();
    }
    void fireIfDue() {
      if (!enabled_ || running_ || interval_.count() <= 0 || loop_.now_ < due_) return;
      due_ = loop_.now_ + interval_;
      const base::Restored running(running_, true);
      event_();
    }

   private:
    VirtualLoop& loop_;
    base::Milliseconds interval_;
    std::function<void()> event_;
    base::Milliseconds due_{0};
    bool enabled_ = false;
    bool running_ = false;
  };

  void runDue() {
    const auto all = timers_;
    for (VirtualTimer* timer : all)
      if (timers_.count(timer) > 0) timer->fireIfDue();
  }

  base::Milliseconds now_{0};
  std::deque<std::function<void()>> posted_;
  std::set<VirtualTimer*> timers_;
};

}  // namespace support
