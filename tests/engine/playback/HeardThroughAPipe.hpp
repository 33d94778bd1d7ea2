#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>
#include <vector>

namespace engine::testing {

/// Hears what is written to a pipe: slower than it sounds until `flow`, so that a short track lasts as long
/// as it does for a listener, then as fast as it comes.
class HeardThroughAPipe {
 public:
  /// `pace`: bytes in 40 milliseconds at most.
  HeardThroughAPipe(const std::filesystem::path& pipe, const std::filesystem::path& file,
                    std::size_t pace = 1024) {
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    // Small before anybody writes: a pipe as it comes holds more than the first track.
    const int end = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(fcntl(end, F_SETPIPE_SZ, 4096), 4096);
    EXPECT_EQ(fcntl(end, F_SETFL, 0), 0);
    reader_ = std::thread([this, end, file, pace, flows = flows_.get_future()] {
      std::ofstream heard(file, std::ios::binary);
      std::vector<char> bytes(pace);
      pollfd written{end, POLLIN, 0};
      poll(&written, 1, 240'000);  // until there is a writer
      for (ssize_t count = 0; (count = read(end, bytes.data(), bytes.size())) > 0;) {
        heard.write(bytes.data(), count);
        last_ = std::chrono::steady_clock::now();
        if ((total_ += count) > kHead && first_ == Time()) first_ = last_;
        flows.wait_for(std::chrono::milliseconds(40));
      }
      close(end);
    });
  }
  ~HeardThroughAPipe() {
    if (!flowing_) flow();
    if (reader_.joinable()) reader_.join();
  }
  HeardThroughAPipe(const HeardThroughAPipe&) = delete;
  HeardThroughAPipe& operator=(const HeardThroughAPipe&) = delete;
  HeardThroughAPipe(HeardThroughAPipe&&) = delete;
  HeardThroughAPipe& operator=(HeardThroughAPipe&&) = delete;

  void flow() {
    flowing_ = true;
    flows_.set_value();
  }
  /// Returns when all has been heard.
  void end() { reader_.join(); }

  using Time = std::chrono::steady_clock::time_point;
  /// When the first of its sound came, and the last; to be asked after `end`.
  [[nodiscard]] Time first() const { return first_; }
  [[nodiscard]] Time last() const { return last_; }

 private:
  static constexpr ssize_t kHead = 200;  // of the file, which comes before there is any sound

  ssize_t total_ = 0;  // the reader's own, until it ends
  Time first_;
  Time last_;
  bool flowing_ = false;
  std::promise<void> flows_;
  std::thread reader_;
};

}  // namespace engine::testing
