#include "platform/PosixPlatform.hpp"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "files/Descriptor.hpp"
#include "files/FileError.hpp"
#include "files/WriteFile.hpp"

namespace platform {

using base::Failure;

std::string NativePath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

std::int32_t PosixPlatform::osMajorVersion() {
  utsname system{};
  if (uname(&system) != 0) files::FailOn("uname", errno);
  return static_cast<std::int32_t>(std::strtol(system.release, nullptr, 10));
}

void PosixPlatform::setPriorityClass(std::int32_t priorityClass) {
  constexpr std::int32_t kHigh = 128;
  constexpr std::int32_t kAboveNormal = 32768;
  const int nice = priorityClass == kHigh ? -10 : priorityClass == kAboveNormal ? -5 : 0;
  // The system counts each thread as a process here; a thread made later takes after its maker.
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    const auto thread = static_cast<id_t>(std::strtoul(task.path().filename().c_str(), nullptr, 10));
    if (setpriority(PRIO_PROCESS, thread, nice) != 0 && errno != ESRCH) files::FailOn("priority", errno);
  }
}

void PosixPlatform::end() { _exit(0); }

void PosixPlatform::messageBox(base::BoxKind kind, const std::string& title, const std::string& text) {
  std::fprintf(stderr, "%s%s: %s\n", kind == base::BoxKind::kCritical ? "(!) " : "", title.c_str(),
               text.c_str());
}

void PosixPlatform::emptyFile(const std::string& path) {
  const std::string native = NativePath(path);
  const files::Descriptor file(
      open(native.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, files::kForOwner));
  if (!file.valid()) files::FailOn(native, errno);
}

}  // namespace platform
