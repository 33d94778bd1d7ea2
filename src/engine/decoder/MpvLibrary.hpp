#pragma once
extern "C" {
#include <libavutil/mem.h>
}
#include <mpv/client.h>
#include <mpv/render.h>
#include <mpv/stream_cb.h>

namespace engine {

/// The decoder's library, which brings some two hundred others with it: it is loaded when it is needed, and
/// stays.
struct MpvLibrary {
  /// Throws number 429 when it can't be loaded.
  MpvLibrary();

  decltype(&mpv_create) create;
  decltype(&mpv_set_option_string) setOption;
  decltype(&mpv_initialize) initialize;
  decltype(&mpv_terminate_destroy) destroy;
  decltype(&mpv_error_string) errorText;
  decltype(&mpv_command_async) command;
  decltype(&mpv_set_property_async) setProperty;
  decltype(&mpv_get_property_async) askProperty;
  decltype(&mpv_observe_property) observe;
  decltype(&mpv_hook_add) hook;
  decltype(&mpv_hook_continue) leaveHook;
  decltype(&mpv_set_wakeup_callback) onWakeup;
  decltype(&mpv_wait_event) nextEvent;
  decltype(&mpv_stream_cb_add_ro) serve;
  decltype(&mpv_render_context_create) makeRenderer;
  decltype(&mpv_render_context_set_update_callback) onFrame;
  decltype(&mpv_render_context_render) draw;
  decltype(&mpv_render_context_free) endRenderer;
  decltype(&av_max_alloc) limitBlocks;  ///< of a library that comes with it
};

}  // namespace engine
