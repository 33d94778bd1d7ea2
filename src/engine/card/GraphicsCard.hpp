#pragma once
#include <functional>
#include <memory>
#include <string>

#include "base/MovingPicture.hpp"

namespace engine {

/// A card with OpenGL that draws into memory of its own, for no window. It is opened, used and closed on one
/// thread, on which its context stays current.
class GraphicsCard {
 public:
  GraphicsCard() = default;
  GraphicsCard(const GraphicsCard&) = delete;
  GraphicsCard& operator=(const GraphicsCard&) = delete;
  GraphicsCard(GraphicsCard&&) = delete;
  GraphicsCard& operator=(GraphicsCard&&) = delete;
  virtual ~GraphicsCard() = default;

  /// What it calls itself.
  [[nodiscard]] virtual std::string name() const = 0;
  /// OpenGL's function of that name, or null.
  [[nodiscard]] virtual void* function(const char* name) const = 0;
  /// The framebuffer object that the next picture is drawn into, with eight bits a colour and its first row
  /// at the top. Throws number 429 where the card has no room for one that large.
  virtual unsigned framebuffer(base::PictureSize size) = 0;
  /// What has been drawn into the framebuffer of the frame's size. Throws number 429 where the card has
  /// failed since it was last read.
  virtual void read(base::PictureFrame& frame) = 0;
};

/// Opens a card on the thread that calls. Throws number 429 where there is none, for which the text is to be
/// told; null where there is none and that has been told before.
using OpenCard = std::function<std::unique_ptr<GraphicsCard>()>;

}  // namespace engine
