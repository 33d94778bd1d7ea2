#include "desktop/popup/ScreenOwners.hpp"

#include <string>

#include "desktop/popup/XScreen.hpp"

namespace desktop {

namespace {

/// The window that a window names in one of its properties, or none.
xcb_window_t NamedBy(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
  const auto asked = xcb_get_property(x, 0, window, property, XCB_ATOM_WINDOW, 0, 1);
  const Held<xcb_get_property_reply_t> answer(xcb_get_property_reply(x, asked, nullptr));
  if (!answer || xcb_get_property_value_length(answer.get()) < 4) return XCB_NONE;
  return *static_cast<const xcb_window_t*>(xcb_get_property_value(answer.get()));
}

}  // namespace

bool HasWindowManager() {
  xcb_connection_t* x = ConnectionToX();
  if (x == nullptr) return true;
  const xcb_atom_t check = AtomOf(x, "_NET_SUPPORTING_WM_CHECK");
  // The one that it names has to name itself: what a manager that died has left behind does not count.
  const xcb_window_t manager = NamedBy(x, RootOf(x), check);
  return manager != XCB_NONE && NamedBy(x, manager, check) == manager;
}

std::uint32_t NotificationWindow() {
  xcb_connection_t* x = ConnectionToX();
  if (x == nullptr) return 0;
  const xcb_atom_t selection = AtomOf(x, "_NET_SYSTEM_TRAY_S" + std::to_string(ScreenNumber()));
  const auto asked = xcb_get_selection_owner(x, selection);
  const Held<xcb_get_selection_owner_reply_t> answer(xcb_get_selection_owner_reply(x, asked, nullptr));
  if (!answer || answer->owner == XCB_NONE) return 0;
  const std::uint32_t wanted = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x, answer->owner, XCB_CW_EVENT_MASK, &wanted);
  xcb_flush(x);
  return answer->owner;
}

bool TellsOfOwners(const void* xEvent) {
  constexpr std::uint8_t kKind = 0x7f;
  const std::uint8_t kind = static_cast<const xcb_generic_event_t*>(xEvent)->response_type & kKind;
  // An area that comes says so by a message to the root.
  return kind == XCB_DESTROY_NOTIFY || kind == XCB_CLIENT_MESSAGE;
}

}  // namespace desktop
