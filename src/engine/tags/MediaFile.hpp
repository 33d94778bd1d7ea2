#pragma once
#include <string>
#include <string_view>

#include "engine/common/Track.hpp"

// The tags and pictures of media files, read without any more of a file in memory than a bounded part,
// whatever is in it. Nothing that a file says is believed: sizes are cut to what is there, texts and what is
// packed to what is kept.
namespace engine::tags {

/// What a file's name says it is. Files of no kind are never opened.
MediaKind KindByName(std::string_view path);

struct MediaFile {
  TrackTags tags;     ///< without a title if none is in the file
  bool music = true;  ///< there is something to be played in it, as far as can be told
  bool cut = false;   ///< a text was longer than is kept
};

/// Safe on any thread. Throws as `files::FailOn` when the file can't be opened, 5 when it is no file.
MediaFile ReadMediaFile(const std::string& path);

/// The front cover inside a file, or its first picture; empty without one, or with one that is too large.
/// Throws as `ReadMediaFile`.
std::string ReadPicture(const std::string& path);

}  // namespace engine::tags
