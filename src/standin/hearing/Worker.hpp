#pragma once
#include <exception>
#include <functional>
#include <thread>

#include "base/Loop.hpp"

namespace standin {

/// Where work is done that would hold up the loop, one piece at a time.
class Worker {
 public:
  using Work = std::function<void()>;
  /// What the work has thrown; nothing where it has not.
  using Done = std::function<void(const std::exception_ptr& failure)>;

  Worker() = default;
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  Worker(Worker&&) = delete;
  Worker& operator=(Worker&&) = delete;
  virtual ~Worker() = default;

  /// Does the work and then, on the loop's thread, `done`. Not to be called again before that.
  virtual void start(Work work, Done done) = 0;
};

/// Does it here and now.
class WorkHere : public Worker {
 public:
  void start(Work work, Done done) override;
};

/// Does it on a thread of its own, which its end waits for.
class WorkerThread : public Worker {
 public:
  explicit WorkerThread(base::Loop& loop) : loop_(loop) {}
  ~WorkerThread() override;
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;
  WorkerThread(WorkerThread&&) = delete;
  WorkerThread& operator=(WorkerThread&&) = delete;

  void start(Work work, Done done) override;

 private:
  void join();

  base::Loop& loop_;
  std::thread thread_;
};

}  // namespace standin
