#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/common/Track.hpp"

namespace engine::tags {

enum class Field {
  kTitle,
  kArtist,
  kAlbumArtist,
  kAlbum,
  kGenre,
  kCollectionId,
  kDiscId,
  kYear,
  kTrack,
  kDisc,
  kTrackGain,
  kTrackPeak,
  kAlbumGain,
  kAlbumPeak,
  kTrackLevel,
  kAlbumLevel
};

/// The field that tags call so, without regard to case; none for what is not kept.
std::optional<Field> FieldNamed(std::string_view name);

/// Collects what the readers find. The first value of a field counts; a text is cut at a character behind
/// `kLongest` bytes, so nobody need hold more of one than `kMostOfText` bytes before it comes here.
class TagFields {
 public:
  static constexpr std::size_t kLongest = 4096;
  static constexpr std::size_t kMostOfText = 4 * kLongest;

  explicit TagFields(bool withPicture = false) : withPicture_(withPicture) {}

  /// UTF-8, perhaps ill-formed, up to its first code 0.
  void offer(Field field, std::string_view text);
  void offer(std::string_view name, std::string_view text);
  /// A text of one byte a character.
  void offerLatin(Field field, std::string_view text);
  /// Whether a picture of that many bytes is worth reading.
  [[nodiscard]] bool wantsPicture(bool front, std::uint64_t length) const;
  void offerPicture(bool front, std::string bytes);
  void length(std::uint64_t milliseconds);
  /// Of so many samples.
  void length(std::uint64_t samples, std::uint64_t aSecond);

  /// What was found. To be asked once.
  [[nodiscard]] TrackTags take() { return std::move(tags_); }
  [[nodiscard]] std::string takePicture() { return std::move(picture_); }
  /// Whether anything was offered that is no picture.
  [[nodiscard]] bool any() const { return any_; }
  /// Whether a text was too long.
  [[nodiscard]] bool cut() const { return cut_; }

 private:
  bool withPicture_;
  TrackTags tags_;
  std::string picture_;
  bool front_ = false;
  bool any_ = false;
  bool cut_ = false;
};

}  // namespace engine::tags
