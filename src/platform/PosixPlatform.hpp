#pragma once
#include "base/Platform.hpp"

namespace platform {

/// The machine, for a process on a POSIX system without a desktop of its own.
class PosixPlatform : public base::Platform {
 public:
  /// The kernel's major version.
  std::int32_t osMajorVersion() override;
  /// As nice values: high -10, above normal -5, normal 0. Throws 70 where the system refuses; raising needs a
  /// privilege that an ordinary user lacks.
  void setPriorityClass(std::int32_t priorityClass) override;
  /// Ends the process at once, with no clean-up.
  void end() override;
  /// A line on the standard error stream: there is nobody to press a button.
  void messageBox(base::BoxKind kind, const std::string& title, const std::string& text) override;
  void emptyFile(const std::string& path) override;
};

/// The system's paths keep their backslashes as texts; the platform's own use slashes.
std::string NativePath(const std::string& path);

}  // namespace platform
