#include "standin/hostobjects/HostWaits.hpp"

#include <algorithm>
#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include "base/Failure.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"

namespace standin {
namespace {

constexpr int kMostPending = 50;

/// Counts a wait for as long as it lasts.
class Pending {
 public:
  explicit Pending(int& count) : count_(count) {
    if (count_ >= kMostPending) {
      throw base::Failure(base::number::kInternal, "Too many waits are pending within each other");
    }
    ++count_;
  }
  ~Pending() { --count_; }
  Pending(const Pending&) = delete;
  Pending& operator=(const Pending&) = delete;
  Pending(Pending&&) = delete;
  Pending& operator=(Pending&&) = delete;

 private:
  int& count_;
};

}  // namespace

void LoopWaits::pendingEvents() {
  const Pending pending(pending_);
  loop_.pump();
}

void LoopWaits::seconds(int count) {
  const Pending pending(pending_);
  const base::Milliseconds end = loop_.now() + std::chrono::seconds(std::max(0, count));
  loop_.whileOpen([&] {
    for (base::Milliseconds now = loop_.now(); now < end && !loop_.quitting(); now = loop_.now()) {
      loop_.turn(end - now);
    }
  });
}

std::string LoopWaits::fetch(const std::string& host, const std::string& page, int port,
                             const std::string& certificate) {
  const Pending pending(pending_);
  std::atomic<bool> stop = false;
  fetches_.push_back(&stop);
  const std::unique_ptr<std::vector<std::atomic<bool>*>, void (*)(std::vector<std::atomic<bool>*>*)> listed(
      &fetches_, [](std::vector<std::atomic<bool>*>* all) { all->pop_back(); });
  std::promise<std::string> promise;
  std::future<std::string> result = promise.get_future();
  // Joined at the end, also when an event of the loop throws.
  const std::jthread worker([&] {
    try {
      promise.set_value(FetchUrl(host, page, port, fetchLimit_, &stop, certificate));
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
    loop_.post([] {});  // wakes the loop
  });
  const std::unique_ptr<std::atomic<bool>, void (*)(std::atomic<bool>*)> stopAtEnd(
      &stop, [](std::atomic<bool>* flag) { *flag = true; });
  loop_.whileOpen([&] {
    while (!loop_.quitting() && result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      loop_.turn(base::Milliseconds(200));
    }
  });
  // All at once: those around this one are told before it has ended.
  if (loop_.quitting())
    for (std::atomic<bool>* const each : fetches_) *each = true;
  return result.get();
}

}  // namespace standin
