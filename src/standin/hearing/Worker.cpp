#include "standin/hearing/Worker.hpp"

#include <system_error>
#include <utility>

namespace standin {
namespace {

std::exception_ptr FailureOf(const Worker::Work& work) {
  try {
    work();
    return nullptr;
  } catch (...) {
    return std::current_exception();
  }
}

}  // namespace

void WorkHere::start(Work work, Done done) { done(FailureOf(work)); }

WorkerThread::~WorkerThread() { join(); }

void WorkerThread::join() {
  if (thread_.joinable()) thread_.join();
}

void WorkerThread::start(Work work, Done done) {
  join();  // the one before has handed over what it made
  try {
    thread_ = std::thread([&loop = loop_, work = std::move(work), done] {
      loop.post([done, failure = FailureOf(work)] { done(failure); });
    });
  } catch (const std::system_error&) {
    loop_.post([done, failure = std::current_exception()] { done(failure); });
  }
}

}  // namespace standin
