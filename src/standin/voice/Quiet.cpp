#include "standin/voice/Quiet.hpp"

namespace standin {

void Quiet::begin(const std::string& who) {
  if (const auto known = speakers_.find(who); known != speakers_.end()) {
    known->second->enabled(false);
    return known->second->enabled(true);
  }
  if (speakers_.size() >= kMost) return;
  auto gone = loop_.makeTimer(longest_, [this, who] {
    // Posted, as a timer may not end within its own event.
    loop_.post([this, who, alive = std::weak_ptr(alive_)] {
      if (alive.lock()) end(who);
    });
  });
  gone->enabled(true);
  speakers_.emplace(who, std::move(gone));
  events_.tell(true);
}

void Quiet::end(const std::string& who) {
  if (speakers_.erase(who) > 0) events_.tell(false);
}

}  // namespace standin
