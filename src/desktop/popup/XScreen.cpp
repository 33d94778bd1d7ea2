#include "desktop/popup/XScreen.hpp"

#include <QtGui/QGuiApplication>

namespace desktop {

xcb_connection_t* ConnectionToX() {
  const auto* x = qApp->nativeInterface<QNativeInterface::QX11Application>();
  return x != nullptr ? x->connection() : nullptr;
}

int ScreenNumber() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  xcb_parse_display(nullptr, &host, &display, &screen);
  std::free(host);
  return screen;
}

xcb_window_t RootOf(xcb_connection_t* x) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(x));
  for (int i = ScreenNumber(); i > 0 && screens.rem > 1; --i) xcb_screen_next(&screens);
  return screens.data->root;
}

xcb_atom_t AtomOf(xcb_connection_t* x, const std::string& name) {
  const auto asked = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const Held<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(x, asked, nullptr));
  return answer ? answer->atom : xcb_atom_t{XCB_NONE};
}

}  // namespace desktop
