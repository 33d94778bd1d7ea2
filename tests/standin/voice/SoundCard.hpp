#pragma once
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

#include "files/Descriptor.hpp"

namespace support {

/// A sound card that a player writes to through a pipe. It takes the sound at a pace of its own, whatever the
/// machine's, and knows of it how much there was, and where it was no silence.
class SoundCard {
 public:
  explicit SoundCard(const std::string& path) : pipe_(made(path)) {
    thread_ = std::thread([this] { run(); });
  }
  ~SoundCard() {
    over_ = true;
    thread_.join();
  }
  SoundCard(const SoundCard&) = delete;
  SoundCard& operator=(const SoundCard&) = delete;
  SoundCard(SoundCard&&) = delete;
  SoundCard& operator=(SoundCard&&) = delete;

  /// Bytes that have come.
  [[nodiscard]] std::uint64_t heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  /// Whether there was something to hear behind that byte.
  [[nodiscard]] bool loudBehind(std::uint64_t mark) {
    const std::lock_guard lock(mutex_);
    return lastLoud_ > mark;
  }
  /// Waits for as many further bytes; false when they don't come.
  bool hears(std::uint64_t bytes) {
    std::unique_lock lock(mutex_);
    const std::uint64_t end = heard_ + bytes;
    return changed_.wait_for(lock, std::chrono::minutes(3), [&] { return heard_ >= end; });
  }
  /// Waits until nothing comes any more; false when more than `most` bytes have come by then.
  bool runsDry(std::uint64_t most) {
    std::unique_lock lock(mutex_);
    const std::uint64_t end = heard_ + most;
    dryRounds_ = 0;
    changed_.wait(lock, [&] { return heard_ > end || dryRounds_ >= kDry; });
    return heard_ <= end;
  }

 private:
  static constexpr int kDry = 50;  ///< looks in a row at an empty pipe

  static int made(const std::string& path) {
    constexpr int kSmall = 4096;
    if (::mkfifo(path.c_str(), 0600) != 0) throw std::system_error(errno, std::generic_category(), path);
    // Open for both, so that a player that opens it anew finds a listener.
    const int pipe = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (pipe < 0) throw std::system_error(errno, std::generic_category(), path);
    ::fcntl(pipe, F_SETPIPE_SZ, kSmall);
    return pipe;
  }
  void run() {
    std::array<char, 4096> part{};
    while (!over_) {
      pollfd one{pipe_.get(), POLLIN, 0};
      const bool ready = ::poll(&one, 1, 20) > 0;
      const ssize_t got = ready ? ::read(pipe_.get(), part.data(), part.size()) : 0;
      {
        const std::lock_guard lock(mutex_);
        for (ssize_t i = 0; i < got; ++i) {
          ++heard_;
          if (part[static_cast<std::size_t>(i)] != 0) lastLoud_ = heard_;
        }
        dryRounds_ = got > 0 ? 0 : dryRounds_ + 1;
      }
      changed_.notify_all();
      if (got > 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }

  files::Descriptor pipe_;
  std::atomic<bool> over_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t heard_ = 0;
  std::uint64_t lastLoud_ = 0;  ///< how much had come with the last byte that was no silence
  int dryRounds_ = 0;
  std::thread thread_;
};

}  // namespace support
