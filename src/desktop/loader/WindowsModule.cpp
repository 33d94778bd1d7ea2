#include "desktop/loader/WindowsModule.hpp"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace desktop {

namespace {

/// The module's entry. It is not unloaded: Qt can't be.
OpenWindows Load(std::string& problem) {
  std::error_code failure;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
  const auto file = program.parent_path() / "vxif_windows.so";
  void* module = failure ? nullptr : ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = module == nullptr ? nullptr : ::dlsym(module, kOpenWindows);
  if (entry != nullptr) return reinterpret_cast<OpenWindows>(entry);
  const char* reason = ::dlerror();
  problem = reason != nullptr ? reason : failure.message();
  return nullptr;
}

}  // namespace

std::unique_ptr<Windows> LoadWindows(bus::PollLoop& loop, base::MovingPicture* picture,
                                     const std::function<void()>& gone,
                                     const std::function<void(const std::string&)>& tell) {
  OpenWindows open = nullptr;
  for (const Display::Kind kind : Display::kOrder) {
    auto display = Display::reach(kind);
    if (!display) continue;
    if (std::string problem; open == nullptr && (open = Load(problem)) == nullptr) {
      tell("The windows can't be loaded: " + problem);
      return nullptr;
    }
    WindowsParts parts{loop, std::move(*display), gone, picture};
    if (auto windows = std::unique_ptr<Windows>(open(&parts))) return windows;
  }
  return nullptr;
}

}  // namespace desktop
