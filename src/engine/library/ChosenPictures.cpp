#include "engine/library/ChosenPictures.hpp"

#include <filesystem>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/library/PictureNames.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

std::string AsName(const std::string& text) {
  std::string name = base::LowerCase(text);
  for (char& c : name)
    if (std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos) c = '_';
  return name;
}

}  // namespace

void ChosenPictures::look() {
  std::int64_t modified = 0;
  try {
    modified = files::StampOf(folder_).modified;
  } catch (const base::Failure&) {
    byName_.clear();
    modified_ = 0;
    return;
  }
  if (settled_ && modified == modified_) return;
  modified_ = modified;
  settled_ = IsSettled(modified);
  byName_.clear();
  std::error_code problem;
  int seen = 0;
  for (fs::directory_iterator entry(folder_, problem);
       !problem && entry != fs::directory_iterator() && seen < kMostPictureEntries;
       entry.increment(problem), ++seen) {
    std::error_code ignored;
    const fs::path& path = entry->path();
    if (!IsPictureName(path.string()) || !entry->is_regular_file(ignored)) continue;
    const auto [known, fresh] = byName_.try_emplace(AsName(path.stem().string()), path.string());
    // Of two with one name the one whose ending comes first, so that the choice doesn't change by itself.
    if (!fresh && path.string() < known->second) known->second = path.string();
  }
}

std::string ChosenPictures::of(const std::string& artist, const std::string& album) {
  if (album.empty() || folder_.empty()) return {};
  look();
  if (byName_.empty()) return {};
  auto found = byName_.find(AsName(artist + " - " + album));
  if (found == byName_.end()) found = byName_.find(AsName(album));
  return found == byName_.end() ? std::string() : found->second;
}

}  // namespace engine
