#pragma once
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "base/Loop.hpp"
#include "base/MovingPicture.hpp"
#include "engine/common/Poster.hpp"

struct mpv_render_context;

namespace engine {

class MpvHandle;
struct MpvLibrary;

/// Draws the frames of one decoder, in memory and on a thread of its own, and hands the newest to the loop.
/// It costs nothing while no size is wanted. The decoder's output for pictures is "libmpv"; it has one such
/// renderer, and outlives it.
class PictureRenderer {
 public:
  /// On the loop's thread.
  using Shown = std::function<void(base::FrameRef)>;

  /// Throws number 429 when the decoder refuses it.
  PictureRenderer(base::Loop& loop, const MpvHandle& decoder, Shown shown);
  ~PictureRenderer();
  PictureRenderer(const PictureRenderer&) = delete;
  PictureRenderer& operator=(const PictureRenderer&) = delete;
  PictureRenderer(PictureRenderer&&) = delete;
  PictureRenderer& operator=(PictureRenderer&&) = delete;

  /// Frames are that large from now on; none are drawn for an empty size.
  void size(base::PictureSize size);

 private:
  void work();
  void draw(base::PictureFrame& frame) const;
  void handOver();
  [[nodiscard]] std::shared_ptr<base::PictureFrame> blank(base::PictureSize size);

  const MpvLibrary& library_;
  Shown shown_;
  mpv_render_context* context_ = nullptr;
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
