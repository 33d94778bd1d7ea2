#pragma once
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "files/Descriptor.hpp"

namespace engine {

/// Brings files onto the disk while their writer goes on. The thread is started with the first of them.
class SyncThread {
 public:
  struct Job {
    std::shared_ptr<files::Descriptor> file;
    std::string folder;              ///< where it lies
    std::vector<std::string> after;  ///< files that may go once it is on the disk
  };

  /// `failed` gets the reason, on the thread, and not again before something has gone well.
  explicit SyncThread(std::function<void(const std::string&)> failed) : failed_(std::move(failed)) {}
  /// What was asked for is done first.
  ~SyncThread();
  SyncThread(const SyncThread&) = delete;
  SyncThread& operator=(const SyncThread&) = delete;
  SyncThread(SyncThread&&) = delete;
  SyncThread& operator=(SyncThread&&) = delete;

  /// Waits for nothing. The last file that was asked for is the one that counts.
  void sync(Job job);

 private:
  void run();
  /// False when the files behind it have to stay for now.
  bool carryOut(const Job& job);

  std::function<void(const std::string&)> failed_;
  std::mutex mutex_;  ///< guards `job_` and `ending_`
  std::condition_variable changed_;
  std::optional<Job> job_;
  bool ending_ = false;
  bool told_ = false;              ///< the thread's own, as the next
  std::vector<std::string> left_;  ///< files that may go once something is on the disk
  std::thread thread_;
};

}  // namespace engine
