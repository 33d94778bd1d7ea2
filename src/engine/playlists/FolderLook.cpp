#include "engine/playlists/FolderLook.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "engine/playlists/PlaylistLink.hpp"
#include "files/WriteFile.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

bool IsPlaylistFile(const fs::path& path) {
  const std::string ending = base::LowerCase(path.extension().string());
  return path.filename().native().front() != '.' && (ending == ".m3u8" || ending == ".m3u");
}

}  // namespace

FolderLook FolderOnDisc::look(const Known& known) {
  FolderLook look;
  const bool away = home_.away();
  list(look);
  if (away || home_.away()) {  // the disc may come or go meanwhile
    look.outcome = FolderLook::Outcome::kAway;
    look.files.clear();
  } else if (look.outcome == FolderLook::Outcome::kSeen) {
    home_.seen();
    read(look, known);
  }
  return look;
}

void FolderOnDisc::list(FolderLook& look) {
  std::error_code failed;
  std::error_code ignored;
  for (fs::directory_iterator entry(folder_, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (!IsPlaylistFile(entry->path()) || !entry->is_regular_file(ignored)) continue;
    look.files.emplace_back();
    look.files.back().path = entry->path().string();
  }
  if (failed && failed.value() != ENOENT && failed.value() != ENOTDIR) {
    look.outcome = FolderLook::Outcome::kUnreadable;
    look.why = failed.message();
  }
  std::sort(look.files.begin(), look.files.end(),
            [](const auto& left, const auto& right) { return left.path < right.path; });
}

void FolderOnDisc::read(FolderLook& look, const Known& known) const {
  std::int64_t size = 0;
  for (FolderLook::File& file : look.files) {
    base::Attempt step;
    if (!step([&] { file.stamp = files::StampOf(file.path); })) continue;
    const auto before = known.stamps.find(file.path);
    if (before != known.stamps.end() && before->second == *file.stamp) continue;
    look.more = look.more || size >= kLargestPlaylist;
    if (look.more) continue;
    file.failure = base::Handled(
        [&]() -> std::optional<base::Failure> {
          file.text = files::ReadFile(FileBehind(file.path, folder_, known.folders), kLargestPlaylist);
          return std::nullopt;
        },
        [](const base::Failure& failure) { return std::optional(failure); });
    if (file.text) size += static_cast<std::int64_t>(file.text->text.size());
  }
}

void FolderOnDisc::clearLeftovers(const std::vector<std::string>& others) const {
  std::set<std::string> folders{folder_};
  std::error_code failed;
  for (fs::directory_iterator entry(folder_, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (!IsPlaylistFile(entry->path())) continue;
    base::Attempt step;  // a link's file is written where it lies
    step([&] {
      folders.insert(fs::path(FileBehind(entry->path().string(), folder_, others)).parent_path().string());
    });
  }
  for (const std::string& folder : folders) files::ClearLeftovers(folder);
}

}  // namespace engine
