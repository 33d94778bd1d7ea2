#include "engine/card/CardOpener.hpp"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "engine/card/EglCard.hpp"

namespace engine {
namespace {

/// One that this user may use.
bool HasRenderNode(const std::string& folder) {
  std::error_code failed;
  for (std::filesystem::directory_iterator entry(folder, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    const std::string path = entry->path().string();
    if (entry->path().filename().string().rfind("renderD", 0) == 0 &&
        ::access(path.c_str(), R_OK | W_OK) == 0)
      return true;
  }
  return false;
}

}  // namespace

void KeepDriversOffTheDisk() {
  ::setenv("MESA_SHADER_CACHE_DISABLE", "true", 1);
  ::setenv("MESA_GLSL_CACHE_DISABLE", "true", 1);  // the same, as older ones call it
  ::setenv("__GL_SHADER_DISK_CACHE", "0", 1);
}

OpenCard CardOpener(Graphics choice, const CardPlaces& places) {
  if (choice == Graphics::kNone) return {};
  if (choice == Graphics::kAuto && !HasRenderNode(places.nodes)) return {};
  return [taken = std::make_shared<std::atomic<bool>>(false), library = places.library,
          any = choice == Graphics::kAny]() -> std::unique_ptr<GraphicsCard> {
    if (taken->exchange(true)) return nullptr;
    auto card = std::make_unique<EglCard>(library, any);
    *taken = false;  // not where it throws, nor while it hangs
    return card;
  };
}

}  // namespace engine
