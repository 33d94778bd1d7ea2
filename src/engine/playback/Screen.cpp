#include "engine/playback/Screen.hpp"

#include <utility>

namespace engine {

void Screen::changed() const {
  if (changed_) changed_();
}

void Screen::seen(base::PictureSize size) {
  if (size.empty()) size = {};
  if (size == size_) return;
  size_ = size;
  if (size_.empty()) frame_.reset();
  if (seen_) seen_();
}

void Screen::show(base::FrameRef frame) {
  if (size_.empty()) return;  // it came late
  frame_ = std::move(frame);
  changed();
}

void Screen::clear() {
  if (!frame_) return;
  frame_.reset();
  changed();
}

void Screen::full(bool value) {
  if (value == full_) return;
  full_ = value;
  changed();
}

}  // namespace engine
