#pragma once
#include <string>
#include <vector>

namespace files::testing {

/// Notes what this process flushes to the disk while it looks. One at a time.
class SyncSpy {
 public:
  SyncSpy();
  ~SyncSpy();
  SyncSpy(const SyncSpy&) = delete;
  SyncSpy& operator=(const SyncSpy&) = delete;
  SyncSpy(SyncSpy&&) = delete;
  SyncSpy& operator=(SyncSpy&&) = delete;

  /// The files and folders since the last question, in their order.
  std::vector<std::string> take();
};

}  // namespace files::testing
