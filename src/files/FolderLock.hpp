#pragma once
#include <string>

#include "files/Descriptor.hpp"

namespace files {

/// One process at a time in a folder. Throws number 70 when another one is in there.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder);
  /// Whether somebody is in there; who enters just now is not disturbed by the question.
  static bool held(const std::string& folder);

 private:
  Descriptor file_;
};

}  // namespace files
