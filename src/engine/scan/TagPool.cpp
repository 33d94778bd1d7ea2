#include "engine/scan/TagPool.hpp"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "base/Failure.hpp"
#include "engine/scan/TagReader.hpp"

namespace engine {

TagResult ReadRecord(FileRecord record) {
  TagResult result;
  try {
    TagReading reading = ReadTags(record.path);
    record.tags = std::move(reading.tags);
    result.complaint = std::move(reading.remark);
  } catch (const base::Failure& failure) {
    switch (failure.number()) {
      case base::number::kFileNotFound:
      case base::number::kPathNotFound: result.outcome = TagResult::Outcome::kGone; break;
      case base::number::kInvalidArgument: result.outcome = TagResult::Outcome::kNoMedia; break;
      default: result.outcome = TagResult::Outcome::kUnreadable;
    }
    if (result.outcome != TagResult::Outcome::kGone) result.complaint = failure.description();
  } catch (const std::exception& failure) {
    result.outcome = TagResult::Outcome::kNoMedia;
    result.complaint = SafeName(record.path) + ": " + failure.what();
  }
  if (result.outcome != TagResult::Outcome::kRead) {
    record.tags = TrackTags();
    record.tags.kind = MediaKind::kNone;
  }
  result.record = std::move(record);
  return result;
}

namespace {

/// The threads of the process that were left to themselves, by the disc on which each hangs.
class Left {
 public:
  void add(std::uint64_t disc) {
    const std::lock_guard lock(mutex_);
    ++onDisc_[disc];
    ++all_;
  }
  void remove(std::uint64_t disc) {
    const std::lock_guard lock(mutex_);
    if (--onDisc_[disc] == 0) onDisc_.erase(disc);
    --all_;
  }
  [[nodiscard]] int all() const {
    const std::lock_guard lock(mutex_);
    return all_;
  }
  /// The discs of which no further file is tried.
  [[nodiscard]] std::set<std::uint64_t> full() const {
    const std::lock_guard lock(mutex_);
    std::set<std::uint64_t> discs;
    for (const auto& [disc, count] : onDisc_)
      if (count >= TagPool::kMostOnADisc) discs.insert(disc);
    return discs;
  }

 private:
  mutable std::mutex mutex_;
  std::map<std::uint64_t, int> onDisc_;
  int all_ = 0;
};

const std::shared_ptr<Left>& TheLeft() {
  static const auto left = std::make_shared<Left>();
  return left;
}

TagResult Slow(FileRecord record) {
  TagResult result;
  result.outcome = TagResult::Outcome::kSlow;
  result.complaint =
      SafeName(record.path) + ": reading it takes too long, and it is left out until the next start";
  result.record = std::move(record);
  return result;
}

TagResult NotTried(FileRecord record, bool told) {
  TagResult result;
  result.outcome = TagResult::Outcome::kUnreadable;
  if (!told)
    result.complaint =
        SafeName(record.path) + ": not read, nor are others of its disc, as too many files take too long";
  result.record = std::move(record);
  return result;
}

}  // namespace

struct TagPool::Job {
  FileRecord record;
  std::uint64_t disc;
};

struct TagPool::Worker {
  bool busy = false;
  bool left = false;  ///< nobody waits for it any more
  bool ended = false;
  std::chrono::steady_clock::time_point since;
  FileRecord reads;        ///< its path and stamp
  std::uint64_t disc = 0;  ///< that it lies on
  std::thread thread;
};

struct TagPool::Shared {
  explicit Shared(Settings given) : settings(std::move(given)) {}
  void work(Worker& self);

