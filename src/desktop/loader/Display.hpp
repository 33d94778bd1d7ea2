#pragma once
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace desktop {

/// A desktop that answers. It is tried beforehand, because Qt ends the process when it finds none; and the
/// way there is held open, because Qt also ends the process when the desktop goes.
class Display {
 public:
  enum class Kind { kX, kWayland };

  /// The desktops that this process was started on, in the order in which they are to be tried: X goes first,
  /// for only there may a window say where it stands.
  static constexpr Kind kOrder[] = {Kind::kX, Kind::kWayland};
  /// The desktop of that kind, if it is there and wanted.
  static std::optional<Display> reach(Kind kind);

  ~Display();
  Display(Display&&) noexcept;
  Display& operator=(Display&&) noexcept;
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  [[nodiscard]] Kind kind() const { return kind_; }
  /// Ready to be read when the desktop has gone, and seldom besides.
  [[nodiscard]] int descriptor() const;
  /// True from when the desktop has closed the way.
  [[nodiscard]] bool gone() const;

 private:
  struct Way;
  Display(Kind kind, std::unique_ptr<Way> way);

  Kind kind_;
  std::unique_ptr<Way> way_;
};

}  // namespace desktop
