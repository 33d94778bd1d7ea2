#pragma once
#include <unistd.h>

#include <utility>

namespace bus {

/// Owns a file descriptor; -1 means none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { reset(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      reset();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }

  [[nodiscard]] int get() const { return number_; }
  void reset() {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
  }

 private:
  int number_ = -1;
};

}  // namespace bus
