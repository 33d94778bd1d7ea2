#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "engine/playlists/FolderHome.hpp"
#include "files/ReadFile.hpp"
#include "files/Stamp.hpp"

namespace engine {

constexpr std::int64_t kLargestPlaylist = 64LL << 20;  ///< of a file, in bytes

/// What a look around a folder of playlists has found.
struct FolderLook {
  enum class Outcome {
    kSeen,
    kAway,  ///< with its disc
    kUnreadable
  };
  struct File {
    std::string path;
    std::optional<files::FileStamp> stamp;  ///< none where it went while it was looked at
    std::optional<files::FileText> text;    ///< of one that has changed, unless it is left for the next look
    std::optional<base::Failure> failure;   ///< why it has no text
  };
  Outcome outcome = Outcome::kSeen;
  std::string why;          ///< it is unreadable
  std::vector<File> files;  ///< the playlists, by their paths; none where the folder is missing
  bool more = false;        ///< texts are left for the next look
};

/// The folder of playlists on its disc: whatever is asked may take as long as the disc likes.
class FolderOnDisc {
 public:
  /// What is known of the folder.
  struct Known {
    std::map<std::string, files::FileStamp> stamps;  ///< of the files that need not be read again
    std::vector<std::string> folders;                ///< others, into which links may lead
  };
  explicit FolderOnDisc(std::string folder) : folder_(folder), home_(std::move(folder)) {}

  /// Reads the files that have changed; no more at a time than fit into memory well.
  FolderLook look(const Known& known);
  /// As `FolderHome`.
  [[nodiscard]] bool away() const { return home_.away(); }
  void seen() { home_.seen(); }
  /// Removes what a killed process has left of the files that it was writing.
  void clearLeftovers(const std::vector<std::string>& folders) const;

 private:
  void list(FolderLook& look);
  void read(FolderLook& look, const Known& known) const;

  std::string folder_;
  FolderHome home_;
};

}  // namespace engine
