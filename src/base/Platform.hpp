#pragma once
#include <cstdint>
#include <string>

namespace base {

enum class BoxKind { kPlain, kCritical };

/// What the logic asks of the machine it runs on. Each call may throw Failure.
class Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  Platform(Platform&&) = delete;
  Platform& operator=(Platform&&) = delete;
  virtual ~Platform() = default;

  virtual std::int32_t osMajorVersion() = 0;
  /// 32768 above normal, 128 high, 32 normal.
  virtual void setPriorityClass(std::int32_t priorityClass) = 0;
  /// Ends the process at once. Returns only in tests.
  virtual void end() = 0;
  /// A message box with an OK button. Without a display: a line on the standard error stream.
  virtual void messageBox(BoxKind kind, const std::string& title, const std::string& text) = 0;
  /// Makes the file empty, creating it if need be. The path may use backslashes. Throws 70, 76 or 57.
  virtual void emptyFile(const std::string& path) = 0;
};

}  // namespace base
