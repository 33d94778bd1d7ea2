#include "standin/routes/Visitors.hpp"

namespace standin {

bool Visitors::ownerHasPassword() const {
  const std::optional<User> owner = users_.find(kFirstUser);
  return owner && owner->hasPassword;
}

std::optional<User> Visitors::of(const std::string& token) const {
  if (std::optional<User> user = users_.ofSession(token)) return user;
  std::optional<User> owner = users_.find(kFirstUser);
  if (local_ && owner && !owner->hasPassword) return owner;
  return std::nullopt;
}

bool Visitors::letsIn(const User& guest) const {
  return guest.hasPassword || guest.admitted || (local_ && !guest.barred);
}

std::string Visitors::guestRule() const {
  const std::optional<User> guest = users_.find(kGuest);
  if (!guest || !letsIn(*guest)) return "off";
  return guest->hasPassword ? "password" : "open";
}

}  // namespace standin
