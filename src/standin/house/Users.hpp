#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "database/Database.hpp"

namespace standin {

/// Seconds since 1970; given, so that tests need not wait.
using Clock = std::function<std::int64_t()>;

struct User {
  std::string name;
  bool guest = false;  ///< may look and use devices, but change nothing
  bool hasPassword = false;
  bool barred = false;    ///< may not sign in
  bool admitted = false;  ///< may sign in without a password, also from elsewhere
};

/// What stands in place of a password's hash: nobody may sign in as that user; everybody may.
inline constexpr const char* kBarred = "!";
inline constexpr const char* kAdmitted = "+";

/// The first user, who owns the house, and the user "guest".
inline constexpr const char* kFirstUser = "owner";
inline constexpr const char* kGuest = "guest";

/// A password as it is stored: hashed so that each guess costs memory and time. Takes a tenth of a second and
/// needs no other state, so it may run on any thread. Throws number 5 for an empty one or one above 1024
/// bytes.
std::string HashPassword(const std::string& password);
/// Whether the password belongs to the stored hash. An empty hash never matches.
bool PasswordFits(const std::string& hash, const std::string& password);

/// A text that nobody can guess: 64 hexadecimal digits.
std::string RandomToken();

/// Users and their sessions, in the database. Session tokens are stored as hashes only.
class Users {
 public:
  /// `sinceBoot` tells seconds that nobody sets, those of a sleeping machine among them.
  explicit Users(database::Database& database, Clock clock = {}, Clock sinceBoot = {});

  [[nodiscard]] std::optional<User> find(const std::string& name);
  /// The stored hash, empty for a user without password or an unknown one.
  [[nodiscard]] std::string hashOf(const std::string& name);
  /// Takes a result of `HashPassword`, an empty text for no password, `kBarred` or `kAdmitted`. Ends the
  /// user's sessions.
  void setHash(const std::string& name, const std::string& hash);
  /// The same and the first session after it, both or neither; answers the session's token.
  std::string setHashAndBegin(const std::string& name, const std::string& hash);

  /// Begins a session of a month, for a guest of a day; answers its token. Of a user's sessions the oldest
  /// make room for it.
  std::string begin(const std::string& name);
  /// The user of a living session. One that would last a day longer than it may, as it has begun while the
  /// clock went ahead or the clock is behind now, counts for nothing until the clock has come to its time.
  [[nodiscard]] std::optional<User> ofSession(const std::string& token);
  void end(const std::string& token);

 private:
  /// The time by which sessions age: it goes on with the clock, and without it where that is set back.
  std::int64_t now();
  // Parts of a transaction.
  void writeHash(const std::string& name, const std::string& hash);
  std::string insertSession(const std::string& name);

  database::Database& database_;
  Clock clock_;
  Clock sinceBoot_;
  std::int64_t seenSinceBoot_;
  std::int64_t latest_;
};

}  // namespace standin
