#include "desktop/popup/ManagersWord.hpp"

#include <QtCore/QCoreApplication>
#include <utility>

#include "desktop/popup/ScreenOwners.hpp"
#include "desktop/popup/XScreen.hpp"

namespace desktop {

namespace {

// The states that ICCCM gives a window in its property WM_STATE.
constexpr std::uint32_t kNormalState = 1;
constexpr std::uint32_t kIconicState = 3;

/// Without the property nobody manages the window.
Standing StandingOf(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
  const auto asked = xcb_get_property(x, 0, window, property, XCB_ATOM_ANY, 0, 1);
  const Held<xcb_get_property_reply_t> answer(xcb_get_property_reply(x, asked, nullptr));
  if (!answer || xcb_get_property_value_length(answer.get()) < 4) return Standing::kAway;
  const std::uint32_t state = *static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
  if (state == kIconicState) return Standing::kInTaskBar;
  return state == kNormalState ? Standing::kSeen : Standing::kAway;
}

}  // namespace

ManagersWord::ManagersWord(std::function<std::uint32_t()> window, std::function<void(Standing)> told)
    : window_(std::move(window)), told_(std::move(told)) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

bool ManagersWord::speaks() { return ConnectionToX() != nullptr && HasWindowManager(); }

void ManagersWord::ask(Standing wanted) const {
  xcb_connection_t* x = ConnectionToX();
  const xcb_window_t window = window_();
  if (x == nullptr || window == 0 || wanted == Standing::kAway) return;
  if (wanted == Standing::kSeen) {
    xcb_map_window(x, window);
  } else {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = AtomOf(x, "WM_CHANGE_STATE");
    message.data.data32[0] = kIconicState;
    xcb_send_event(x, 0, RootOf(x), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
  }
  xcb_flush(x);
}

bool ManagersWord::nativeEventFilter(const QByteArray& type, void* event, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t") return false;
  constexpr std::uint8_t kKind = 0x7f;
  const auto* any = static_cast<const xcb_generic_event_t*>(event);
  if ((any->response_type & kKind) != XCB_PROPERTY_NOTIFY) return false;
  const auto* news = static_cast<const xcb_property_notify_event_t*>(event);
  xcb_connection_t* x = ConnectionToX();
  if (x == nullptr || news->window != window_()) return false;
  if (property_ == 0) property_ = AtomOf(x, "WM_STATE");
  if (news->atom == property_) told_(StandingOf(x, news->window, property_));
  return false;
}

}  // namespace desktop
