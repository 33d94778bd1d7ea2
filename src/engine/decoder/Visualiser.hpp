#pragma once
#include <functional>
#include <optional>
#include <string>

#include "base/Loop.hpp"
#include "engine/decoder/DecoderAddress.hpp"
#include "engine/decoder/DecoderFiles.hpp"
#include "engine/decoder/MpvHandle.hpp"
#include "engine/decoder/PictureRenderer.hpp"

namespace engine {

/// Makes a picture of how loud each pitch of a file sounds. A decoder of its own reads the file a second
/// time, and nobody hears it: the one that is heard would lose the gapless change from title to title with
/// such a picture, and falter when it is switched on. Of stations and discs there is no picture, as they are
/// better read once.
class Visualiser {
 public:
  /// `message` gets lines for people.
  Visualiser(base::Loop& loop, SectorsOf sectorsOf, std::function<void(const std::string&)> message,
             PictureRenderer::Shown shown)
      : loop_(loop),
        sectorsOf_(std::move(sectorsOf)),
        message_(std::move(message)),
        shown_(std::move(shown)) {}

  /// The picture of what lies there, from that second on, that large.
  void show(const std::string& location, double seconds, bool paused, base::PictureSize size);
  /// Gives everything back.
  void end();
  /// A decoder is there.
  [[nodiscard]] bool working() const { return mpv_.has_value(); }

 private:
  bool begin();

  base::Loop& loop_;
  SectorsOf sectorsOf_;
  std::function<void(const std::string&)> message_;
  PictureRenderer::Shown shown_;
  bool refused_ = false;  ///< there is no room for it; told once
  std::string location_;
  EntryId entry_ = 0;
  DecoderFiles files_;
  std::optional<MpvHandle> mpv_;
  std::optional<PictureRenderer> renderer_;
};

}  // namespace engine
