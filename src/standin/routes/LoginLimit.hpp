#pragma once
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace standin {

/// Slows guessing down: from one wrong password on, each one makes the next wait longer. They are forgotten
/// after an hour without one.
class LoginLimit {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// `free` wrong ones cost nothing but the last of them, which costs a second; each doubling adds to that.
  explicit LoginLimit(int free = 5, int mostDoublings = 6) : free_(free), mostDoublings_(mostDoublings) {}

  /// False while the next try has to wait.
  [[nodiscard]] bool mayTry(Time now) const { return now >= next_; }
  void failed(Time now);
  void succeeded();
  [[nodiscard]] Time last() const { return last_; }

 private:
  int free_;
  int mostDoublings_;
  int failures_ = 0;
  Time next_{};
  Time last_{};  ///< when it failed last
};

/// Limits by some text, a bounded number of them: whose last failure is the oldest is forgotten first.
class KeyedLimits {
 public:
  using Time = LoginLimit::Time;
  KeyedLimits(int free, std::size_t most) : free_(free), most_(most) {}

  [[nodiscard]] bool mayTry(const std::string& key, Time now) const;
  void failed(const std::string& key, Time now);
  void succeeded(const std::string& key) { limits_.erase(key); }
  [[nodiscard]] std::size_t size() const { return limits_.size(); }

 private:
  int free_;
  std::size_t most_;
  std::map<std::string, LoginLimit> limits_;
};

/// Who tries a password: an address, or somebody who has a session of the owner's already.
struct Guesser {
  std::string address{};
  bool owner = false;
};

/// A limit for each user at each address, a wider one for each address, and one for all addresses together,
/// so that who guesses slows down himself before anybody else, and gets nowhere by having many addresses. An
/// owner who has a session has a limit of his own, which no stranger uses up. Thread-safe.
class LoginLimits {
 public:
  using Time = LoginLimit::Time;
  static constexpr std::size_t kMost = 4096;  ///< of users at addresses, and of addresses

  /// `user` may be a name that nobody has.
  bool mayTry(const std::string& user, const Guesser& who, Time now);
  /// `user` is empty for a name that nobody has.
  void failed(const std::string& user, const Guesser& who, Time now);
  void succeeded(const std::string& user, const Guesser& who);
  /// Whether one more guest may come in from there without a password; counts him.
  bool letsIn(const Guesser& who, Time now);

 private:
  static constexpr int kFreeOfUser = 5;
  static constexpr int kFreeOfAddress = 20;
  static constexpr int kFreeOfAll = 60;
  static constexpr int kMostDoublingsOfAll = 4;

  std::mutex mutex_;
  KeyedLimits users_{kFreeOfUser, kMost};
  KeyedLimits addresses_{kFreeOfAddress, kMost};
  KeyedLimits guests_{kFreeOfAddress, kMost};
  LoginLimit all_{kFreeOfAll, kMostDoublingsOfAll};
};

/// The address as one to count by: of an IPv6 address the network, as who has one has all of its addresses.
std::string NetworkOf(const std::string& address);

}  // namespace standin
