#include "engine/decoder/MpvLibrary.hpp"

#include <dlfcn.h>

#include <string>

#include "base/Failure.hpp"

namespace engine {
namespace {

[[noreturn]] void FailToLoad() {
  const char* reason = ::dlerror();
  throw base::Failure(base::number::kCannotCreate,
                      std::string("The decoder can't be loaded: ") + (reason != nullptr ? reason : ""));
}

template <class Function>
void Find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  if (function == nullptr) FailToLoad();
}

}  // namespace

MpvLibrary::MpvLibrary() {
  // The name of those versions that this program was built against.
  static_assert(MPV_CLIENT_API_VERSION >> 16U == 2);
  void* library = ::dlopen("libmpv.so.2", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) FailToLoad();
  Find(library, "mpv_create", create);
  Find(library, "mpv_set_option_string", setOption);
  Find(library, "mpv_initialize", initialize);
  Find(library, "mpv_terminate_destroy", destroy);
  Find(library, "mpv_error_string", errorText);
  Find(library, "mpv_command_async", command);
  Find(library, "mpv_set_property_async", setProperty);
  Find(library, "mpv_get_property_async", askProperty);
  Find(library, "mpv_observe_property", observe);
  Find(library, "mpv_hook_add", hook);
  Find(library, "mpv_hook_continue", leaveHook);
  Find(library, "mpv_set_wakeup_callback", onWakeup);
  Find(library, "mpv_wait_event", nextEvent);
  Find(library, "mpv_stream_cb_add_ro", serve);
  Find(library, "mpv_render_context_create", makeRenderer);
  Find(library, "mpv_render_context_set_update_callback", onFrame);
  Find(library, "mpv_render_context_render", draw);
  Find(library, "mpv_render_context_free", endRenderer);
  Find(library, "av_max_alloc", limitBlocks);
}

}  // namespace engine
