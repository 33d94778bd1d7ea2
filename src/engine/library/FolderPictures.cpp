#include "engine/library/FolderPictures.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> kNames{"cover", "folder",   "front",
                                                 "album", "albumart", "albumartlarge"};
constexpr std::array<std::string_view, 4> kEndings{".jpg", ".jpeg", ".png", ".webp"};
/// A folder with more entries than that holds no album.
constexpr int kMostEntries = 10'000;
constexpr std::size_t kMostFolders = 10'000;   ///< kept in memory
constexpr std::int64_t kTick = 2'000'000'000;  ///< nanoseconds: the coarsest clock that a file system has

/// The lower, the better; the number of names for one that is no album's picture.
std::size_t RankOf(const fs::path& file) {
  const std::string ending = base::LowerCase(file.extension().string());
  if (std::find(kEndings.begin(), kEndings.end(), ending) == kEndings.end()) return kNames.size();
  const auto name = std::find(kNames.begin(), kNames.end(), base::LowerCase(file.stem().string()));
  return static_cast<std::size_t>(name - kNames.begin());
}

std::string Best(const std::string& folder) {
  std::string best;
  std::size_t rank = kNames.size();
  std::error_code problem;
  int seen = 0;
  for (fs::directory_iterator entry(folder, problem);
       !problem && entry != fs::directory_iterator() && seen < kMostEntries;
       entry.increment(problem), ++seen) {
    const std::size_t own = RankOf(entry->path());
    std::error_code ignored;
    // Of two of the same name the one whose ending comes first, so that the choice doesn't change by itself.
    if (own > rank || own == kNames.size() || (own == rank && entry->path().string() > best)) continue;
    if (!entry->is_regular_file(ignored)) continue;
    best = entry->path().string();
    rank = own;
  }
  return best;
}

}  // namespace

std::string FolderPictures::in(const std::string& folder) {
  std::int64_t modified = 0;
  try {
    modified = files::StampOf(folder).modified;
  } catch (const base::Failure&) {
    return {};
  }
  if (known_.size() >= kMostFolders) known_.clear();
  const auto [place, fresh] = known_.try_emplace(folder);
  if (fresh || place->second.modified != modified || !place->second.settled) {
    // What happens within one tick of the file system's clock leaves the same time behind.
    const std::int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count();
    place->second = {modified, now - modified > kTick, Best(folder)};
  }
  return place->second.picture;
}

}  // namespace engine
