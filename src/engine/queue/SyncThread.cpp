#include "engine/queue/SyncThread.hpp"

#include <unistd.h>

#include <cerrno>
#include <iterator>
#include <utility>

#include "files/FileError.hpp"
#include "files/FolderSync.hpp"

namespace engine {

SyncThread::~SyncThread() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SyncThread::sync(Job job) {
  {
    const std::lock_guard lock(mutex_);
    if (job_) {
      job.after.insert(job.after.end(), std::make_move_iterator(job_->after.begin()),
                       std::make_move_iterator(job_->after.end()));
    }
    job_ = std::move(job);
  }
  changed_.notify_one();
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
}

void SyncThread::run() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return job_ || ending_; });
    if (!job_) return;
    Job job = *std::exchange(job_, std::nullopt);
    job.after.insert(job.after.end(), std::make_move_iterator(left_.begin()),
                     std::make_move_iterator(left_.end()));
    left_.clear();
    lock.unlock();
    if (!carryOut(job)) left_ = std::move(job.after);
    lock.lock();
  }
}

bool SyncThread::carryOut(const Job& job) {
  const auto fail = [&](int error) {
    if (!std::exchange(told_, true))
      failed_(files::FileFailure(error, job.folder, "Can't write ").description());
    return false;
  };
  if (::fdatasync(job.file->get()) != 0) return fail(errno);
  if (!job.after.empty()) {
    // The new file's name has to be there before the old file's may go.
    if (const int error = files::FlushFolder(job.folder); error != 0) return fail(error);
    for (const std::string& path : job.after) ::unlink(path.c_str());
  }
  told_ = false;
  return true;
}

}  // namespace engine
