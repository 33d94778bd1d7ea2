#include "engine/queue/SyncThread.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>
#include <utility>

#include "files/FileError.hpp"

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
    const Job job = *std::exchange(job_, std::nullopt);
    lock.unlock();
    carryOut(job);
    lock.lock();
  }
}

void SyncThread::carryOut(const Job& job) {
  if (::fdatasync(job.file->get()) != 0) {
    if (!std::exchange(told_, true))
      failed_(files::FileFailure(errno, job.folder, "Can't write ").description());
    return;
  }
  told_ = false;
  if (job.after.empty()) return;
  // The new file's name has to be there before the old file's may go.
  const files::Descriptor folder(::open(job.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.valid()) ::fsync(folder.get());
  for (const std::string& path : job.after) ::unlink(path.c_str());
}

}  // namespace engine
