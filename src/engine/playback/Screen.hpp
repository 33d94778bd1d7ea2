#pragma once
#include <functional>

#include "base/MovingPicture.hpp"

namespace engine {

/// Between the window that shows moving pictures and the player that makes them: either may come and go. All
/// on the loop's thread.
class Screen : public base::MovingPicture {
 public:
  void tell(std::function<void()> changed) override { changed_ = std::move(changed); }
  void seen(base::PictureSize size) override;
  [[nodiscard]] base::FrameRef frame() const override { return frame_; }
  [[nodiscard]] bool full() const override { return full_; }

  /// The player's side: `seen` is called when another size is seen. Null for nobody.
  void onSeen(std::function<void()> seen) { seen_ = std::move(seen); }
  /// How large it is seen; empty when it is not.
  [[nodiscard]] base::PictureSize size() const { return size_; }
  void show(base::FrameRef frame);
  /// Nothing is shown any more.
  void clear();
  void full(bool value);

 private:
  void changed() const;

  std::function<void()> changed_;
  std::function<void()> seen_;
  base::PictureSize size_;
  base::FrameRef frame_;
  bool full_ = false;
};

}  // namespace engine
