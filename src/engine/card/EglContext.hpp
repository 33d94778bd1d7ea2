#pragma once
#include <string>

#include "engine/card/EglLibrary.hpp"

namespace engine {

/// A context of OpenGL that is current on its thread and belongs to no window. Its drivers are found without
/// any display server, so what is drawn goes on when a desktop ends.
class EglContext {
 public:
  /// Of the first card there is, or with `any` of what else draws. Throws number 429 where there is none.
  EglContext(const std::string& library, bool any);
  ~EglContext();
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;
  EglContext(EglContext&&) = delete;
  EglContext& operator=(EglContext&&) = delete;

  /// OpenGL's function of that name, or null.
  [[nodiscard]] void* function(const char* name) const;
  /// What draws, as it calls itself.
  [[nodiscard]] const std::string& renderer() const { return renderer_; }
  /// It tells when it has been lost.
  [[nodiscard]] bool tellsLoss() const { return tellsLoss_; }

 private:
  /// False where it can't be had on that display.
  bool open(EGLDisplay display);
  void close();

  EglLibrary egl_;
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool tellsLoss_ = false;
  std::string renderer_;
};

/// Whether a renderer of that name draws by the processor.
bool DrawsInSoftware(const std::string& renderer);

}  // namespace engine
