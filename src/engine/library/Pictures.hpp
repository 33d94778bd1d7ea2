#pragma once
#include <string>
#include <unordered_map>

#include "engine/library/ChosenPictures.hpp"
#include "engine/library/FolderPictures.hpp"
#include "engine/library/TakenPictures.hpp"

namespace engine {

/// The pictures of media files: the one that the user has chosen for the album, before the one in the file's
/// folder, before the one inside the file, taken out into a folder of ours when its address is first asked
/// for.
class Pictures {
 public:
  /// What a picture is sought for. Without a path only a chosen one is found, without an album none is.
  struct Sought {
    std::string path;
    std::string artist;  ///< of the album
    std::string album;
  };

  /// `folder` is for what is taken out of files. `chosen` holds the user's own choices.
  Pictures(std::string folder, std::string chosen);

  /// A "file:" address of the picture, empty when there is none or it can't be kept.
  std::string urlOf(const Sought& sought);
  /// A short text that changes with the picture; empty without one. Nothing is read but folders: for a
  /// picture inside of a file it stands for the file, and there may turn out to be none.
  std::string markOf(const Sought& sought);
  /// The picture itself, empty without one. Throws as files do.
  std::string bytesOf(const Sought& sought);

 private:
  /// Where a picture is, or may be.
  struct Place {
    std::string path{};
    bool inside = false;  ///< of that media file
  };
  Place placeOf(const Sought& sought);
  std::string insideOf(const std::string& path);

  ChosenPictures chosen_;
  FolderPictures besides_;
  TakenPictures taken_;
  std::unordered_map<std::string, std::string> known_;  ///< the taken ones' files, by path and stamp
};

}  // namespace engine
