#include "mpris/MediaControls.hpp"

#include <utility>

namespace mpris {

namespace {
constexpr base::Milliseconds kLookForPlayer{100};
}

MediaControls::MediaControls(Parts parts)
    : face_({parts.loop, parts.script, std::move(parts.canRaise), [this] { return session_.canSend(); },
             [this](const std::string& interface, const std::string& signal, const Values& values) {
               session_.emit(interface, signal, values);
             }}),
      session_({parts.loop, std::move(parts.address), parts.user, kBusName, [this] { face_.begin(); },
                [this] { face_.changed(); }},
               face_.object()),
      waiting_(parts.loop.makeTimer(kLookForPlayer, [this] { lookForPlayer(); })) {
  waiting_->enabled(true);
}

void MediaControls::lookForPlayer() {
  if (!face_.ready()) return;
  waiting_->enabled(false);
  session_.open();
}

}  // namespace mpris
