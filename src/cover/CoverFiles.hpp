#pragma once
#include <string>

namespace cover {

/// A picture that can be shown: the bytes of its file. Without bytes it is none.
struct Picture {
  std::string bytes{};
  [[nodiscard]] bool valid() const { return !bytes.empty(); }
};

/// What the search does with files and pictures. Paths may use backslashes. Each call throws the machine's
/// failure: 53 for a missing file, 70, 76, 57.
class CoverFiles {
 public:
  CoverFiles() = default;
  CoverFiles(const CoverFiles&) = delete;
  CoverFiles& operator=(const CoverFiles&) = delete;
  CoverFiles(CoverFiles&&) = delete;
  CoverFiles& operator=(CoverFiles&&) = delete;
  virtual ~CoverFiles() = default;

  virtual void remove(const std::string& path) = 0;
  /// Throws 75 when there is one already.
  virtual void makeFolder(const std::string& path) = 0;
  virtual void copy(const std::string& from, const std::string& to) = 0;
  /// Writes from the file's first byte on. The file is not emptied first: what an older, longer one held
  /// behind the new bytes stays.
  virtual void overwrite(const std::string& path, const std::string& bytes) = 0;
  /// Fetches what the player has handed out the address of. A download that fails leaves no file and tells
  /// nobody.
  virtual void download(const std::string& url, const std::string& path) = 0;
  /// Throws 481 for a file that is no picture, or too large a one.
  virtual Picture load(const std::string& path) = 0;
};

}  // namespace cover
