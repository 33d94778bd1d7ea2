#pragma once
#include <cstdint>
#include <string>

#include "player/WMP9.hpp"

namespace player {

/// What a play request asks the library. The results are statuses: 0, -1 for not found, or the number of the
/// player's failure. None of them throws.
class LibraryLookup {
 public:
  LibraryLookup() = default;
  LibraryLookup(const LibraryLookup&) = delete;
  LibraryLookup& operator=(const LibraryLookup&) = delete;
  LibraryLookup(LibraryLookup&&) = delete;
  LibraryLookup& operator=(LibraryLookup&&) = delete;
  virtual ~LibraryLookup() = default;

  /// The playlist, album, artist, genre or whole library of that name.
  virtual std::int32_t GetGroupItems(const std::string& category, const std::string& name,
                                     PlaylistRef& group) = 0;
  /// The first item of that title in `list`. Nothing in `list` means the whole library, and `list` is then
  /// given what was found. `title` is replaced by the library's own name.
  virtual std::int32_t GetMediaItem(std::string& title, PlaylistRef& list, MediaRef& item) = 0;
  virtual std::int32_t GetPlayListByName(const std::string& name, PlaylistRef& list) = 0;
  virtual std::int32_t GetAllMedia(PlaylistRef& list) = 0;
};

}  // namespace player
