#pragma once
#include <string>
#include <unordered_map>

namespace engine {

/// The pictures inside media files, taken out into a folder when they are first asked for.
class Pictures {
 public:
  /// `folder` is made when it is first needed. What a killed process has left half-written in it is cleared.
  explicit Pictures(std::string folder);

  /// A "file:" address of the picture inside the file, empty when there is none or it can't be kept.
  std::string urlOf(const std::string& path);

 private:
  std::string folder_;
  std::unordered_map<std::string, std::string> known_;  ///< by path and stamp
};

}  // namespace engine
