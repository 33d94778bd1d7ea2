#pragma once
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

/// The X screen that Qt's windows are on. To be asked while there are windows.
namespace desktop {

/// X's answers are freed by whoever asked.
struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using Held = std::unique_ptr<Reply, FreeReply>;

/// Nothing where the screen is not X's.
xcb_connection_t* ConnectionToX();
/// The number of the screen that DISPLAY names.
int ScreenNumber();
xcb_window_t RootOf(xcb_connection_t* x);
/// The number that stands for a name; XCB_NONE when the screen has gone.
xcb_atom_t AtomOf(xcb_connection_t* x, const std::string& name);

}  // namespace desktop
