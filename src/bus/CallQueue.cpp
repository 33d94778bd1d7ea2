#include "bus/CallQueue.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "bus/Paths.hpp"

namespace bus {

using base::Milliseconds;

namespace {

std::string_view SenderOf(const Message& call) { return OrEmpty(sd_bus_message_get_sender(call.get())); }

bool LeadsNowhere(const Message& call) {
  const std::string_view interface = OrEmpty(sd_bus_message_get_interface(call.get()));
  return interface == kReferences || interface == kIntrospectable;
}

/// Counts a call for as long as it is served.
class Served {
 public:
  explicit Served(int& depth) : depth_(depth) { ++depth_; }
  ~Served() { --depth_; }
  Served(const Served&) = delete;
  Served& operator=(const Served&) = delete;
  Served(Served&&) = delete;
  Served& operator=(Served&&) = delete;

 private:
  int& depth_;
};

}  // namespace

void CallQueue::add(Message call) {
  if (LeadsNowhere(call)) ++light_;
  waiting_.push_back({std::move(call), loop_.now()});
}

void CallQueue::clear() {
  waiting_.clear();
  light_ = 0;
}

Message CallQueue::takeAt(const Position& at) {
  Message call = std::move(at->call);
  waiting_.erase(at);
  if (LeadsNowhere(call)) --light_;
  return call;
}

CallQueue::Position CallQueue::firstLight() {
  if (light_ == 0) return waiting_.end();
  std::set<std::string_view> earlier;
  return std::find_if(waiting_.begin(), waiting_.end(), [&](const Waiting& waiting) {
    return earlier.insert(SenderOf(waiting.call)).second && LeadsNowhere(waiting.call);
  });
}

Message CallQueue::take() {
  const auto next = full() ? firstLight() : waiting_.begin();
  return next == waiting_.end() ? nullptr : takeAt(next);
}

void CallQueue::within(const std::function<void()>& serve) {
  moved();
  {
    const Served counted(depth_);
    serve();
  }
  moved();
}

Message CallQueue::takeStuck(const std::function<bool(const std::string& sender)>& isAwaited) {
  if (!idle()) return nullptr;
  const Milliseconds now = loop_.now();
  const auto stuck = std::find_if(waiting_.begin(), waiting_.end(), [&](const Waiting& waiting) {
    const Milliseconds idle = now - std::max(lastMove_, waiting.since);
    return idle >= kLongPatience || (idle >= kPatience && isAwaited(std::string(SenderOf(waiting.call))));
  });
  if (stuck == waiting_.end()) return nullptr;
  moved();
  return takeAt(stuck);
}

}  // namespace bus
