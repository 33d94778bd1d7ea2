#pragma once
#include <string>

namespace player {

/// Media whose picture can be had without a path. Of this system's own, for whoever shows pictures in another
/// process.
class Pictured {
 public:
  Pictured() = default;
  Pictured(const Pictured&) = delete;
  Pictured& operator=(const Pictured&) = delete;
  Pictured(Pictured&&) = delete;
  Pictured& operator=(Pictured&&) = delete;
  virtual ~Pictured() = default;

  /// A short text that stands for the picture of `getItemInfoByType("WM/Picture", …)` as it is now: another
  /// one once the picture has changed. Empty without one; found without reading media, so there may turn out
  /// to be none.
  [[nodiscard]] virtual std::string pictureMark() const = 0;
  /// The bytes of that picture's file, 16 MiB at most; empty without one. Throws when it can't be read.
  [[nodiscard]] virtual std::string pictureBytes() const = 0;
};

}  // namespace player
