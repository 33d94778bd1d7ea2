#include "standin/house/LoopGate.hpp"

#include <condition_variable>
#include <exception>
#include <utility>

namespace standin {

struct LoopGate::Ticket {
  enum class State { kWaiting, kBegun, kDone, kGivenUp };
  std::mutex mutex;
  std::condition_variable changed;
  State state = State::kWaiting;
  bool closed = false;
  std::exception_ptr failure;

  bool begin() {
    const std::lock_guard lock(mutex);
    if (state != State::kWaiting) return false;
    state = State::kBegun;
    return true;
  }
  void finish(std::exception_ptr with) {
    {
      const std::lock_guard lock(mutex);
      if (state == State::kDone) return;
      state = State::kDone;
      failure = std::move(with);
    }
    changed.notify_all();
  }
};

LoopGate::Outcome LoopGate::run(std::function<void(std::function<void()>)> work) {
  const auto ticket = std::make_shared<Ticket>();
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return Outcome::kClosed;
    waiting_.insert(ticket);
  }
  loop_.post([ticket, work = std::move(work)] {
    if (!ticket->begin()) return;
    try {
      work([ticket] { ticket->finish(nullptr); });
    } catch (...) {
      ticket->finish(std::current_exception());
    }
  });
  std::unique_lock lock(ticket->mutex);
  ticket->changed.wait_for(lock, limit_,
                           [&] { return ticket->state == Ticket::State::kDone || ticket->closed; });
  const bool done = ticket->state == Ticket::State::kDone;
  if (!done) ticket->state = Ticket::State::kGivenUp;
  const bool closed = ticket->closed;
  const std::exception_ptr failure = ticket->failure;
  lock.unlock();
  {
    const std::lock_guard all(mutex_);
    waiting_.erase(ticket);
  }
  if (done && failure) std::rethrow_exception(failure);
  return done ? Outcome::kDone : closed ? Outcome::kClosed : Outcome::kTooLate;
}

void LoopGate::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  for (const auto& ticket : waiting_) {
    {
      const std::lock_guard one(ticket->mutex);
      ticket->closed = true;
    }
    ticket->changed.notify_all();
  }
}

}  // namespace standin
