// Signing in and out, the owner's password, and what guests need. Passwords are hashed on the web's threads,
// few at a time.
#include <chrono>
#include <memory>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/routes/Turns.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestPassword = 1024;
constexpr std::size_t kShortestPassword = 8;
constexpr std::size_t kLongestName = 64;
constexpr std::ptrdiff_t kMostWaiting = 4;  // to have a password hashed
constexpr int kDone = 200;
constexpr int kNoRoom = 507;

constexpr int kMonth = 2592000;  // seconds

/// What has come by https is never sent in the clear.
std::string SessionCookie(const House& house, const std::string& token, int seconds = kMonth) {
  return CookieName(house.webPort) + "=" + token + "; Path=/; HttpOnly; SameSite=Strict" +
         (house.webCertificate.empty() ? "" : "; Secure") + "; Max-Age=" + std::to_string(seconds);
}

std::string NoCookie(const House& house) { return SessionCookie(house, {}, 0); }

WebAnswer TooMany() { return Refusal(429, "Too many wrong passwords; please wait a little"); }
WebAnswer Busy() { return Refusal(503, "Too many sign in at once; please wait a little"); }
WebAnswer WrongLogin() { return Refusal(403, "The name or the password is wrong"); }

/// The commands of this area, and what they share.
class Commands {
 public:
  Commands(House& house, Visitors& visitors, LoopGate& gate, std::function<LoginLimits::Time()> now)
      : house_(house), visitors_(visitors), gate_(gate), now_(std::move(now)) {}

  /// The owner comes with the key of the address that the server has printed.
  WebAnswer enter(const WebCall& call) {
    WebAnswer answer{.location = "/"};
    const bool known = call.user.name == kFirstUser;
    if (!known && visitors_.isKey(call.parameter("key"))) {
      answer.cookie = SessionCookie(house_, house_.users.begin(kFirstUser));
      tellEnd();  // an older one may have made room
    }
    return answer;
  }

  WebAnswer login(const WebCall& call) {
    const auto name = call.json.at("name").get<std::string>();
    const auto password = call.json.value("password", std::string());
    const Guesser who = guesser(call);
    const bool possible = name.size() <= kLongestName;
    if (!limits_.mayTry(possible ? name : std::string(), who, now_())) return TooMany();
    if (!possible) {
      limits_.failed({}, who, now_());
      return WrongLogin();
    }
    struct Known {
      std::optional<User> user;
      std::string hash;
      bool letIn = false;
    };
    const auto known = std::make_shared<Known>();
    WebAnswer asked = onLoop([this, name, byOwner = call.user.name == kFirstUser, known] {
      known->user = house_.users.find(name);
      known->hash = house_.users.hashOf(name);
      known->letIn = known->user && (!known->user->guest || Visitors::letsIn(*known->user, byOwner));
    });
    if (asked.status != kDone) return asked;
    if (!known->user) {
      limits_.failed({}, who, now_());
      return WrongLogin();
    }
    if (!known->letIn) return Refusal(403, "Guests are not let in here");
    const User& user = *known->user;
    if (!user.hasPassword && !user.guest) return Refusal(403, kWayByKey);
    if (user.hasPassword) {
      const Turns::Turn turn(hashing_);
      if (!turn.given()) return Busy();
      if (!limits_.mayTry(name, who, now_())) return TooMany();  // others have guessed meanwhile
      if (!PasswordFits(known->hash, password)) {
        limits_.failed(name, who, now_());
        return WrongLogin();
      }
      limits_.succeeded(name, who);
    } else if (!limits_.letsIn(who, now_())) {
      return Refusal(429, "Too many guests have come in from there; please wait a little");
    }
    const auto token = std::make_shared<std::string>();
    asked = onLoop([this, name = user.name, before = call.token, token] {
      *token = house_.users.begin(name);
      house_.users.end(before);  // the browser keeps one
      tellEnd();
    });
    if (asked.status == kDone) asked.cookie = SessionCookie(house_, *token);
    return asked;
  }

  WebAnswer logout(const WebCall& call) {
    house_.users.end(call.token);
    tellEnd();
    return {.cookie = NoCookie(house_)};
  }

