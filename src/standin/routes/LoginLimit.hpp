#pragma once
#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <string>

#include "base/Text.hpp"

namespace standin {

/// Slows guessing down: from the fifth wrong password in a row on, each one makes the next wait longer.
/// Thread-safe.
class LoginLimit {
 public:
  using Time = std::chrono::steady_clock::time_point;
  explicit LoginLimit(int free = 5) : free_(free) {}

  /// False while the next try has to wait.
  bool mayTry(Time now) {
    const std::lock_guard lock(mutex_);
    return now >= next_;
  }
  void failed(Time now) {
    const std::lock_guard lock(mutex_);
    ++failures_;
    if (failures_ >= free_)
      next_ = now + std::chrono::seconds(1LL << std::min(failures_ - free_, kMostDoublings));
  }
  void succeeded() {
    const std::lock_guard lock(mutex_);
    failures_ = 0;
    next_ = {};
  }

 private:
  static constexpr int kMostDoublings = 6;
  std::mutex mutex_;
  int free_;
  int failures_ = 0;
  Time next_{};
};

/// A limit for each user at each address, and a wider one for each address, so that who guesses slows down
/// himself and nobody else. Thread-safe.
class LoginLimits {
 public:
  using Time = LoginLimit::Time;

  bool mayTry(const std::string& user, const std::string& address, Time now) {
    const std::lock_guard lock(mutex_);
    return of(user, address).mayTry(now) && of(address).mayTry(now);
  }
  void failed(const std::string& user, const std::string& address, Time now) {
    const std::lock_guard lock(mutex_);
    of(user, address).failed(now);
    of(address).failed(now);
  }
  void succeeded(const std::string& user, const std::string& address) {
    const std::lock_guard lock(mutex_);
    of(user, address).succeeded();
  }

 private:
  static constexpr std::size_t kMost = 4096;
  static constexpr int kFreeOfUser = 5;
  static constexpr int kFreeOfAddress = 20;

  LoginLimit& of(const std::string& user, const std::string& address) {
    if (users_.size() > kMost) users_.clear();
    return users_.try_emplace(base::LowerCase(user) + '\n' + address, kFreeOfUser).first->second;
  }
  LoginLimit& of(const std::string& address) {
    if (addresses_.size() > kMost) addresses_.clear();
    return addresses_.try_emplace(address, kFreeOfAddress).first->second;
  }

  std::mutex mutex_;
  std::map<std::string, LoginLimit> users_;
  std::map<std::string, LoginLimit> addresses_;
};

}  // namespace standin
