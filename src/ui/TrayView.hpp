#pragma once
#include <cstdint>
#include <string>

namespace ui {

/// What the icon in the notification area reports. None of them throws.
class TrayEvents {
 public:
  TrayEvents() = default;
  TrayEvents(const TrayEvents&) = delete;
  TrayEvents& operator=(const TrayEvents&) = delete;
  TrayEvents(TrayEvents&&) = delete;
  TrayEvents& operator=(TrayEvents&&) = delete;
  virtual ~TrayEvents() = default;

  // What may come as a mouse move's place; there are others.
  static constexpr std::int32_t kLeftDown = 513;
  static constexpr std::int32_t kLeftUp = 514;
  static constexpr std::int32_t kLeftDoubleClick = 515;
  static constexpr std::int32_t kRightDown = 516;

  /// The icon tells what the mouse does to it as a move of the mouse over the form, whose place is the
  /// message.
  virtual void Form_MouseMove(std::int32_t x) = 0;
  virtual void mnuShowHide_Click() = 0;
  virtual void mnuMute_Click() = 0;
};

/// An icon in the desktop's notification area.
class TrayView {
 public:
  TrayView() = default;
  TrayView(const TrayView&) = delete;
  TrayView& operator=(const TrayView&) = delete;
  TrayView(TrayView&&) = delete;
  TrayView& operator=(TrayView&&) = delete;
  virtual ~TrayView() = default;

  // The menu `mnuPopup`.
  static constexpr const char* kShowHide = "&Show / Hide";
  static constexpr const char* kMute = "&Mute";

  /// Whom it reports to; null for nobody.
  virtual void serve(TrayEvents* events) = 0;
  /// Throws when the icon is refused, as one that is there already.
  virtual void add(const std::string& tip) = 0;
  /// Throws when there is no icon.
  virtual void remove() = 0;
  virtual void popUpMenu() = 0;
};

/// The notification area of a machine without a display: it takes no icon.
class WindowlessTray : public TrayView {
 public:
  void serve(TrayEvents* /*events*/) override {}
  void add(const std::string& /*tip*/) override {}
  void remove() override {}
  void popUpMenu() override {}
};

}  // namespace ui
