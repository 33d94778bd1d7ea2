#include "standin/routes/Visitors.hpp"

#include <sodium.h>

namespace standin {

bool Visitors::ownerHasPassword() const {
  const std::optional<User> owner = users_.find(kFirstUser);
  return owner && owner->hasPassword;
}

std::string Visitors::key() const { return local_ && !ownerHasPassword() ? key_ : std::string(); }

bool Visitors::isKey(const std::string& text) const {
  const std::string known = key();
  return !known.empty() && text.size() == known.size() &&
         sodium_memcmp(text.data(), known.data(), known.size()) == 0;
}

bool Visitors::letsIn(const User& guest, bool ownerAsks) {
  return guest.hasPassword || guest.admitted || ownerAsks;
}

std::string Visitors::guestRule() const {
  const std::optional<User> guest = users_.find(kGuest);
  if (!guest || !letsIn(*guest, false)) return "off";
  return guest->hasPassword ? "password" : "open";
}

}  // namespace standin
