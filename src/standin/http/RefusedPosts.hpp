#pragma once
#include <array>
#include <chrono>
#include <mutex>
#include <string>

#include "base/Loop.hpp"
#include "standin/house/HouseLog.hpp"

namespace standin {

/// Why a post was not taken.
enum class PostRefusal { kOtherOrigin, kForeignHost, kNoSession };

/// Tells the log of the posts that were refused: the first one at once, all others in one line a pause, so
/// that nobody can fill the log with them.
class RefusedPosts {
 public:
  RefusedPosts(base::Loop& loop, HouseLog& log) : RefusedPosts(loop, log, std::chrono::minutes(1)) {}
  RefusedPosts(base::Loop& loop, HouseLog& log, base::Milliseconds pause);
  /// Writes what has not been told.
  ~RefusedPosts();
  RefusedPosts(const RefusedPosts&) = delete;
  RefusedPosts& operator=(const RefusedPosts&) = delete;
  RefusedPosts(RefusedPosts&&) = delete;
  RefusedPosts& operator=(RefusedPosts&&) = delete;

  /// Thread-safe.
  void count(PostRefusal why);

 private:
  using Counts = std::array<std::size_t, 3>;
  /// Writes a line about what was counted; false when that is nothing.
  bool tell();
  void begin();
  void pauseIsOver();

  base::Loop& loop_;
  HouseLog& log_;
  std::mutex mutex_;
  Counts counts_{};
  bool begun_ = false;  ///< a line is on its way, or the pause after it lasts
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
