#include "engine/machine/CdDrives.hpp"

#include <cdio/cdio.h>
#include <cdio/cdtext.h>
#include <cdio/device.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/library/Lists.hpp"
#include "engine/tags/TagFields.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine {
namespace {

struct Closer {
  void operator()(CdIo_t* disc) const { cdio_destroy(disc); }
};
using Disc = std::unique_ptr<CdIo_t, Closer>;

bool IsImage(const std::string& device) {
  const std::string ending = base::LowerCase(device.substr(device.rfind('.') + 1));
  return ending == "cue" || ending == "bin";
}

Disc Open(const std::string& device) {
  Disc disc(cdio_open(device.c_str(), IsImage(device) ? DRIVER_BINCUE : DRIVER_DEVICE));
  if (!disc) throw base::Failure(base::number::kDeviceIo, "The drive " + device + " can't be read");
  return disc;
}

std::string CdText(cdtext_t* text, cdtext_field_t field, track_t track) {
  const char* found = text != nullptr ? cdtext_get_const(text, field, track) : nullptr;
  return found != nullptr ? std::string(tags::Shortened(base::RepairUtf8(found), tags::TagFields::kLongest))
                          : std::string();
}

/// The table of contents as disc databases ask for it: number of tracks and all starts, in hexadecimal.
std::string Contents(CdIo_t* disc, track_t first, track_t count) {
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "%X", static_cast<unsigned>(count));
  std::string text = number.data();
  for (unsigned i = 0; i <= count; ++i) {
    const auto track = i < count ? static_cast<track_t>(first + i) : track_t{CDIO_CDROM_LEADOUT_TRACK};
    const lba_t start = cdio_get_track_lba(disc, track);
    std::snprintf(number.data(), number.size(), "+%X", static_cast<unsigned>(start));
    text += number.data();
  }
  return text;
}

}  // namespace

class CdDrives::Drive : public player::Cdrom {
 public:
  Drive(std::string device, ShelfRef shelf) : device_(std::move(device)), shelf_(std::move(shelf)) {}

  [[nodiscard]] std::string driveSpecifier() const override { return device_; }

  player::PlaylistRef playlist() override {
    if (ejected_) throw base::Failure(base::number::kDeviceIo, "There is no disc in " + device_);
    const Disc disc = Open(device_);
    const track_t first = cdio_get_first_track_num(disc.get());
    const track_t count = cdio_get_num_tracks(disc.get());
    if (first == CDIO_INVALID_TRACK || count == CDIO_INVALID_TRACK) {
      throw base::Failure(base::number::kDeviceIo, "There is no disc in " + device_);
    }
    cdtext_t* text = cdio_get_cdtext(disc.get());
    TrackTags album;
    album.album = CdText(text, CDTEXT_FIELD_TITLE, 0);
    album.albumArtist = CdText(text, CDTEXT_FIELD_PERFORMER, 0);
    album.discId = Contents(disc.get(), first, count);
    std::vector<player::MediaRef> items;
    sectors_.clear();
    for (unsigned i = 0; i < count; ++i) {
      const auto track = static_cast<track_t>(first + i);
      if (cdio_get_track_format(disc.get(), track) != TRACK_FORMAT_AUDIO) continue;
      TrackTags tags = album;
      tags.track = track;
      tags.title = CdText(text, CDTEXT_FIELD_TITLE, track);
      if (tags.title.empty()) tags.title = "Track " + std::to_string(track);
      tags.artist = CdText(text, CDTEXT_FIELD_PERFORMER, track);
      if (tags.artist.empty()) tags.artist = album.albumArtist;
      const unsigned sectors = cdio_get_track_sec_count(disc.get(), track);
      sectors_[track] = static_cast<std::int32_t>(sectors);
      tags.milliseconds = sectors * 1000 / CDIO_CD_FRAMES_PER_SEC;
      items.push_back(std::make_shared<LooseMedia>("cdda://" + device_ + "#" + std::to_string(track),
                                                   std::move(tags), shelf_));
    }
    return std::make_shared<ListPlaylist>(album.album.empty() ? "Audio CD" : album.album, std::move(items));
  }

  /// 0 where it isn't known.
  [[nodiscard]] std::int32_t sectorsOf(int track) const {
    const auto known = sectors_.find(track);
    return known != sectors_.end() ? known->second : 0;
  }

  void eject() override {
    if (IsImage(device_)) {
      ejected_ = true;  // there is no tray, so the image is what leaves the drive
      return;
    }
    const driver_return_code_t result = cdio_eject_media_drive(device_.c_str());
    if (result != DRIVER_OP_SUCCESS) {
      throw base::Failure(base::number::kDeviceIo, "The drive " + device_ + " can't be opened");
    }
  }

 private:
  std::string device_;
  ShelfRef shelf_;
  std::map<int, std::int32_t> sectors_;  ///< of each track of the disc that was looked at last
  bool ejected_ = false;
};

CdDrives::CdDrives(const std::vector<std::string>& devices, bool find, const ShelfRef& shelf) {
  if (find) {
    char** found = cdio_get_devices(DRIVER_DEVICE);
    for (char** device = found; device != nullptr && *device != nullptr; ++device) {
      drives_.push_back(std::make_shared<Drive>(*device, shelf));
    }
    if (found != nullptr) cdio_free_device_list(found);
  }
  for (const std::string& device : devices) drives_.push_back(std::make_shared<Drive>(device, shelf));
}

std::shared_ptr<player::Cdrom> CdDrives::item(std::int32_t index) {
  if (index < 0 || index >= count()) throw base::Failure(base::number::kIndex);
  return drives_[static_cast<std::size_t>(index)];
}

std::optional<std::int32_t> CdDrives::sectorsOf(const std::string& device, int track) const {
  const auto drive = std::find_if(drives_.begin(), drives_.end(),
                                  [&](const auto& each) { return each->driveSpecifier() == device; });
  return drive != drives_.end() ? std::optional((*drive)->sectorsOf(track)) : std::nullopt;
}

}  // namespace engine
