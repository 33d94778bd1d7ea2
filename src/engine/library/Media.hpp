#pragma once
#include <cmath>
#include <memory>
#include <string>
#include <unordered_map>

#include "engine/library/Attributes.hpp"
#include "engine/library/Pictures.hpp"
#include "engine/library/TrackIndex.hpp"
#include "engine/library/TrackTable.hpp"
#include "player/Pictured.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// What media of the library look things up in. It lives as long as anything made from it.
struct Shelf {
  Shelf(const std::string& pictureFolder, const std::string& chosenPictures)
      : index(table), pictures(pictureFolder, chosenPictures) {}

  TrackTable table;
  TrackIndex index;
  Pictures pictures;
  std::unordered_map<TrackId, std::int32_t>
      pictureHeights;  ///< of the tracks that are videos, as far as they were played
};
using ShelfRef = std::shared_ptr<Shelf>;

/// Media that the engine can play.
class EngineMedia : public player::Media, public player::Pictured {
 public:
  /// What the decoder opens: a path or an address.
  [[nodiscard]] virtual std::string location() const = 0;
  /// The same media as an object of its own.
  [[nodiscard]] virtual std::shared_ptr<EngineMedia> copy() const = 0;
  [[nodiscard]] std::string durationString() const override { return ClockText(duration()); }
  /// Told by the decoder when it begins to play, as nobody looks for a picture before that.
  virtual void pictureHeight(std::int32_t lines) = 0;
  [[nodiscard]] player::Picture getItemInfoByType(const std::string& attribute, const std::string& language,
                                                  std::int32_t index) const override;
  [[nodiscard]] std::string pictureMark() const override;
  [[nodiscard]] std::string pictureBytes() const override;

 protected:
  /// Where pictures are looked up; null without a library.
  [[nodiscard]] virtual Pictures* pictures() const = 0;

 private:
  [[nodiscard]] Pictures::Sought sought() const;
};

/// A track of the library: a number, looked up when asked.
class TrackMedia : public EngineMedia {
 public:
  TrackMedia(ShelfRef shelf, TrackId id) : shelf_(std::move(shelf)), id_(id) {}

  [[nodiscard]] TrackId id() const { return id_; }
  [[nodiscard]] std::shared_ptr<EngineMedia> copy() const override {
    return std::make_shared<TrackMedia>(shelf_, id_);
  }
  [[nodiscard]] std::string location() const override { return shelf_->table.path(id_); }
  [[nodiscard]] std::string name() const override;
  [[nodiscard]] std::string sourceURL() const override { return SourceUrl(location()); }
  [[nodiscard]] std::string getItemInfo(const std::string& attribute) const override;
  [[nodiscard]] double duration() const override { return shelf_->table.row(id_).milliseconds / 1000.0; }
  [[nodiscard]] std::int32_t imageSourceHeight() const override;
  void pictureHeight(std::int32_t lines) override;

 protected:
  [[nodiscard]] Pictures* pictures() const override { return &shelf_->pictures; }

 private:
  ShelfRef shelf_;
  TrackId id_;
};

/// Media outside the library: an address, a file from elsewhere, a track of a disc.
class LooseMedia : public EngineMedia {
 public:
  /// Without a shelf it has no picture.
  LooseMedia(std::string location, TrackTags tags, ShelfRef shelf = nullptr)
      : location_(std::move(location)), tags_(std::move(tags)), shelf_(std::move(shelf)) {}

  /// Told by the decoder once it knows.
  void duration(double seconds) {
    tags_.milliseconds = static_cast<std::uint32_t>(std::lround(seconds * 1000));
  }

  /// Told by the decoder: what the station plays now, or an empty text. False if that was known.
  bool streamTitle(std::string_view title);

  [[nodiscard]] std::string location() const override { return location_; }
  /// The same, to be looked at only.
  [[nodiscard]] const std::string& place() const { return location_; }
  [[nodiscard]] const TrackTags& tags() const { return tags_; }
  [[nodiscard]] std::shared_ptr<EngineMedia> copy() const override {
    return std::make_shared<LooseMedia>(location_, tags_, shelf_);
  }
  [[nodiscard]] std::string name() const override { return tags_.title; }
  [[nodiscard]] std::string sourceURL() const override { return SourceUrl(location_); }
  [[nodiscard]] std::string getItemInfo(const std::string& attribute) const override;
  [[nodiscard]] double duration() const override { return tags_.milliseconds / 1000.0; }
  [[nodiscard]] std::int32_t imageSourceHeight() const override { return height_; }
  void pictureHeight(std::int32_t lines) override { height_ = lines; }

 protected:
  [[nodiscard]] Pictures* pictures() const override { return shelf_ ? &shelf_->pictures : nullptr; }

 private:
  std::string location_;
  TrackTags tags_;
  ShelfRef shelf_;
  std::string streamTitle_;
  std::int32_t height_ = 0;
};

/// A path without "." and ".." steps; an address as it is.
std::string PlainLocation(const std::string& location);

/// What tells media from each other: where it lies, however its path is written.
std::string SourceOf(const player::Media& media);

/// What the decoder is to open for any media.
std::string LocationOf(const player::Media& media);

}  // namespace engine
