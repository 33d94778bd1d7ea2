#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

namespace engine::testing {

/// Hears what is written to a pipe: slower than it sounds, so that a short track lasts as long as it does for
/// a listener; as fast as it comes as far as `upTo` has told, and all of it after `flow`. It never stands
/// still, as the decoder answers nothing while it can't write; nor does it leave before `flow`, as a decoder
/// that closes the pipe and opens it again would wait for it for ever.
class HeardThroughAPipe {
 public:
  /// `pace`: bytes in 40 milliseconds at most.
  HeardThroughAPipe(const std::filesystem::path& pipe, const std::filesystem::path& file,
                    std::size_t pace = 2048) {
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    // Small before anybody writes: a pipe as it comes holds more than the first track.
    const int end = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(fcntl(end, F_SETPIPE_SZ, 4096), 4096);
    EXPECT_EQ(fcntl(end, F_SETFL, 0), 0);
    reader_ = std::thread([this, end, file, pace] { hear(end, file, pace); });
  }
  ~HeardThroughAPipe() {
    flow();
    if (reader_.joinable()) reader_.join();
  }
  HeardThroughAPipe(const HeardThroughAPipe&) = delete;
  HeardThroughAPipe& operator=(const HeardThroughAPipe&) = delete;
  HeardThroughAPipe(HeardThroughAPipe&&) = delete;
  HeardThroughAPipe& operator=(HeardThroughAPipe&&) = delete;

  void flow() { upTo(kAll); }
  /// That many seconds of the whole may be heard at once.
  void upTo(double seconds) {
    {
      const std::lock_guard lock(mutex_);
      allowed_ = seconds;
    }
    more_.notify_one();
  }
  /// Returns when all has been heard.
  void end() { reader_.join(); }

  using Time = std::chrono::steady_clock::time_point;
  /// When the first of its sound came, and the last; to be asked after `end`.
  [[nodiscard]] Time first() const { return first_; }
  [[nodiscard]] Time last() const { return last_; }

 private:
  static constexpr double kAll = std::numeric_limits<double>::max();
  static constexpr ssize_t kHead = 200;     // of the file, which comes before there is any sound
  static constexpr std::size_t kRate = 28;  // where the head tells the bytes a second

  void hear(int end, const std::filesystem::path& file, std::size_t pace) {
    std::ofstream heard(file, std::ios::binary);
    std::vector<char> bytes(pace);
    std::uint32_t rate = 0;
    pollfd written{end, POLLIN, 0};
    poll(&written, 1, 240'000);  // until there is a writer
    while (true) {
      const ssize_t count = read(end, bytes.data(), bytes.size());
      if (count < 0) break;
      if (count == 0) {  // nobody writes
        std::unique_lock lock(mutex_);
        if (allowed_ == kAll) break;
        more_.wait_for(lock, std::chrono::milliseconds(40));
        continue;
      }
      heard.write(bytes.data(), count);
      if (total_ == 0 && static_cast<std::size_t>(count) >= kRate + sizeof rate)
        std::memcpy(&rate, bytes.data() + kRate, sizeof rate);
      last_ = std::chrono::steady_clock::now();
      if ((total_ += count) > kHead && first_ == Time()) first_ = last_;
      std::unique_lock lock(mutex_);
      more_.wait_for(lock, std::chrono::milliseconds(40),
                     [&] { return static_cast<double>(total_) < allowed_ * rate; });
    }
    close(end);
  }

  std::mutex mutex_;
  std::condition_variable more_;
  double allowed_ = 0;  ///< seconds that may be heard at once
  ssize_t total_ = 0;   // the reader's own, until it ends
  Time first_;
  Time last_;
  std::thread reader_;
};

}  // namespace engine::testing
