#include "engine/card/EglLibrary.hpp"

#include <dlfcn.h>

#include "base/Failure.hpp"

namespace engine {
namespace {

[[noreturn]] void FailToLoad() {
  const char* reason = ::dlerror();
  throw base::Failure(base::number::kCannotCreate,
                      std::string("no driver can be looked for: ") + (reason != nullptr ? reason : ""));
}

template <class Function>
void Find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  if (function == nullptr) FailToLoad();
}

}  // namespace

EglLibrary::EglLibrary(const std::string& name) {
  // Drivers leave threads and work for the process's end behind, so they stay too.
  void* library = ::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) FailToLoad();
  Find(library, "eglGetProcAddress", function);
  Find(library, "eglQueryString", text);
  Find(library, "eglGetPlatformDisplay", display);
  Find(library, "eglInitialize", initialize);
  Find(library, "eglBindAPI", bindApi);
  Find(library, "eglChooseConfig", chooseConfig);
  Find(library, "eglCreateContext", makeContext);
  Find(library, "eglMakeCurrent", makeCurrent);
  Find(library, "eglDestroyContext", endContext);
  Find(library, "eglReleaseThread", leaveThread);
}

}  // namespace engine
