#pragma once
#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "base/Loop.hpp"
#include "standin/house/LiveFeed.hpp"

namespace standin {

/// Tells the open pages which events have changed, what runs of them or their history. What changes often is
/// told now and then only, so that a storm of triggers leaves room for other news.
class EventTeller {
 public:
  EventTeller(base::Loop& loop, LiveFeed& live)
      : live_(live), timer_(loop.makeTimer(std::chrono::milliseconds(100), [this] { tell(); })) {}

  void changed(std::int32_t event) {
    events_.insert(event);
    timer_->enabled(true);
  }

 private:
  void tell() {
    timer_->enabled(false);
    for (const std::int32_t event : events_) live_.tell("event", "{\"id\":" + std::to_string(event) + "}");
    events_.clear();
  }

  LiveFeed& live_;
  std::set<std::int32_t> events_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
