#include "standin/voice/Speech.hpp"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::size_t kMostWaiting = 100;
constexpr base::Milliseconds kHushAgain = std::chrono::milliseconds(200);

}  // namespace

Speech::Speech(bus::PollLoop& loop, House& house, VoiceOutput& voice, base::Milliseconds longest)
    : loop_(loop),
      house_(house),
      events_(loop, house),
      voice_(voice),
      longest_(longest),
      cut_(loop.makeTimer(longest, [this] {
        if (saying_) voice_.hush();
        cut_->interval(kHushAgain);
      })) {}

Speech::~Speech() {
  if (!thread_.joinable()) return;
  // A word in time: the voice may only be about to begin, and would not have heard the first.
  for (; saying_; std::this_thread::sleep_for(std::chrono::milliseconds(10))) voice_.hush();
  thread_.join();
}

std::shared_ptr<Speech::Order> Speech::take(Order order) {
  house_.log.write("Speech", order.text);
  // More than anybody would listen to: the log has it.
  if (order.text.empty() || orders_.size() >= kMostWaiting) return nullptr;
  auto taken = std::make_shared<Order>(std::move(order));
  orders_.push_back(taken);
  if (!busy_) beginSoon();
  return taken;
}

void Speech::speak(const std::string& text, bool tone, const Said& said) {
  if (!take({text, tone, said}) && said) said(text.empty() ? "" : "Too many texts wait to be said");
}

void Speech::speak(const std::string& text, bool wait) {
  const auto order = take({text});
  // Asked for while a listener is being told, it could only be said after the listener has answered.
  if (!order || !wait || events_.telling()) return;
  const base::Milliseconds end = loop_.now() + longest_;
  loop_.whileOpen([&] {
    while (!order->over && loop_.now() < end && !loop_.quitting())
      loop_.turn(std::min(end - loop_.now(), base::Milliseconds(500)));
  });
}

void Speech::beginSoon() {
  busy_ = true;
  loop_.post([this, alive = std::weak_ptr(alive_)] {
    if (alive.lock()) begin();
  });
}

void Speech::begin() {
  if (!std::exchange(orders_.front()->told, true)) events_.tell(true);
  cut_->interval(longest_);
  cut_->enabled(true);
  saying_ = true;
  try {
    thread_ = std::thread([this, order = *orders_.front()] { say(order); });
  } catch (const std::system_error& failure) {  // the machine has no thread to spare
    saying_ = false;
    said(failure.what());
  }
}

void Speech::say(const Order& order) {
  std::string failure;
  try {
    if (order.tone) voice_.tone();
    voice_.say(order.text);
  } catch (...) {
    failure = base::CurrentFailure().description();
  }
  saying_ = false;
  loop_.post([this, failure, alive = std::weak_ptr(alive_)] {
    if (alive.lock()) said(failure);
  });
}

void Speech::said(const std::string& failure) {
  if (thread_.joinable()) thread_.join();
  cut_->enabled(false);
  if (!failure.empty() && failure != toldFailure_) {
    house_.log.write("Info", "Speech is written to the log only: " + failure);
  }
  toldFailure_ = failure;
  if (orders_.size() > 1 && !std::exchange(orders_[1]->told, true)) events_.tell(true);
  events_.tell(false);
  const std::shared_ptr<Order> over = orders_.front();
  over->over = true;
  orders_.pop_front();
  busy_ = false;
  if (!orders_.empty()) beginSoon();
  if (over->said) over->said(failure);
}

}  // namespace standin