  WebAnswer setPassword(const WebCall& call) {
    const auto old = call.json.value("old", std::string());
    const auto wanted = call.json.at("password").get<std::string>();
    const std::string& name = call.user.name;
    if (!wanted.empty() && base::CountCharacters(wanted) < kShortestPassword)
      return Refusal(400, "A password has at least 8 characters");
    if (wanted.size() > kLongestPassword) return Refusal(400, "The password is too long");
    if (wanted.empty() && !visitors_.local())
      return Refusal(403, "A server that others can reach needs a password");
    const Guesser who = guesser(call);
    if (!limits_.mayTry(name, who, now_())) return TooMany();
    const auto hash = std::make_shared<std::string>();
    WebAnswer asked = onLoop([this, name, hash] { *hash = house_.users.hashOf(name); });
    if (asked.status != kDone) return asked;
    std::string made;
    {
      const Turns::Turn turn(changing_);
      if (!turn.given()) return Busy();
      if (!limits_.mayTry(name, who, now_())) return TooMany();
      if (!hash->empty() && !PasswordFits(*hash, old)) {
        limits_.failed(name, who, now_());
        return Refusal(403, "The old password is wrong");
      }
      if (!wanted.empty()) made = HashPassword(wanted);
    }
    limits_.succeeded(name, who);
    const auto fresh = std::make_shared<std::string>();
    asked = onLoop([this, name, made, fresh] {
      *fresh = house_.users.setHashAndBegin(name, made);
      // From here on it is changed, whatever becomes of the rest.
      tellEnd();
      house_.log.write(
          "Info", made.empty() ? "The owner's password was removed" : "The owner's password was changed");
      base::Handled([this] { visitors_.passwordChanged(); },
                    [this](const base::Failure& failure) {
                      house_.log.write("Warning",
                                       "The address that is kept to be printed again is out of date: " +
                                           failure.description());
                    });
    });
    if (asked.status == kDone) asked.cookie = SessionCookie(house_, *fresh);
    return asked;
  }

  WebAnswer setGuests(const WebCall& call) {
    const auto rule = call.json.at("guests").get<std::string>();
    const auto password = call.json.value("password", std::string());
    std::string stored = rule == "open" ? kAdmitted : kBarred;
    if (rule == "password") {
      if (password.empty() || password.size() > kLongestPassword)
        return Refusal(400, "A password has 1 to 1024 characters");
      const Turns::Turn turn(changing_);
      if (!turn.given()) return Busy();
      stored = HashPassword(password);
    } else if (rule != "open" && rule != "off") {
      return Refusal(400, "Guests are let in as open, password or off");
    }
    return onLoop([this, stored] {
      house_.users.setHash(kGuest, stored);
      tellEnd();
      house_.log.write("Info", stored == kBarred     ? "Guests are no longer let in"
                               : stored == kAdmitted ? "Guests are let in"
                                                     : "Guests are let in with a password");
    });
  }

 private:
  /// Who has come as the owner isn't held up by strangers.
  static Guesser guesser(const WebCall& call) {
    return {.address = call.peer, .owner = call.user.name == kFirstUser};
  }

  void tellEnd() { house_.live.tell(kSessionsEnded, "{}"); }

  WebAnswer onLoop(std::function<void()> work) {
    WebAnswer answer = AskLoop(gate_, [work = std::move(work)](const Reply& reply) {
      work();
      reply({});
    });
    // Who isn't in yet is told no more of the house than that.
    return answer.status == kNoRoom ? Refusal(kNoRoom, "The house's disk is full") : answer;
  }

  House& house_;
  Visitors& visitors_;
  LoopGate& gate_;
  std::function<LoginLimits::Time()> now_;
  LoginLimits limits_;
  // One at a time: each takes 64 MiB. Strangers wait for each other, and the owner for himself.
  Turns hashing_{kMostWaiting};
  Turns changing_{kMostWaiting};
};

}  // namespace

Routes UserRoutes(House& house, Visitors& visitors, LoopGate& gate, std::function<LoginLimits::Time()> now) {
  const auto all = std::make_shared<Commands>(house, visitors, gate, std::move(now));
  return {{Method::kGet, "/", Role::kAnyone, Now{[all](const WebCall& call) { return all->enter(call); }}},
          {Method::kPost, "/api/login", Role::kAnyone,
           Aside{[all](const WebCall& call) { return all->login(call); }}},
          {Method::kPost, "/api/logout", Role::kAnyone,
           Now{[all](const WebCall& call) { return all->logout(call); }}},
          {Method::kPost, "/api/password", Role::kOwner,
           Aside{[all](const WebCall& call) { return all->setPassword(call); }}, "Guests have no password"},
          {Method::kPost, "/api/guests", Role::kOwner,
           Aside{[all](const WebCall& call) { return all->setGuests(call); }},
           "Guests can't change who is let in"}};
}

}  // namespace standin
