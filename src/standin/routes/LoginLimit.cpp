#include "standin/routes/LoginLimit.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

#include "base/Text.hpp"

namespace standin {
namespace {

constexpr std::chrono::hours kForgotten{1};

/// Under which an owner with a session is counted; no address is like that.
std::string PlaceOf(const Guesser& who) { return who.owner ? "a session" : NetworkOf(who.address); }

std::string KeyOf(const std::string& user, const Guesser& who) {
  return base::LowerCase(user) + '\n' + PlaceOf(who);
}

}  // namespace

void LoginLimit::failed(Time now) {
  if (failures_ > 0 && now - last_ >= kForgotten) failures_ = 0;
  last_ = now;
  ++failures_;
  if (failures_ >= free_)
    next_ = now + std::chrono::seconds(1LL << std::min(failures_ - free_, mostDoublings_));
}

void LoginLimit::succeeded() {
  failures_ = 0;
  next_ = {};
}

bool KeyedLimits::mayTry(const std::string& key, Time now) const {
  const auto found = limits_.find(key);
  return found == limits_.end() || found->second.mayTry(now);
}

void KeyedLimits::failed(const std::string& key, Time now) {
  if (limits_.size() >= most_ && limits_.count(key) == 0) {
    limits_.erase(std::min_element(limits_.begin(), limits_.end(), [](const auto& one, const auto& other) {
      return one.second.last() < other.second.last();
    }));
  }
  limits_.try_emplace(key, free_).first->second.failed(now);
}

bool LoginLimits::mayTry(const std::string& user, const Guesser& who, Time now) {
  const std::lock_guard lock(mutex_);
  return users_.mayTry(KeyOf(user, who), now) && addresses_.mayTry(PlaceOf(who), now) &&
         (who.owner || all_.mayTry(now));
}

void LoginLimits::failed(const std::string& user, const Guesser& who, Time now) {
  const std::lock_guard lock(mutex_);
  if (!user.empty()) users_.failed(KeyOf(user, who), now);
  addresses_.failed(PlaceOf(who), now);
  if (!who.owner) all_.failed(now);
}

void LoginLimits::succeeded(const std::string& user, const Guesser& who) {
  const std::lock_guard lock(mutex_);
  users_.succeeded(KeyOf(user, who));
}

bool LoginLimits::letsIn(const Guesser& who, Time now) {
  const std::lock_guard lock(mutex_);
  if (who.owner) return true;
  const std::string place = PlaceOf(who);
  if (!guests_.mayTry(place, now)) return false;
  guests_.failed(place, now);
  return true;
}

std::string NetworkOf(const std::string& address) {
  in6_addr six{};
  if (inet_pton(AF_INET6, address.substr(0, address.find('%')).c_str(), &six) != 1) return address;
  if (IN6_IS_ADDR_V4MAPPED(&six) || IN6_IS_ADDR_LOOPBACK(&six)) return address;
  constexpr std::ptrdiff_t kNetwork = 8;
  std::array<unsigned char, sizeof six.s6_addr> bytes{};
  std::copy_n(std::begin(six.s6_addr), kNetwork, bytes.begin());
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(AF_INET6, bytes.data(), text.data(), text.size());
  return std::string(text.data()) + "/64";
}

}  // namespace standin
