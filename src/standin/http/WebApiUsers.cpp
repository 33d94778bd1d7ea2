// Signing in and out, the owner's password, and what guests need.
#include <chrono>
#include <memory>

#include "standin/house/Users.hpp"
#include "standin/http/WebApi.hpp"

namespace standin {
namespace {

std::string sessionCookie(const std::string& token) {
  return "vantorix=" + token + "; Path=/; HttpOnly; SameSite=Strict; Max-Age=2592000";
}

std::string noCookie() { return "vantorix=; Path=/; HttpOnly; SameSite=Strict; Max-Age=0"; }

WebAnswer tooMany() { return Refusal(429, "Too many wrong passwords; please wait a little"); }

std::chrono::steady_clock::time_point now() { return std::chrono::steady_clock::now(); }

}  // namespace

WebAnswer WebApi::login(const Json& json, const std::string& peer) {
  const auto name = json.at("name").get<std::string>();
  const auto password = json.value("password", std::string());
  if (!limits_.mayTry(name, peer, now())) return tooMany();

  const auto hash = std::make_shared<std::string>();
  const auto user = std::make_shared<std::optional<User>>();
  if (gate_.runNow([this, name, hash, user] {
        *user = house_.users.find(name);
        *hash = house_.users.hashOf(name);
      }) != LoopGate::Outcome::kDone) {
    return Refusal(504, "No answer in time");
  }
  if (!*user) {
    limits_.failed(name, peer, now());
    return Refusal(403, "The name or the password is wrong");
  }
  const bool open = (*user)->hasPassword || (*user)->admitted || (local_ && !(*user)->barred);
  if ((*user)->guest && !open) return Refusal(403, "Guests are not let in here");
  // Without a password the owner needs no session, and the guest gets one for the asking.
  if (!(*user)->hasPassword && !(*user)->guest) return {.cookie = noCookie()};
  if ((*user)->hasPassword) {
    const std::lock_guard one(hashing_);
    if (!limits_.mayTry(name, peer, now())) return tooMany();  // others have guessed meanwhile
    if (!PasswordFits(*hash, password)) {
      limits_.failed(name, peer, now());
      return Refusal(403, "The name or the password is wrong");
    }
    limits_.succeeded(name, peer);
  }
  const auto token = std::make_shared<std::string>();
  if (gate_.runNow([this, name = (*user)->name, token] { *token = house_.users.begin(name); }) !=
      LoopGate::Outcome::kDone) {
    return Refusal(504, "No answer in time");
  }
  return {.cookie = sessionCookie(*token)};
}

WebAnswer WebApi::logout(const std::string& token) {
  if (gate_.runNow([this, token] { house_.users.end(token); }) != LoopGate::Outcome::kDone) {
    return Refusal(504, "No answer in time");
  }
  return {.cookie = noCookie()};
}

WebAnswer WebApi::setPassword(const std::string& token, const Json& json, const std::string& peer) {
  const auto old = json.value("old", std::string());
  const auto wanted = json.at("password").get<std::string>();
  const std::optional<User> user = visitor(token);
  if (!user) return Refusal(401, "Please sign in");
  if (user->guest) return Refusal(403, "Guests have no password");
  if (wanted.size() > 1024) return Refusal(400, "The password is too long");
  if (wanted.empty() && !local_) {
    return Refusal(403, "A server that others can reach needs a password");
  }
  if (!limits_.mayTry(user->name, peer, now())) return tooMany();

  const auto hash = std::make_shared<std::string>();
  if (gate_.runNow([this, name = user->name, hash] { *hash = house_.users.hashOf(name); }) !=
      LoopGate::Outcome::kDone) {
    return Refusal(504, "No answer in time");
  }
  std::string made;
  {
    const std::lock_guard one(hashing_);
    if (!limits_.mayTry(user->name, peer, now())) return tooMany();
    if (!hash->empty() && !PasswordFits(*hash, old)) {
      limits_.failed(user->name, peer, now());
      return Refusal(403, "The old password is wrong");
    }
    if (!wanted.empty()) made = HashPassword(wanted);
  }
  limits_.succeeded(user->name, peer);
  const auto fresh = std::make_shared<std::string>();
  WebAnswer stored = askNow(token, [this, name = user->name, made, fresh](const User&) {
    house_.users.setHash(name, made);
    if (!made.empty()) *fresh = house_.users.begin(name);
    house_.log.write("Info",
                     made.empty() ? "The owner's password was removed" : "The owner's password was changed");
    return WebAnswer();
  });
  if (stored.status != 200) return stored;
  return {.cookie = made.empty() ? noCookie() : sessionCookie(*fresh)};
}

WebAnswer WebApi::setGuests(const std::string& token, const Json& json) {
  const auto rule = json.at("guests").get<std::string>();
  const auto password = json.value("password", std::string());
  const std::optional<User> user = visitor(token);
  if (!user) return Refusal(401, "Please sign in");
  if (user->guest) return Refusal(403, "Guests can't change who is let in");
  std::string stored = rule == "open" ? kAdmitted : kBarred;
  if (rule == "password") {
    if (password.empty() || password.size() > 1024)
      return Refusal(400, "A password has 1 to 1024 characters");
    const std::lock_guard one(hashing_);
    stored = HashPassword(password);
  } else if (rule != "open" && rule != "off") {
    return Refusal(400, "Guests are let in as open, password or off");
  }
  return askNow(token, [this, stored](const User& asking) {
    if (asking.guest) return Refusal(403, "Guests can't change who is let in");
    house_.users.setHash(kGuest, stored);
    house_.log.write("Info", stored == kBarred     ? "Guests are no longer let in"
                             : stored == kAdmitted ? "Guests are let in"
                                                   : "Guests are let in with a password");
    return WebAnswer();
  });
}

std::string WebApi::guestRule() {
  const std::optional<User> guest = house_.users.find(kGuest);
  if (guest && guest->hasPassword) return "password";
  return guest && (guest->admitted || (local_ && !guest->barred)) ? "open" : "off";
}

}  // namespace standin
