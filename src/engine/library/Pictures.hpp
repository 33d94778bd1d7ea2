#pragma once
#include <string>
#include <unordered_map>

#include "engine/library/FolderPictures.hpp"

namespace engine {

/// The pictures of media files: the one in the file's folder, which its owner has chosen, or else the one
/// inside the file, taken out into a folder of ours when it is first asked for.
class Pictures {
 public:
  /// `folder` is made when it is first needed. What a killed process has left half-written in it is cleared.
  explicit Pictures(std::string folder);

  /// A "file:" address of the file's picture, empty when there is none or it can't be kept.
  std::string urlOf(const std::string& path);

 private:
  std::string insideOf(const std::string& path);

  FolderPictures besides_;
  std::string folder_;
  std::unordered_map<std::string, std::string> known_;  ///< by path and stamp
};

}  // namespace engine
