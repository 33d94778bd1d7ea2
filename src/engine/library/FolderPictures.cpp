#include "engine/library/FolderPictures.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/library/PictureNames.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 7> kNames{"cover",    "folder",        "front", "album",
                                                 "albumart", "albumartlarge", "thumb"};
/// As other players name the large one, with an id of their own in between.
constexpr std::string_view kForeignHead = "albumart_";
constexpr std::string_view kForeignEnd = "_large";
constexpr std::size_t kForeign = kNames.size();
constexpr std::size_t kNone = kForeign + 1;
constexpr std::size_t kMostFolders = 10'000;  ///< kept in memory

/// The lower, the better; `kNone` for one that is no album's picture.
std::size_t RankOf(const fs::path& file) {
  if (!IsPictureName(file.string())) return kNone;
  const std::string stem = base::LowerCase(file.stem().string());
  if (stem.starts_with(kForeignHead) && stem.ends_with(kForeignEnd)) return kForeign;
  const auto* const name = std::find(kNames.begin(), kNames.end(), stem);
  return name == kNames.end() ? kNone : static_cast<std::size_t>(name - kNames.begin());
}

std::string Best(const std::string& folder) {
  std::string best;
  std::size_t rank = kNone;
  std::error_code problem;
  int seen = 0;
  for (fs::directory_iterator entry(folder, problem);
       !problem && entry != fs::directory_iterator() && seen < kMostPictureEntries;
       entry.increment(problem), ++seen) {
    const std::size_t own = RankOf(entry->path());
    std::error_code ignored;
    // Of two of the same name the one whose ending comes first, so that the choice doesn't change by itself.
    if (own > rank || own == kNone || (own == rank && entry->path().string() > best)) continue;
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
    place->second = {modified, IsSettled(modified), Best(folder)};
  }
  return place->second.picture;
}

}  // namespace engine
