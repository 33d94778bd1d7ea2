#include "engine/tags/TagFields.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "base/Text.hpp"
#include "engine/tags/ByteSource.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine::tags {
namespace {

constexpr std::array<std::pair<std::string_view, Field>, 32> kNames{{
    {"TITLE", Field::kTitle},
    {"ARTIST", Field::kArtist},
    {"AUTHOR", Field::kArtist},
    {"ALBUMARTIST", Field::kAlbumArtist},
    {"ALBUM ARTIST", Field::kAlbumArtist},
    {"ALBUM_ARTIST", Field::kAlbumArtist},
    {"WM/ALBUMARTIST", Field::kAlbumArtist},
    {"ALBUM", Field::kAlbum},
    {"WM/ALBUMTITLE", Field::kAlbum},
    {"GENRE", Field::kGenre},
    {"WM/GENRE", Field::kGenre},
    {"MUSICBRAINZ_ALBUMID", Field::kCollectionId},
    {"MUSICBRAINZ ALBUM ID", Field::kCollectionId},
    {"MUSICBRAINZ/ALBUM ID", Field::kCollectionId},
    {"MCDI", Field::kDiscId},
    {"WM/MCDI", Field::kDiscId},
    {"DATE", Field::kYear},
    {"YEAR", Field::kYear},
    {"WM/YEAR", Field::kYear},
    {"DATE_RELEASED", Field::kYear},
    {"TRACKNUMBER", Field::kTrack},
    {"TRACK", Field::kTrack},
    {"WM/TRACKNUMBER", Field::kTrack},
    {"DISCNUMBER", Field::kDisc},
    {"DISC", Field::kDisc},
    {"WM/PARTOFSET", Field::kDisc},
    {"REPLAYGAIN_TRACK_GAIN", Field::kTrackGain},
    {"REPLAYGAIN_TRACK_PEAK", Field::kTrackPeak},
    {"REPLAYGAIN_ALBUM_GAIN", Field::kAlbumGain},
    {"REPLAYGAIN_ALBUM_PEAK", Field::kAlbumPeak},
    {"R128_TRACK_GAIN", Field::kTrackLevel},
    {"R128_ALBUM_GAIN", Field::kAlbumLevel},
}};

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool SameName(std::string_view text, std::string_view upper) {
  return text.size() == upper.size() &&
         std::equal(text.begin(), text.end(), upper.begin(),
                    [](char left, char right) { return Upper(left) == right; });
}

/// What a number's text begins with, as "3/12" does.
std::uint16_t Number(std::string_view text) {
  unsigned value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9' || value > 6000) break;
    value = value * 10 + static_cast<unsigned>(digit - '0');
  }
  return static_cast<std::uint16_t>(std::min(value, 65535U));
}

std::string* TextOf(TrackTags& tags, Field field) {
  switch (field) {
    case Field::kTitle: return &tags.title;
    case Field::kArtist: return &tags.artist;
    case Field::kAlbumArtist: return &tags.albumArtist;
    case Field::kAlbum: return &tags.album;
    case Field::kGenre: return &tags.genre;
    case Field::kCollectionId: return &tags.collectionId;
    case Field::kDiscId: return &tags.discId;
    default: return nullptr;
  }
}

/// A number with a sign and a fraction at the text's beginning; none for what no tag means.
std::optional<double> Decimal(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (read.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

/// Takes what belongs to how loud the track is; false for another field.
bool OfferLoudness(Loudness& loudness, Field field, std::string_view text) {
  constexpr double kMostDecibels = 60;
  const bool album = field == Field::kAlbumGain || field == Field::kAlbumPeak || field == Field::kAlbumLevel;
  if (!album && field != Field::kTrackGain && field != Field::kTrackPeak && field != Field::kTrackLevel)
    return false;
  const auto value = Decimal(text);
  if (!value) return true;
  if (field == Field::kTrackPeak || field == Field::kAlbumPeak) {
    std::uint16_t& peak = album ? loudness.albumPeak : loudness.trackPeak;
    if (peak == 0 && *value > 0 && *value < 6.5)
      peak = static_cast<std::uint16_t>(std::lround(*value * 10000));
    return true;
  }
  // The levels of Opus are 256ths of a decibel, and meant for a loudness 5 decibels lower.
  const bool level = field == Field::kTrackLevel || field == Field::kAlbumLevel;
  const double decibels = level ? *value / 256 + 5 : *value;
  std::int16_t& gain = album ? loudness.album : loudness.track;
  if (gain == Loudness::kUnknown && std::abs(decibels) <= kMostDecibels)
    gain = static_cast<std::int16_t>(std::lround(decibels * 100));
  return true;
}

std::uint16_t& NumberOf(TrackTags& tags, Field field) {
  if (field == Field::kYear) return tags.year;
  return field == Field::kTrack ? tags.track : tags.disc;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::optional<Field> FieldNamed(std::string_view name) {
  const auto* found = std::find_if(kNames.begin(), kNames.end(),
                                   [&](const auto& entry) { return SameName(name, entry.first); });
  return found != kNames.end() ? std::optional(found->second) : std::nullopt;
}

void TagFields::offer(std::string_view name, std::string_view text) {
  if (const auto field = FieldNamed(name)) offer(*field, text);
}

void TagFields::offer(Field field, std::string_view text) {
  text = text.substr(0, text.find('\0'));
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  if (text.empty()) return;
  any_ = true;
  if (OfferLoudness(tags_.loudness, field, text)) return;
  std::string* known = TextOf(tags_, field);
  if (known == nullptr) {
    std::uint16_t& number = NumberOf(tags_, field);
    if (number == 0) number = Number(text);
    return;
  }
  if (!known->empty()) return;
  if (text.size() > kLongest) {
    cut_ = true;
    text = Shortened(text, kLongest);
  }
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (IsAscii(text)) {
    known->assign(text);
  } else {
    *known = base::RepairUtf8(text);
    if (known->size() > kLongest)
      *known = Shortened(*known, kLongest);  // each ill-formed byte has become three
  }
}

void TagFields::offerLatin(Field field, std::string_view text) {
  text = text.substr(0, std::min(text.find('\0'), kMostOfText));
  if (IsAscii(text)) {
    offer(field, text);
  } else {
    offer(field, FromLatin(text));
  }
}

bool TagFields::wantsPicture(bool front, std::uint64_t length) const {
  return withPicture_ && length > 0 && length <= ByteSource::kLargestCopy &&
         (picture_.empty() || (front && !front_));
}

void TagFields::offerPicture(bool front, std::string bytes) {
  if (!wantsPicture(front, bytes.size())) return;
  picture_ = std::move(bytes);
  front_ = front;
}

void TagFields::length(std::uint64_t milliseconds) {
  tags_.milliseconds = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(milliseconds, std::numeric_limits<std::int32_t>::max()));
}

void TagFields::length(std::uint64_t samples, std::uint64_t aSecond) {
  if (aSecond == 0) return;
  length(samples / aSecond * 1000 + (samples % aSecond * 1000 + aSecond / 2) / aSecond);
}

}  // namespace engine::tags