  const Settings settings;
  const std::shared_ptr<Left> left = TheLeft();  ///< a thread may outlive all that is static
  std::mutex mutex;                              ///< guards all of the below, and the workers
  std::condition_variable jobReady;
  std::condition_variable resultReady;
  std::condition_variable ended;
  std::deque<Job> jobs;
  std::vector<TagResult> results;
  bool stopping = false;
};

TagPool::TagPool(Settings settings) : shared_(std::make_shared<Shared>(std::move(settings))) {
  for (int i = 0; i < std::max(1, shared_->settings.workers); ++i) begin();
}

TagPool::~TagPool() {
  std::unique_lock lock(shared_->mutex);
  shared_->stopping = true;
  shared_->jobReady.notify_all();
  shared_->ended.wait_for(lock, shared_->settings.atEnd, [this] {
    return std::all_of(workers_.begin(), workers_.end(), [](const auto& worker) { return worker->ended; });
  });
  for (const auto& worker : workers_) {
    if (!worker->ended) giveUp(*worker);
  }
  lock.unlock();
  for (const auto& worker : workers_) {
    if (worker->thread.joinable()) worker->thread.join();
  }
}

void TagPool::begin() {
  auto worker = std::make_shared<Worker>();
  workers_.push_back(worker);
  worker->thread = std::thread([shared = shared_, worker] { shared->work(*worker); });
}

void TagPool::giveUp(Worker& worker) {
  worker.left = true;
  worker.thread.detach();
  shared_->left->add(worker.disc);
}

void TagPool::giveUpSlow() {
  Shared& shared = *shared_;
  const auto now = shared.settings.now();
  for (std::size_t i = workers_.size(); i-- > 0;) {
    const auto worker = workers_[i];
    if (!worker->busy || now - worker->since <= shared.settings.longest) continue;
    giveUp(*worker);
    shared.results.push_back(Slow(std::move(worker->reads)));
    workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(i));
  }
  const auto wanted = static_cast<std::size_t>(std::max(1, shared.settings.workers));
  while (workers_.size() < wanted && shared.left->all() <= kMostLeft) begin();
  leaveOut();
}

void TagPool::leaveOut() {
  const std::set<std::uint64_t> full = shared_->left->full();
  if (!workers_.empty()) {
    std::erase_if(told_, [&](std::uint64_t disc) { return !full.contains(disc); });
    if (full.empty()) return;
  }
  std::deque<Job>& jobs = shared_->jobs;
  const auto out = std::stable_partition(jobs.begin(), jobs.end(), [&](const Job& job) {
    return !workers_.empty() && !full.contains(job.disc);
  });
  for (auto job = out; job != jobs.end(); ++job) {
    const bool told = !told_.insert(job->disc).second;
    shared_->results.push_back(NotTried(std::move(job->record), told));
  }
  jobs.erase(out, jobs.end());
}

void TagPool::submit(FileRecord record, std::uint64_t disc) {
  ++outstanding_;
  {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->left->full().contains(disc)) {
      const bool told = !told_.insert(disc).second;
      shared_->results.push_back(NotTried(std::move(record), told));
      return;
    }
    shared_->jobs.push_back({std::move(record), disc});
  }
  shared_->jobReady.notify_one();
}

std::vector<TagResult> TagPool::collect(std::chrono::milliseconds limit) {
  std::unique_lock lock(shared_->mutex);
  if (shared_->results.empty() && limit.count() > 0) {
    shared_->resultReady.wait_for(lock, limit, [this] { return !shared_->results.empty(); });
  }
  giveUpSlow();
  std::vector<TagResult> results = std::exchange(shared_->results, {});
  outstanding_ -= results.size();
  return results;
}

void TagPool::Shared::work(Worker& self) {
  std::unique_lock lock(mutex);
  while (!self.left) {
    jobReady.wait(lock, [this] { return stopping || !jobs.empty(); });
    if (stopping) break;
    auto [record, disc] = std::move(jobs.front());
    jobs.pop_front();
    self.disc = disc;
    self.reads = record;
    self.since = settings.now();
    self.busy = true;
    lock.unlock();
    TagResult result = settings.read(std::move(record));
    lock.lock();
    if (self.left) break;
    self.busy = false;
    results.push_back(std::move(result));
    if (results.size() == 1) resultReady.notify_one();
  }
  self.ended = true;
  if (self.left) left->remove(self.disc);
  ended.notify_all();
}

}  // namespace engine
