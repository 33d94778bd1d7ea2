#pragma once
#include <cstdint>
#include <string>
#include <unordered_map>

namespace engine {

/// The pictures that people and programs lay beside music, such as "cover.jpg" or "Folder.png". Nothing is
/// ever written into a music folder.
class FolderPictures {
 public:
  /// The path of the picture that stands for the album in that folder, empty without one: a cover before a
  /// folder's picture before a front. A folder is read again once something has come, gone or been renamed.
  std::string in(const std::string& folder);

 private:
  struct Known {
    std::int64_t modified = 0;
    bool settled = false;  ///< nothing can have changed since without another time
    std::string picture{};
  };
  std::unordered_map<std::string, Known> known_;
};

}  // namespace engine
