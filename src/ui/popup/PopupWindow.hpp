#pragma once
#include <cstdint>
#include <string>

/// The popup window: its logic over a plain window, its menus as a model, and the bar that moves the player.
namespace ui {

class PopupMenus;

/// What the transport bar shows.
struct TransportShown {
  bool playing = false;  ///< its first button pauses
  bool canPlay = false;  ///< or pause, where it plays
  bool canStop = false;
  bool canPrevious = false;
  bool canNext = false;
  double position = 0;  ///< seconds
  double duration = 0;  ///< seconds; 0 for what has no end, in which nobody can seek
  std::int32_t volume = 0;
  bool mute = false;
  std::string title;

  bool operator==(const TransportShown&) const = default;
};

/// What the popup window reports. None of them throws.
class PopupWindowEvents {
 public:
  PopupWindowEvents() = default;
  PopupWindowEvents(const PopupWindowEvents&) = delete;
  PopupWindowEvents& operator=(const PopupWindowEvents&) = delete;
  PopupWindowEvents(PopupWindowEvents&&) = delete;
  PopupWindowEvents& operator=(PopupWindowEvents&&) = delete;
  virtual ~PopupWindowEvents() = default;

  /// `Form_QueryUnload`'s mode when the user closes the window.
  static constexpr std::int16_t kByTheUser = 0;

  /// Its size has changed, or it was minimised or brought back from that.
  virtual void Form_Resize() = 0;
  /// True when the window is to stay.
  virtual bool Form_QueryUnload(std::int16_t mode) = 0;
  virtual void Form_Unload() = 0;
  /// The user has brought it back from where it was put when it was hidden.
  virtual void broughtBack() = 0;
  virtual void Image1_DblClick() = 0;
  virtual void wmp9_DoubleClick() = 0;
  /// `item` is an item's name, such as "LoopMode".
  virtual void menuClick(const std::string& item) = 0;
  /// An element of the names of "Album", "Artist", "Genre" or "PlayList".
  virtual void listClick(const std::string& category, std::int16_t index) = 0;
  /// An element of the menu that `popUpMedia` has shown.
  virtual void mediaClick(std::int16_t index) = 0;

  // The transport bar.
  virtual void playOrPause() = 0;
  virtual void stop() = 0;
  virtual void previous() = 0;
  virtual void next() = 0;
  virtual void seek(double seconds) = 0;
  virtual void volume(std::int16_t percent) = 0;
  virtual void mute() = 0;
  /// Somebody looks at the bar: what it shows has to be so.
  virtual void lookedAt() = 0;
};

/// The popup window itself. Its place and height are in twips, what is in it in pixels of 15 twips.
class PopupWindow {
 public:
  PopupWindow() = default;
  PopupWindow(const PopupWindow&) = delete;
  PopupWindow& operator=(const PopupWindow&) = delete;
  PopupWindow(PopupWindow&&) = delete;
  PopupWindow& operator=(PopupWindow&&) = delete;
  virtual ~PopupWindow() = default;

  static constexpr float kWidth = 3765;  // twips
  // Pixels.
  static constexpr std::int32_t kBarHeight = 62;
  static constexpr std::int32_t kPictureHeight = 212;  // of the bar with a picture above it
  static constexpr std::int32_t kCoverHeight = 200;
  static constexpr std::int32_t kFrameHeight = 52;  // the window's frame and menu

  /// Whom it reports to, and what its menus hold. Both stay until they are served no more, by null.
  virtual void serve(PopupWindowEvents* events, PopupMenus* menus) = 0;

  [[nodiscard]] virtual float top() const = 0;
  virtual void top(float value) = 0;
  [[nodiscard]] virtual float left() const = 0;
  virtual void left(float value) = 0;
  [[nodiscard]] virtual float screenHeight() const = 0;
  [[nodiscard]] virtual float screenWidth() const = 0;
  [[nodiscard]] virtual bool visible() const = 0;
  /// Shows it without blocking. Throws 401 or 402 while a modal window is open.
  virtual void show() = 0;
  virtual void hide() = 0;
  [[nodiscard]] virtual bool minimised() const = 0;
  virtual void minimise() = 0;
  /// Takes it back from being minimised.
  virtual void normal() = 0;
  /// As the host's `forcefront` takes it; 0 for a window that is nowhere.
  [[nodiscard]] virtual std::int32_t handle() const = 0;
  /// `insertAfter` is -1 for topmost, -2 for not topmost; `flags` as the window system numbers them.
  virtual void setWindowPos(std::int32_t insertAfter, std::int32_t height, std::int32_t flags) = 0;

  virtual void height(float value) = 0;
  virtual void controlTop(std::int32_t pixels) = 0;
  virtual void controlHeight(std::int32_t pixels) = 0;
  virtual void imageVisible(bool value) = 0;
  /// The bytes of a picture's file. Throws 481 for what is no picture.
  virtual void image(const std::string& bytes) = 0;
  virtual void clearImage() = 0;

  /// Pops up the menu of the titles of a group, with that element as its bold default.
  virtual void popUpMedia(std::int16_t defaultElement) = 0;
  virtual void transport(const TransportShown& shown) = 0;
};

}  // namespace ui
