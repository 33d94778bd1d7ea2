#pragma once
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "engine/common/Track.hpp"

namespace engine {

/// What became of one file.
struct TagResult {
  enum class Outcome { kRead, kNoMedia, kUnreadable, kGone };
  FileRecord record;
  Outcome outcome = Outcome::kRead;
  std::string complaint;  ///< one line for people, empty when all went well
};

/// Reads the one file of `record` and fills in its tags. Never throws.
TagResult ReadRecord(FileRecord record);

/// Threads that read tags. Used by one thread.
class TagPool {
 public:
  explicit TagPool(int workers);
  /// Drops what has not been begun and waits for the rest.
  ~TagPool();
  TagPool(const TagPool&) = delete;
  TagPool& operator=(const TagPool&) = delete;
  TagPool(TagPool&&) = delete;
  TagPool& operator=(TagPool&&) = delete;

  void submit(FileRecord record);
  /// What is done by now; waits up to `limit` for a first result when nothing is.
  std::vector<TagResult> collect(std::chrono::milliseconds limit);
  /// Files handed in and not yet collected.
  [[nodiscard]] std::size_t outstanding() const { return outstanding_; }

 private:
  void work();

  std::mutex mutex_;
  std::condition_variable jobReady_;
  std::condition_variable resultReady_;
  std::deque<FileRecord> jobs_;
  std::vector<TagResult> results_;
  bool stopping_ = false;
  std::size_t outstanding_ = 0;
  std::vector<std::thread> threads_;
};

}  // namespace engine
