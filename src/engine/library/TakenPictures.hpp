#pragma once
#include <cstdint>
#include <string>

namespace engine {

/// Pictures taken out of media files, each in a file of its own in one folder, by what is in it. When there
/// are too many, those go first that have not been asked for for longest.
class TakenPictures {
 public:
  static constexpr std::int64_t kMostBytes = std::int64_t{256} << 20U;

  /// The folder is made when it is first needed. What a killed process has left half-written in it is
  /// cleared.
  explicit TakenPictures(std::string folder, std::int64_t mostBytes = kMostBytes);

  /// The picture's file. Throws as `files::WriteFile`, and `std::filesystem::filesystem_error`.
  std::string keep(const std::string& picture);
  /// Whether a file that was answered is still there; it then counts as asked for now.
  static bool isThere(const std::string& path);

 private:
  /// Reads what there is, and removes what is too much but for that file.
  void makeRoom(const std::string& kept);

  std::string folder_;
  std::int64_t mostBytes_;
  std::int64_t bytes_ = -1;  ///< of all of them; not known before the folder has been read
};

}  // namespace engine
