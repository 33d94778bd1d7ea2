#pragma once
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/Loop.hpp"
#include "base/MovingPicture.hpp"
#include "engine/card/GraphicsCard.hpp"
#include "engine/common/Poster.hpp"
#include "engine/decoder/Canvas.hpp"

namespace engine {

class MpvHandle;
class Opening;

/// Draws the frames of one decoder into memory, on a thread of its own, and hands the newest to the loop.
/// It costs nothing while no size is wanted. The decoder's output for pictures is "libmpv"; it has one such
/// renderer, and outlives it.
class PictureRenderer {
 public:
  /// On the loop's thread.
  using Shown = std::function<void(base::FrameRef)>;

  /// How a card draws; in software where that can't be, or can't be any more.
  struct ByCard {
    /// On the renderer's thread. Empty for software from the start.
    OpenCard open;
    /// It is drawn with something else from now on: the decoder's track of pictures is to be chosen, or anew
    /// if it was. On the loop's thread.
    std::function<void()> changed;
    /// Why it is software after all, one line for people. On the loop's thread.
    std::function<void(const std::string&)> message;
    /// How long a card may take to open.
    base::Milliseconds patience = std::chrono::seconds(5);
  };

  /// Throws number 429 when the decoder refuses it, if it is software from the start.
  PictureRenderer(base::Loop& loop, const MpvHandle& decoder, Shown shown, ByCard card);
  PictureRenderer(base::Loop& loop, const MpvHandle& decoder, Shown shown)
      : PictureRenderer(loop, decoder, std::move(shown), ByCard()) {}
  ~PictureRenderer();
  PictureRenderer(const PictureRenderer&) = delete;
  PictureRenderer& operator=(const PictureRenderer&) = delete;
  PictureRenderer(PictureRenderer&&) = delete;
  PictureRenderer& operator=(PictureRenderer&&) = delete;

  /// Frames are that large from now on; none are drawn for an empty size.
  void size(base::PictureSize size);
  /// The decoder finds something to draw with. For the loop's thread.
  [[nodiscard]] bool ready() const { return ready_; }

 private:
  static void wake(void* self);
  void openCard();
  void openedTooLong();
  /// These are the renderer's thread's.
  void begin(std::unique_ptr<GraphicsCard> card, std::string reason);
  void beginInSoftware(const std::string& reason);
  void work();
  bool draw(base::PictureFrame& frame);
  [[nodiscard]] std::shared_ptr<base::PictureFrame> blank(base::PictureSize size);
  void tell(const std::string& reason) const;

  void handOver();

  const MpvHandle& decoder_;
  Shown shown_;
  ByCard card_;
  bool ready_ = false;
  std::shared_ptr<Opening> opening_;  ///< of the card; null without one, and where it is left to itself
  std::unique_ptr<base::Timer> patience_;
  std::optional<Canvas> canvas_;  ///< the thread's once that works; none where the decoder takes none
  std::vector<std::shared_ptr<base::PictureFrame>>
      frames_;        ///< the thread's; drawn in again when nobody has them
  std::mutex mutex_;  ///< guards what follows
  std::condition_variable turn_;
  base::PictureSize size_;
  base::FrameRef newest_;
  bool due_ = false;
  bool posted_ = false;
  bool ending_ = false;
  Poster post_;
  std::thread thread_;  // last: it works with all of the above
};

}  // namespace engine
