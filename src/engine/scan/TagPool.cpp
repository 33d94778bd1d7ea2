#include "engine/scan/TagPool.hpp"

#include <algorithm>
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

TagPool::TagPool(int workers) {
  for (int i = 0; i < std::max(1, workers); ++i) threads_.emplace_back([this] { work(); });
}

TagPool::~TagPool() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  jobReady_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void TagPool::submit(FileRecord record) {
  ++outstanding_;
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(record));
  }
  jobReady_.notify_one();
}

std::vector<TagResult> TagPool::collect(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  if (results_.empty() && limit.count() > 0) {
    resultReady_.wait_for(lock, limit, [this] { return !results_.empty(); });
  }
  std::vector<TagResult> results = std::exchange(results_, {});
  outstanding_ -= results.size();
  return results;
}

void TagPool::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    jobReady_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (stopping_) return;
    FileRecord record = std::move(jobs_.front());
    jobs_.pop_front();
    lock.unlock();
    TagResult result = ReadRecord(std::move(record));
    lock.lock();
    results_.push_back(std::move(result));
    if (results_.size() == 1) resultReady_.notify_one();
  }
}

}  // namespace engine
