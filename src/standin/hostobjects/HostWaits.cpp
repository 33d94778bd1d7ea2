#include "standin/hostobjects/HostWaits.hpp"

#include <algorithm>
#include <atomic>
#include <future>
#include <stop_token>
#include <thread>

#include "base/Failure.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"

namespace standin {
namespace {

constexpr int kMostPending = 50;

[[noreturn]] void ThrowAlone() {
  throw base::Failure(base::number::kInternal, "A program of its own waits by itself");
}

/// Counts a wait for as long as it lasts.
class Pending {
 public:
  Pending(int& count, bool stranger, int& ofStrangers) : count_(count), ofStrangers_(ofStrangers) {
    if (count_ >= kMostPending)
      throw base::Failure(base::number::kInternal, "Too many waits are pending within each other");
    if (stranger && ofStrangers >= LoopWaits::kMostOfStrangers) ThrowAlone();
    ++count_;
    stranger_ = stranger ? 1 : 0;
    ofStrangers_ += stranger_;
  }
  ~Pending() {
    ofStrangers_ -= stranger_;
    --count_;
  }
  Pending(const Pending&) = delete;
  Pending& operator=(const Pending&) = delete;
  Pending(Pending&&) = delete;
  Pending& operator=(Pending&&) = delete;

 private:
  int& count_;
  int& ofStrangers_;
  int stranger_ = 0;
};

}  // namespace

void LoopWaits::pendingEvents() {
  const Pending pending(pending_, forStranger_(), ofStrangers_);
  loop_.pump();
}

void LoopWaits::seconds(int count) {
  const bool stranger = forStranger_();
  if (stranger && std::chrono::seconds(count) > kLongestOfStrangers) ThrowAlone();
  const Pending pending(pending_, stranger, ofStrangers_);
  const base::Milliseconds end = loop_.now() + std::chrono::seconds(std::max(0, count));
  loop_.whileOpen([&] {
    for (base::Milliseconds now = loop_.now(); now < end && !loop_.quitting(); now = loop_.now()) {
      loop_.turn(end - now);
    }
  });
}

void LoopWaits::speak(const std::string& text, bool wait) {
  if (!wait) return speech_.speak(text, false);
  const Pending pending(pending_, forStranger_(), ofStrangers_);
  speech_.speak(text, true);
}

std::string LoopWaits::fetch(const std::string& host, const std::string& page, int port,
                             const std::string& certificate) {
  const Pending pending(pending_, forStranger_(), ofStrangers_);
  std::promise<std::string> promise;
  std::future<std::string> result = promise.get_future();
  // Told to end and joined at the end, also when an event of the loop throws.
  const std::jthread worker([&](const std::stop_token& end) {
    std::atomic<bool> stop = false;
    const auto stops = [&] { stop = true; };
    const std::stop_callback atItsEnd(end, stops);
    const std::stop_callback atTheLoopsEnd(quitting_.get_token(), stops);
    try {
      promise.set_value(FetchUrl(host, page, port, fetchLimit_, &stop, certificate));
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
    loop_.post([] {});  // wakes the loop
  });
  loop_.whileOpen([&] {
    while (!loop_.quitting() && result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      loop_.turn(base::Milliseconds(200));
    }
  });
  // All at once: those around this one are told before it has ended.
  if (loop_.quitting()) quitting_.request_stop();
  return result.get();
}

}  // namespace standin
