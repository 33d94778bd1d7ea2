#include "standin/house/Users.hpp"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::int64_t kSessionSeconds = 30LL * 24 * 3600;
constexpr std::int64_t kGuestSeconds = 24LL * 3600;
constexpr std::int64_t kAheadSeconds = 24LL * 3600;  // that a clock may have gone when a session began
constexpr std::int32_t kMostSessions = 50;           // of one user
constexpr std::size_t kTokenBytes = 32;
constexpr std::size_t kLongestPassword = 1024;

void NeedSodium() {
  if (sodium_init() < 0) throw base::Failure(base::number::kInternal, "No source of random numbers");
}

std::int64_t SecondsSinceBoot() {
  timespec time{};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return time.tv_sec;
}

template <std::size_t N>
std::string Hex(const std::array<unsigned char, N>& bytes) {
  std::string text(N * 2 + 1, '\0');
  sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
  text.pop_back();
  return text;
}

std::string StoredForm(const std::string& token) {
  std::array<unsigned char, crypto_generichash_BYTES> hash{};
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(token.data()),
                     token.size(), nullptr, 0);
  return Hex(hash);
}

/// From a row of name, guest and hash.
User UserOf(const database::Statement& row) {
  const std::string hash = row.text(2);
  return {.name = row.text(0),
          .guest = row.integer(1) != 0,
          .hasPassword = !hash.empty() && hash != kBarred && hash != kAdmitted,
          .barred = hash == kBarred,
          .admitted = hash == kAdmitted};
}

}  // namespace

std::string HashPassword(const std::string& password) {
  NeedSodium();
  if (password.empty() || password.size() > kLongestPassword) {
    throw base::Failure(base::number::kInvalidArgument, "A password has 1 to 1024 characters");
  }
  std::array<char, crypto_pwhash_STRBYTES> hash{};
  if (crypto_pwhash_str(hash.data(), password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    throw base::Failure(base::number::kInternal, "Not enough memory to hash a password");
  }
  return hash.data();
}

bool PasswordFits(const std::string& hash, const std::string& password) {
  NeedSodium();
  if (hash.empty() || password.size() > kLongestPassword) return false;
  return crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
}

std::string RandomToken() {
  NeedSodium();
  std::array<unsigned char, kTokenBytes> bytes{};
  randombytes_buf(bytes.data(), bytes.size());
  return Hex(bytes);
}

Users::Users(database::Database& database, Clock clock, Clock sinceBoot)
    : database_(database),
      clock_(clock ? std::move(clock) : Clock([] { return std::time(nullptr); })),
      sinceBoot_(sinceBoot ? std::move(sinceBoot) : Clock(&SecondsSinceBoot)),
      seenSinceBoot_(sinceBoot_()),
      latest_(clock_()) {
  NeedSodium();
  database::Statement add(database_, "INSERT OR IGNORE INTO user (name, hash, guest) VALUES (?, '', ?)");
  add.with(kFirstUser, false).run();
  add.with(kGuest, true).run();
  database::Statement(database_, "DELETE FROM session WHERE expires <= ?").with(now()).run();
}

std::int64_t Users::now() {
  const std::int64_t sinceBoot = sinceBoot_();
  latest_ = std::max(clock_(), latest_ + std::max(std::int64_t{0}, sinceBoot - seenSinceBoot_));
  seenSinceBoot_ = sinceBoot;
  return latest_;
}

std::optional<User> Users::find(const std::string& name) {
  database::Statement row(database_, "SELECT name, guest, hash FROM user WHERE name = ?");
  if (!row.with(name).step()) return std::nullopt;
  return UserOf(row);
}

std::string Users::hashOf(const std::string& name) {
  database::Statement row(database_, "SELECT hash FROM user WHERE name = ?");
  return row.with(name).step() ? row.text(0) : std::string();
}

void Users::writeHash(const std::string& name, const std::string& hash) {
  database::Statement(database_, "UPDATE user SET hash = ? WHERE name = ?").with(hash, name).run();
  database::Statement(database_, "DELETE FROM session WHERE user = ?").with(name).run();
}

std::string Users::insertSession(const std::string& name) {
  std::string token = RandomToken();
  const std::optional<User> user = find(name);
  const std::int64_t lasting = user && user->guest ? kGuestSeconds : kSessionSeconds;
  database::Statement(database_, "DELETE FROM session WHERE expires <= ?").with(now()).run();
  database::Statement(
      database_,
      "DELETE FROM session WHERE user = ?1 AND token NOT IN "
      "(SELECT token FROM session WHERE user = ?1 ORDER BY expires > ?3, expires DESC, rowid DESC LIMIT ?2)")
      .with(name, kMostSessions - 1, now() + lasting + kAheadSeconds)
      .run();
  database::Statement(database_, "INSERT INTO session (token, user, expires) VALUES (?, ?, ?)")
      .with(StoredForm(token), name, now() + lasting)
      .run();
  return token;
}

void Users::setHash(const std::string& name, const std::string& hash) {
  database::Transaction whole(database_);
  writeHash(name, hash);
  whole.commit();
}

std::string Users::setHashAndBegin(const std::string& name, const std::string& hash) {
  database::Transaction whole(database_);
  writeHash(name, hash);
  std::string token = insertSession(name);
  whole.commit();
  return token;
}

std::string Users::begin(const std::string& name) {
  database::Transaction whole(database_);
  std::string token = insertSession(name);
  whole.commit();
  return token;
}

std::optional<User> Users::ofSession(const std::string& token) {
  if (token.size() != kTokenBytes * 2) return std::nullopt;
  // One that lasts too long has begun while the clock went wrong, years ahead, or is asked for while it goes
  // behind.
  database::Statement row(database_,
                          "SELECT user.name, guest, hash FROM session JOIN user ON user.name = session.user "
                          "WHERE token = ?1 AND expires > ?2 "
                          "AND expires <= ?2 + ?5 + CASE WHEN guest THEN ?3 ELSE ?4 END");
  row.with(StoredForm(token), now(), kGuestSeconds, kSessionSeconds, kAheadSeconds);
  if (!row.step()) return std::nullopt;
  return UserOf(row);
}

void Users::end(const std::string& token) {
  database::Statement(database_, "DELETE FROM session WHERE token = ?").with(StoredForm(token)).run();
}

}  // namespace standin
