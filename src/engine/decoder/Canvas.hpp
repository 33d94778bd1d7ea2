#pragma once
#include <memory>

#include "base/MovingPicture.hpp"
#include "engine/card/GraphicsCard.hpp"

struct mpv_render_context;

namespace engine {

class MpvHandle;

/// What one decoder's frames are drawn with: a card, or software without one. A decoder has one at a time,
/// and outlives it. With a card it is made, used and ended on the card's thread; its end ends the decoder's
/// output for pictures, which comes back when a track of pictures is chosen anew.
class Canvas {
 public:
  /// `wake(context)` is called on any thread when there is something to draw. Throws number 429 when the
  /// decoder refuses it.
  Canvas(const MpvHandle& decoder, std::unique_ptr<GraphicsCard> card, void (*wake)(void*), void* context);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  Canvas(Canvas&&) = delete;
  Canvas& operator=(Canvas&&) = delete;

  /// Throws number 429 where the card fails.
  void draw(base::PictureFrame& frame);

 private:
  void drawByCard(base::PictureFrame& frame);
  void drawInSoftware(base::PictureFrame& frame);

  const MpvHandle& decoder_;
  std::unique_ptr<GraphicsCard> card_;
  mpv_render_context* context_ = nullptr;
};

}  // namespace engine
