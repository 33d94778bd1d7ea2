#include "engine/card/EglContext.hpp"

#include <EGL/eglext.h>
#include <GL/gl.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace engine {
namespace {

bool Lists(const char* extensions, const std::string& name) {
  return extensions != nullptr &&
         (" " + std::string(extensions) + " ").find(" " + name + " ") != std::string::npos;
}

/// Everything that may be a card and needs no display server.
std::vector<EGLDisplay> Displays(const EglLibrary& egl) {
  std::vector<EGLDisplay> displays;
  const char* extensions = egl.text(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  if (Lists(extensions, "EGL_MESA_platform_surfaceless"))
    displays.push_back(egl.display(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr));
  if (Lists(extensions, "EGL_EXT_platform_device")) {
    const auto list = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(egl.function("eglQueryDevicesEXT"));
    std::array<EGLDeviceEXT, 8> devices{};
    EGLint count = 0;
    if (list == nullptr || list(static_cast<EGLint>(devices.size()), devices.data(), &count) != EGL_TRUE)
      count = 0;
    for (EGLint i = 0; i < count; ++i)
      displays.push_back(
          egl.display(EGL_PLATFORM_DEVICE_EXT, devices.at(static_cast<std::size_t>(i)), nullptr));
  }
  return displays;
}

/// What draws by the processor compiles for it, and jumps to nowhere in a sandbox that lets nobody run what
/// he has written.
bool MayRunWhatItWrites() {
  constexpr std::size_t kLittle = 4096;
  void* const room = ::mmap(nullptr, kLittle, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) return false;
  const bool may = ::mprotect(room, kLittle, PROT_READ | PROT_EXEC) == 0;
  ::munmap(room, kLittle);
  return may;
}

}  // namespace

bool DrawsInSoftware(const std::string& renderer) {
  const std::string folded = base::LowerCase(renderer);
  constexpr std::array kNames{"llvmpipe", "softpipe", "swrast", "swiftshader", "software"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [&](const char* name) { return folded.find(name) != std::string::npos; });
}

EglContext::EglContext(const std::string& library, bool any) : egl_(library) {
  for (EGLDisplay display : Displays(egl_)) {
    if (display != EGL_NO_DISPLAY && open(display) &&
        (!DrawsInSoftware(renderer_) || (any && MayRunWhatItWrites())))
      return;
    close();
  }
  throw base::Failure(base::number::kCannotCreate,
                      renderer_.empty() ? "no driver offers OpenGL without a window"
                                        : "there is no graphics card to be used, only " + renderer_);
}

EglContext::~EglContext() { close(); }

bool EglContext::open(EGLDisplay display) {
  // It is never terminated again: it is the same one for all that draw in this process.
  if (egl_.initialize(display, nullptr, nullptr) != EGL_TRUE) return false;
  if (egl_.bindApi(EGL_OPENGL_API) != EGL_TRUE) return false;
  const char* extensions = egl_.text(display, EGL_EXTENSIONS);
  if (!Lists(extensions, "EGL_KHR_surfaceless_context")) return false;
  EGLConfig config = nullptr;  // none is needed where there is never a surface
  if (!Lists(extensions, "EGL_KHR_no_config_context")) {
    const std::array<EGLint, 5> wanted{EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLint count = 0;
    if (egl_.chooseConfig(display, wanted.data(), &config, 1, &count) != EGL_TRUE || count < 1) return false;
  }
  display_ = display;
  // A driver may end the process when its card is reset under somebody who hasn't asked to be told.
  constexpr std::array<EGLint, 3> kTold{EGL_CONTEXT_OPENGL_RESET_NOTIFICATION_STRATEGY,
                                        EGL_LOSE_CONTEXT_ON_RESET, EGL_NONE};
  context_ = egl_.makeContext(display, config, EGL_NO_CONTEXT, kTold.data());
  tellsLoss_ = context_ != EGL_NO_CONTEXT;
  if (!tellsLoss_) context_ = egl_.makeContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (context_ == EGL_NO_CONTEXT) return false;
  if (egl_.makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) != EGL_TRUE) return false;
  const auto text = reinterpret_cast<decltype(&glGetString)>(function("glGetString"));
  const GLubyte* name = text != nullptr ? text(GL_RENDERER) : nullptr;
  if (name == nullptr) return false;
  renderer_ = reinterpret_cast<const char*>(name);
  return true;
}

void EglContext::close() {
  if (context_ != EGL_NO_CONTEXT) {
    egl_.makeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    egl_.endContext(display_, context_);
    context_ = EGL_NO_CONTEXT;
  }
  egl_.leaveThread();
}

void* EglContext::function(const char* name) const { return reinterpret_cast<void*>(egl_.function(name)); }

}  // namespace engine
