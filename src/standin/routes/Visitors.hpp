#pragma once
#include <functional>
#include <optional>
#include <string>

#include "standin/house/Users.hpp"

namespace standin {

/// Of the cookie with the session. A browser sends a cookie to every port of a machine, so that the houses of
/// one machine are told apart by the name.
inline std::string CookieName(int port) { return "vantorix-" + std::to_string(port); }

/// What the live feed tells when sessions have ended: each stream asks whether its own is among them, before
/// it passes on what came with it or behind it.
inline constexpr const char* kSessionsEnded = "sessions";

/// Who comes to the server, and on what terms. On the loop's thread.
///
/// While the owner has no password he is known by a key in the address that the server prints: that of the
/// machine alone would do for every other user of it too. His browser gets a session for the key.
class Visitors {
 public:
  /// `local`: the server listens on this machine alone, so that the owner may do without a password.
  Visitors(Users& users, bool local) : users_(users), local_(local) {}

  [[nodiscard]] bool local() const { return local_; }
  [[nodiscard]] bool ownerHasPassword() const;
  /// The user of a session token; nothing when the house knows none.
  [[nodiscard]] std::optional<User> of(const std::string& token) const { return users_.ofSession(token); }

  /// The key that makes its bearer the owner; empty while a password does.
  [[nodiscard]] std::string key() const;
  /// Takes the same time whatever is wrong with it.
  [[nodiscard]] bool isKey(const std::string& text) const;
  /// True when the key is the way in, false when a password is.
  [[nodiscard]] bool byKey() const { return !key().empty(); }
  /// Called when the owner's password was set or removed. What it fails of is told in the log: the password
  /// is changed by then.
  std::function<void()> passwordChanged = [] {};

  /// Whether guests may sign in. The owner may always see what guests see.
  [[nodiscard]] static bool letsIn(const User& guest, bool ownerAsks);
  /// What guests need: "open" for nothing, "password", or "off".
  [[nodiscard]] std::string guestRule() const;

 private:
  Users& users_;
  bool local_;
  std::string key_ = RandomToken();
};

}  // namespace standin
