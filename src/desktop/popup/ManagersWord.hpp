#pragma once
#include <QtCore/QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

#include "desktop/popup/Agreement.hpp"

namespace desktop {

/// What the manager of an X screen's windows says where one of them stands, and what it is asked. Qt tells
/// only how it changes, and counts what it has asked for itself as done.
class ManagersWord : private QAbstractNativeEventFilter {
 public:
  /// `window` is that window's number on the screen, 0 while it has none. `told` is called before Qt knows.
  ManagersWord(std::function<std::uint32_t()> window, std::function<void(Standing)> told);
  ~ManagersWord() override = default;
  ManagersWord(const ManagersWord&) = delete;
  ManagersWord& operator=(const ManagersWord&) = delete;
  ManagersWord(ManagersWord&&) = delete;
  ManagersWord& operator=(ManagersWord&&) = delete;

  /// Whether there is a manager that says so.
  [[nodiscard]] static bool speaks();
  /// Asks the manager for it. To put a window away takes no asking.
  void ask(Standing wanted) const;

 private:
  bool nativeEventFilter(const QByteArray& type, void* event, qintptr* result) override;

  std::function<std::uint32_t()> window_;
  std::function<void(Standing)> told_;
  std::uint32_t property_ = 0;  // WM_STATE, asked for once
};

}  // namespace desktop
