#pragma once
#include <EGL/egl.h>

#include <string>

namespace engine {

/// The library that finds the drivers of graphics cards. It is loaded when a card is opened, and stays.
struct EglLibrary {
  /// Throws number 429 when it can't be loaded.
  explicit EglLibrary(const std::string& name);

  decltype(&eglGetProcAddress) function;
  decltype(&eglQueryString) text;
  decltype(&eglGetPlatformDisplay) display;
  decltype(&eglInitialize) initialize;
  decltype(&eglBindAPI) bindApi;
  decltype(&eglChooseConfig) chooseConfig;
  decltype(&eglCreateContext) makeContext;
  decltype(&eglMakeCurrent) makeCurrent;
  decltype(&eglDestroyContext) endContext;
  decltype(&eglReleaseThread) leaveThread;
};

}  // namespace engine
