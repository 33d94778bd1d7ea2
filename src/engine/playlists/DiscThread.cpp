#include "engine/playlists/DiscThread.hpp"

#include <condition_variable>
#include <mutex>

#include "base/Attempt.hpp"

namespace engine {

struct DiscThread::Shared {
  void run();

  std::mutex mutex;  ///< guards all of the below
  std::condition_variable changed;
  std::function<void()> work;
  std::function<void()> done;
  bool busy = false;
  bool awaited = false;  ///< somebody waits for it right now
  bool late = false;     ///< somebody has waited for it in vain
  bool ending = false;
};

DiscThread::DiscThread(std::function<void()> done) : shared_(std::make_shared<Shared>()) {
  shared_->done = std::move(done);
}

DiscThread::~DiscThread() {
  if (!thread_.joinable()) return;
  const bool idle = wait(std::chrono::steady_clock::now() + std::chrono::milliseconds(500));
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->ending = true;
  }
  shared_->changed.notify_all();
  idle ? thread_.join() : thread_.detach();
}

bool DiscThread::begin(std::function<void()> work) {
  if (!thread_.joinable()) thread_ = std::thread([shared = shared_] { shared->run(); });
  {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->busy) return false;
    shared_->work = std::move(work);
    shared_->busy = true;
  }
  shared_->changed.notify_all();
  return true;
}

bool DiscThread::busy() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->busy;
}

bool DiscThread::wait(Time until) {
  std::unique_lock lock(shared_->mutex);
  if (!shared_->busy) return true;
  if (shared_->late) return false;
  shared_->awaited = true;
  const bool idle = shared_->changed.wait_until(lock, until, [this] { return !shared_->busy; });
  shared_->awaited = false;
  shared_->late = !idle;
  return idle;
}

void DiscThread::Shared::run() {
  std::unique_lock lock(mutex);
  while (true) {
    changed.wait(lock, [this] { return work || ending; });
    if (!work) return;
    {
      const auto now = std::exchange(work, nullptr);
      lock.unlock();
      base::Attempt step;
      step(now);
    }
    lock.lock();
    busy = late = false;
    if (ending) return;
    if (!awaited) done();
    changed.notify_all();
  }
}

}  // namespace engine
