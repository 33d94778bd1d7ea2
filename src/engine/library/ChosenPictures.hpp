#pragma once
#include <cstdint>
#include <string>
#include <unordered_map>

namespace engine {

/// The pictures that the user has chosen for albums: files of one folder that are named "Artist - Album" or
/// "Album", such as "Joni Mitchell - Blue.jpg". Case doesn't count; a character that can't stand in the name
/// of a file on every system is a "_" there.
class ChosenPictures {
 public:
  explicit ChosenPictures(std::string folder) : folder_(std::move(folder)) {}

  /// The path of the album's picture, empty without one. The folder is read again once something has come,
  /// gone or been renamed in it.
  std::string of(const std::string& artist, const std::string& album);

 private:
  void look();

  std::string folder_;
  std::int64_t modified_ = 0;
  bool settled_ = false;
  std::unordered_map<std::string, std::string> byName_;  ///< paths, by folded names without their endings
};

}  // namespace engine
