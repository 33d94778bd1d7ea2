#pragma once
#include <optional>
#include <string>

#include "standin/house/Users.hpp"

namespace standin {

/// Who comes to the server, and on what terms. On the loop's thread.
class Visitors {
 public:
  /// `local`: the server listens on this machine alone, so that the owner may do without a password.
  Visitors(Users& users, bool local) : users_(users), local_(local) {}

  [[nodiscard]] bool local() const { return local_; }
  [[nodiscard]] bool ownerHasPassword() const;
  /// The user of a session token, or the owner where no password is needed; nothing when there is none.
  [[nodiscard]] std::optional<User> of(const std::string& token) const;
  /// Whether this guest may sign in at all.
  [[nodiscard]] bool letsIn(const User& guest) const;
  /// What guests need: "open" for nothing, "password", or "off".
  [[nodiscard]] std::string guestRule() const;

 private:
  Users& users_;
  bool local_;
};

}  // namespace standin
