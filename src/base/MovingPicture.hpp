#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace base {

/// In the screen's own pixels.
struct PictureSize {
  int width = 0;
  int height = 0;

  [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
  bool operator==(const PictureSize&) const = default;
};

/// One frame, in rows from the top. A pixel is four bytes: blue, green, red and one without meaning.
struct PictureFrame {
  explicit PictureFrame(PictureSize room)
      : size(room),
        stride((static_cast<std::size_t>(room.width) * 4 + sizeof(Block) - 1) / sizeof(Block) *
               sizeof(Block)),
        blocks(stride / sizeof(Block) * static_cast<std::size_t>(room.height)) {}

  /// What is drawn quickly begins at such blocks.
  struct alignas(64) Block {
    std::array<std::uint8_t, 64> bytes;
  };

  [[nodiscard]] const std::uint8_t* data() const { return blocks.front().bytes.data(); }
  [[nodiscard]] std::uint8_t* data() { return blocks.front().bytes.data(); }

  PictureSize size;    ///< never empty
  std::size_t stride;  ///< bytes from a row to the next
  std::vector<Block> blocks;
};
using FrameRef = std::shared_ptr<const PictureFrame>;

/// The moving picture of what plays, for the one window that shows it: a video, or what is made of the sound.
/// All on the loop's thread.
class MovingPicture {
 public:
  MovingPicture() = default;
  MovingPicture(const MovingPicture&) = delete;
  MovingPicture& operator=(const MovingPicture&) = delete;
  MovingPicture(MovingPicture&&) = delete;
  MovingPicture& operator=(MovingPicture&&) = delete;
  virtual ~MovingPicture() = default;

  /// `changed` is called when there is another frame, or none any more, or when `full` has changed. Null for
  /// nobody.
  virtual void tell(std::function<void()> changed) = 0;
  /// It is seen, that large; at an empty size nobody sees it, and nothing is made.
  virtual void seen(PictureSize size) = 0;
  /// The newest frame, of the size last seen or of one before; null where there is none.
  [[nodiscard]] virtual FrameRef frame() const = 0;
  /// A video that is to fill the screen.
  [[nodiscard]] virtual bool full() const = 0;
};

}  // namespace base
