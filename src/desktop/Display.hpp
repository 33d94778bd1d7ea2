#pragma once
#include <memory>
#include <optional>
#include <string>

struct xcb_connection_t;

namespace desktop {

/// A desktop that answers. It is tried beforehand, because Qt ends the process when it finds none.
class Display {
 public:
  /// The desktop that this process was started on, if there is one.
  static std::optional<Display> reach();

  /// Qt's name for the way there: "xcb" or "wayland".
  [[nodiscard]] const std::string& platform() const { return platform_; }

 private:
  struct Close {
    void operator()(xcb_connection_t* connection) const;
  };
  /// Kept until Qt has its own: a screen may start anew when its last client goes, and take none meanwhile.
  using Connection = std::unique_ptr<xcb_connection_t, Close>;

  static Connection connectX();
  Display(std::string platform, Connection connection);

  std::string platform_;
  Connection connection_;
};

}  // namespace desktop
