#pragma once
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>

#include "support/TempFolder.hpp"

namespace support {

/// How the operations on files go wrong.
struct FileFault {
  int error = ENOSPC;
  bool lasting =
      false;  ///< all that come behind the first one fail too, unless they could be done on a full disk
  bool reading = false;  ///< what is only read fails too
};

/// A disk that fails. While this lives, the `nth` operation of this process that touches a file in the folder
/// ends in the error; a write of several bytes gets half of them there before, and a new file that can't be
/// synced before it is put in its place is empty. One at a time. The functions
/// of the C library that open, write, cut, sync, rename, make and remove files are this program's own
/// wherever it is linked, for the libraries too.
class FailingFiles {
 public:
  FailingFiles(const std::string& folder, const FileFault& fault, int nth);
  ~FailingFiles();
  FailingFiles(const FailingFiles&) = delete;
  FailingFiles& operator=(const FailingFiles&) = delete;
  FailingFiles(FailingFiles&&) = delete;
  FailingFiles& operator=(FailingFiles&&) = delete;

  /// What has failed first ("write /tmp/x"), empty while nothing has.
  static std::string failed();
};

/// One attempt: the folder, and the disk that fails there for as long as `part` runs.
class FaultyRun {
 public:
  FaultyRun(std::string folder, FileFault fault, int nth)
      : folder_(std::move(folder)), fault_(fault), nth_(nth) {}

  [[nodiscard]] const std::string& folder() const { return folder_; }
  [[nodiscard]] const FileFault& fault() const { return fault_; }
  void onTheFailingDisk(const std::function<void()>& part) {
    const FailingFiles disk(folder_, fault_, nth_);
    part();
    failed_ = FailingFiles::failed();
  }
  /// What has failed.
  [[nodiscard]] const std::string& failed() const { return failed_; }

 private:
  std::string folder_;
  FileFault fault_;
  int nth_;
  std::string failed_;
};

/// Makes the attempt with the first operation failing, then with the second, until none is left that fails,
/// in every way; each in a new folder. Answers how often something has failed.
inline int WithEachFileFault(const std::function<void(FaultyRun&)>& attempt) {
  int count = 0;
  for (const FileFault& fault : {FileFault{ENOSPC, false, false}, FileFault{ENOSPC, true, false},
                                 FileFault{EIO, false, true}, FileFault{EIO, true, true}}) {
    for (int nth = 1;; ++nth) {
      const TempFolder root;
      FaultyRun run(root.path(), fault, nth);
      attempt(run);
      if (::testing::Test::HasFailure()) {
        ADD_FAILURE() << (fault.error == EIO ? "EIO" : "ENOSPC")
                      << (fault.lasting ? " from the " : " at the ") << nth << ". operation on, "
                      << run.failed();
        return count;
      }
      if (run.failed().empty()) break;
      ++count;
    }
  }
  return count;
}

}  // namespace support
