#include "engine/decoder/Visualiser.hpp"

#include "base/Attempt.hpp"
#include "engine/decoder/DecoderOptions.hpp"

namespace engine {
namespace {

/// Bars from the lowest pitch to the highest, as the ear tells pitches and loudness apart.
constexpr const char* kPicture =
    "[aid1]aformat=channel_layouts=mono,showfreqs=s=320x180:rate=25:mode=bar:fscale=log:ascale=cbrt:"
    "win_size=2048:averaging=2:colors=0x58A6FF[vo]";

}  // namespace

bool Visualiser::begin() {
  if (mpv_) return true;
  if (refused_) return false;
  return base::Handled(
      [&] {
        MpvOptions options = DecoderOptions();
        options.emplace_back("ao", "null");
        options.emplace_back("lavfi-complex", kPicture);
        mpv_.emplace(options);
        files_.serve(*mpv_);
        renderer_.emplace(loop_, *mpv_, shown_);
        return true;
      },
      [&](const base::Failure& failure) {
        end();
        refused_ = true;
        message_(failure.description());
        return false;
      });
}

void Visualiser::show(const std::string& location, double seconds, bool paused, base::PictureSize size) {
  const DecoderAddress address = AddressFor(location, sectorsOf_);
  if (!address.refusal.empty() || address.kind != DecoderAddress::Kind::kFile) return end();
  if (!begin()) return;
  renderer_->size(size);
  mpv_->set("pause", paused);
  if (location == location_) {
    mpv_->command(0, {"seek", std::to_string(seconds), "absolute+exact"});
    return;
  }
  location_ = location;
  files_.forgetAll();
  mpv_->command(
      0, {"loadfile", files_.give(++entry_, address.address), "replace", "start=" + std::to_string(seconds)});
}

void Visualiser::end() {
  renderer_.reset();
  mpv_.reset();
  location_.clear();
}

}  // namespace engine
