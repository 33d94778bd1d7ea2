#pragma once
#include <cstdint>
#include <string>

namespace standin {

/// A title as a list of the player's tells of it; texts are empty and numbers 0 where it doesn't know.
struct Title {
  std::string name;
  std::string source;
  std::string artist;
  std::string albumArtist;
  std::string album;
  std::string genre;
  std::int32_t track = 0;
  double seconds = 0;

  bool operator==(const Title&) const = default;
};

/// Whether the artist plays the title, or it is on an album of his.
bool IsBy(const Title& title, const std::string& artist);

/// What tells the title from others of its name: a short text of its name and source that shows neither.
std::string MarkOf(const std::string& name, const std::string& source);
inline std::string MarkOf(const Title& title) { return MarkOf(title.name, title.source); }

/// A title that somebody has seen at a place of a group; the place counts from 0. It is still that one where
/// the mark is the same. The group "Media Library" has no name.
struct TitleAddress {
  std::string category{};
  std::string group{};
  std::int32_t at = 0;
  std::string name{};
  std::string mark{};
};

}  // namespace standin
