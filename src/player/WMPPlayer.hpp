#pragma once
#include <memory>

#include "player/WMP9.hpp"

namespace player {

/// The form that carries the player control. The control exists from `load` on.
class WMPPlayer {
 public:
  WMPPlayer(PlayerFactory factory, WMP9Events& events) : factory_(std::move(factory)), events_(events) {}

  /// Makes the control if it does not exist yet. Throws number 429 when it can't be created.
  /// Fails in the same way when it is asked for again while it is being made.
  void load();
  [[nodiscard]] bool loaded() const { return control_ != nullptr; }
  /// The control, made on first use. Throws as `load` does.
  WMP9& wmp9() {
    load();
    return *control_;
  }

  Controls& controls() { return wmp9().controls(); }
  PlayerSettings& settings() { return wmp9().settings(); }
  /// What is playing. Throws number 91 when nothing is.
  MediaRef currentMedia();

 private:
  PlayerFactory factory_;
  WMP9Events& events_;
  std::unique_ptr<WMP9> control_;
  bool loading_ = false;
};

}  // namespace player
