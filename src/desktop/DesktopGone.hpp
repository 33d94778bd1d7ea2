#pragma once
#include <csetjmp>
#include <functional>
#include <thread>

#include "desktop/loader/Display.hpp"

namespace desktop {

/// Leads out of Qt when the desktop has gone while Qt was at work.
struct DesktopGone {};

/// Qt ends the process when it finds that its desktop has gone, by `exit` for X and by `_exit` for Wayland,
/// and there is no way to ask it not to. But it says so before, and what hears it throws `DesktopGone`
/// through Qt. One of Wayland's own threads that says so is held for good. There is one.
class LastWords {
 public:
  explicit LastWords(const Display& display);
  ~LastWords();
  LastWords(const LastWords&) = delete;
  LastWords& operator=(const LastWords&) = delete;
  LastWords(LastWords&&) = delete;
  LastWords& operator=(LastWords&&) = delete;

  /// Runs Qt's own start. It can't be thrown through, as it takes apart what it has not yet put together; so
  /// when the desktop goes meanwhile, it is left for good where it stands, and Qt must not be entered any
  /// more. False then.
  bool outliveStart(const std::function<void()>& start);
  /// Whether that has happened in this process.
  static bool startWasLeft();

  /// While it lives, somebody is there to catch `DesktopGone`.
  class Awaited {
   public:
    explicit Awaited(LastWords& words) : words_(words) { ++words_.awaiting_; }
    ~Awaited() { --words_.awaiting_; }
    Awaited(const Awaited&) = delete;
    Awaited& operator=(const Awaited&) = delete;
    Awaited(Awaited&&) = delete;
    Awaited& operator=(Awaited&&) = delete;

   private:
    LastWords& words_;
  };

 private:
  struct Ear;

  const Display& display_;
  std::thread::id thread_ = std::this_thread::get_id();
  int awaiting_ = 0;
  bool starting_ = false;
  std::jmp_buf outOfStart_{};
};

}  // namespace desktop
