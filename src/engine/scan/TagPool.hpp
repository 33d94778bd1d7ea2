#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/common/Track.hpp"

namespace engine {

/// What became of one file.
struct TagResult {
  enum class Outcome {
    kRead,
    kNoMedia,
    kUnreadable,
    kGone,
    kSlow  ///< its reader has been left to itself
  };
  FileRecord record;
  Outcome outcome = Outcome::kRead;
  std::string complaint;  ///< one line for people, empty when all went well
};

/// Reads the one file of `record` and fills in its tags. Never throws.
TagResult ReadRecord(FileRecord record);

/// Threads that read tags. Used by one thread. A file that takes too long, as on a disc that hangs, is given
/// up: its thread is left to itself, and another takes its place, while not too many are left so in the
/// process. Once several of one disc are, its other files are not tried, so that those of other discs are.
class TagPool {
 public:
  struct Settings {
    int workers = 2;
    std::chrono::milliseconds longest = std::chrono::seconds(20);  ///< that one file may take
    std::chrono::milliseconds atEnd = std::chrono::seconds(2);  ///< that the end waits for what is being read
    /// Never throws; may be called after the pool's end.
    std::function<TagResult(FileRecord)> read = ReadRecord;
    std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
  };
  /// How many threads may be left to themselves in the process and get a successor.
  static constexpr int kMostLeft = 8;
  /// How many files of one disc may hang, in the whole process, before its others are answered as unreadable
  /// for now.
  static constexpr int kMostOnADisc = 4;

  explicit TagPool(Settings settings);
  /// Drops what has not been begun and waits for the rest, for as long as `atEnd`.
  ~TagPool();
  TagPool(const TagPool&) = delete;
  TagPool& operator=(const TagPool&) = delete;
  TagPool(TagPool&&) = delete;
  TagPool& operator=(TagPool&&) = delete;

  /// `disc` tells which files hang together, as the number of their device does.
  void submit(FileRecord record, std::uint64_t disc = 0);
  /// What is done by now; waits up to `limit` for a first result when nothing is.
  std::vector<TagResult> collect(std::chrono::milliseconds limit);
  /// Files handed in and not yet collected.
  [[nodiscard]] std::size_t outstanding() const { return outstanding_; }

 private:
  struct Job;
  struct Worker;
  struct Shared;

  void begin();
  void giveUp(Worker& worker);
  void giveUpSlow();
  /// Answers what waits but can't be tried. One line tells of all that are on one disc.
  void leaveOut();

  std::shared_ptr<Shared> shared_;  ///< with the threads, of which some may outlive the pool
  std::vector<std::shared_ptr<Worker>> workers_;
  std::set<std::uint64_t> told_;  ///< the discs that are left out
  std::size_t outstanding_ = 0;
};

}  // namespace engine
