#pragma once
#include <cstdint>
#include <string>

namespace player {

// Where `setWindowPos` puts a window, and its flags for no move, no size, no activation, show.
inline constexpr std::int32_t kTopmost = -1;
inline constexpr std::int32_t kNotTopmost = -2;
inline constexpr std::int32_t kStackAndShow = 83;

/// What the player's logic asks of its popup window. All lengths are in twips, 1/1440 inch.
class PopupView {
 public:
  PopupView() = default;
  PopupView(const PopupView&) = delete;
  PopupView& operator=(const PopupView&) = delete;
  PopupView(PopupView&&) = delete;
  PopupView& operator=(PopupView&&) = delete;
  virtual ~PopupView() = default;

  [[nodiscard]] virtual float top() const = 0;
  virtual void top(float value) = 0;
  [[nodiscard]] virtual float left() const = 0;
  virtual void left(float value) = 0;
  [[nodiscard]] virtual float screenHeight() const = 0;
  [[nodiscard]] virtual float screenWidth() const = 0;
  [[nodiscard]] virtual bool visible() const = 0;
  /// Stacking order and visibility without move, size or activation: `insertAfter` is -1 for topmost, -2 for
  /// not topmost; `flags` as the window system numbers them.
  virtual void setWindowPos(std::int32_t insertAfter, std::int32_t flags) = 0;
  /// The value that `setWindowPos` passes as a height; its flags make it have no effect.
  virtual void windowHeight(std::int32_t value) = 0;
  /// Shows a picture in `Image1`, given as the bytes of its file.
  virtual void image(const std::string& bytes) = 0;
  /// Takes the picture off `Image1`.
  virtual void clearImage() = 0;
  /// Lays the window out anew for what is playing.
  virtual void LayoutControls() = 0;
  /// The check mark of a menu item such as `LoopMode`.
  virtual void check(const std::string& menuItem, bool value) = 0;
  /// Asks for the window to follow `DisplayControlsShown` within a second.
  virtual void armVisibility() = 0;
  /// What its transport bar shows may have changed.
  virtual void transportChanged() {}
};

}  // namespace player
