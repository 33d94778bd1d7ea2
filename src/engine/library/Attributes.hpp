#pragma once
#include <string>
#include <string_view>

#include "engine/library/TrackTable.hpp"

namespace engine {

/// The attributes of a piece of media that the engine knows.
enum class Attribute {
  kUnknown,
  kTitle,
  kArtist,
  kAlbum,
  kAlbumArtist,
  kGenre,
  kYear,
  kTrackNumber,
  kDuration,
  kSourceUrl,
  kCollectionId,
  kDiscId,
  kMediaType,
};

/// The attribute of that name, without regard to case. Several names may mean one attribute.
Attribute AttributeNamed(std::string_view name);

/// An attribute of a track as text; empty when it has none.
std::string AttributeText(const TrackTable& table, TrackId id, Attribute attribute);
/// An attribute of tags that stand for themselves. `url` is where the media lies.
std::string AttributeText(const TrackTags& tags, const std::string& url, Attribute attribute);

/// Seconds as text, "215.3".
std::string SecondsText(std::uint32_t milliseconds);
/// "mm:ss", or "hh:mm:ss" from one hour on.
std::string ClockText(double seconds);
/// Where media lies, as the outer world writes it: a path as it is, or a file address when its bytes are no
/// text.
std::string SourceUrl(const std::string& path);
/// The path that a text of the outer world means: a path, a file address or an address as it is.
std::string PathOf(const std::string& url);
/// True for an address such as "http://…", false for a path.
bool IsAddress(std::string_view text);
/// A local path in the form in which album art is looked for beside it; an address as it is.
std::string BackslashPath(std::string url);
/// Sixteen hexadecimal digits that stand for the text: the same in every build and on every machine.
std::string HashText(std::string_view text);
/// An album's id where the tags give none: the same for the same album at all times.
std::string AlbumId(std::string_view albumArtist, std::string_view album);

}  // namespace engine
