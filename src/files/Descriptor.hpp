#pragma once
#include <unistd.h>

#include <utility>

namespace files {

/// An open descriptor of the system's, closed with its owner; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      close();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }

  [[nodiscard]] int get() const { return number_; }
  [[nodiscard]] bool valid() const { return number_ >= 0; }
  void close() {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
  }

 private:
  int number_ = -1;
};

}  // namespace files
