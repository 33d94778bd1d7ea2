#pragma once
#include <functional>
#include <string>

#include "engine/decoder/Output.hpp"
#include "engine/decoder/Visualiser.hpp"
#include "engine/playback/Playback.hpp"
#include "engine/playback/Screen.hpp"

namespace engine {

/// What makes a picture of sound; tests put another one here.
struct SoundPicture {
  std::function<void(const std::string& location, double seconds, bool paused, base::PictureSize size)> show;
  std::function<void()> end;
};

/// Puts what plays on the screen: a video's own picture, or one of the sound. Nothing is made that nobody
/// sees.
class Projector {
 public:
  struct Parts {
    Screen& screen;
    Playback& playback;
    Output& output;
    SoundPicture sound;
  };

  explicit Projector(Parts parts);
  ~Projector();
  Projector(const Projector&) = delete;
  Projector& operator=(const Projector&) = delete;
  Projector(Projector&&) = delete;
  Projector& operator=(Projector&&) = delete;

  /// What plays, its state, its position, or how it is seen may have changed.
  void follow();
  /// Videos are to fill the screen.
  void full(bool value);

 private:
  void dark();

  Parts in_;
  bool full_ = false;
};

}  // namespace engine
