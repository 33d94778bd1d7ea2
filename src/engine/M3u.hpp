#pragma once
#include <string>
#include <vector>

namespace engine {

/// A playlist file's content.
struct M3u {
  struct Entry {
    std::string location;  ///< a path or an address
    std::string title;     ///< "Artist - Title", empty if unknown
    int seconds = -1;      ///< -1 if unknown
  };
  std::string name;  ///< empty if the file does not tell
  std::vector<Entry> entries;
};

/// Reads a playlist's text. `folder` is what relative paths start from.
M3u ParseM3u(const std::string& text, const std::string& folder);
std::string FormatM3u(const M3u& list);

/// A playlist's name as a file name without ending: characters that no file name should hold are written as
/// a percent sign and two hexadecimal digits.
std::string EscapeFileName(const std::string& name);
std::string UnescapeFileName(const std::string& fileName);

}  // namespace engine
