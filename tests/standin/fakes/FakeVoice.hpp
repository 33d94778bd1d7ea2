#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/voice/VoiceOutput.hpp"

namespace support {

/// A voice that nobody hears; it writes down what it says.
class FakeVoice : public standin::VoiceOutput {
 public:
  void say(const std::string& text) override {
    std::unique_lock lock(mutex_);
    if (!device) throw base::Failure(base::number::kDeviceIo, "There is no sound device");
    said_.push_back(text);
    changed_.wait_for(lock, time, [this] { return hushed_; });
    hushed_ = false;
  }
  void tone() override {
    const std::lock_guard lock(mutex_);
    said_.emplace_back("(a tone)");
  }
  void hush() override {
    {
      const std::lock_guard lock(mutex_);
      hushed_ = true;
    }
    changed_.notify_all();
  }
  [[nodiscard]] std::vector<std::string> said() {
    const std::lock_guard lock(mutex_);
    return said_;
  }

  std::chrono::milliseconds time{20};  ///< that each text takes
  bool device = true;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool hushed_ = false;
  std::vector<std::string> said_;
};

}  // namespace support
