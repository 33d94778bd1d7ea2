#pragma once
#include <utility>

namespace base {

/// Gives a variable another value for as long as this lives, also when what runs meanwhile throws.
template <class T>
class Restored {
 public:
  Restored(T& target, T value) : target_(target), before_(std::exchange(target, std::move(value))) {}
  ~Restored() { target_ = std::move(before_); }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;
  Restored(Restored&&) = delete;
  Restored& operator=(Restored&&) = delete;

 private:
  T& target_;
  T before_;
};

}  // namespace base
