#include "demo/DemoLibrary.hpp"

#include <filesystem>
#include <system_error>

#include "base/Failure.hpp"
#include "demo/Cover.hpp"
#include "demo/Piece.hpp"
#include "demo/Tags.hpp"
#include "files/WriteFile.hpp"

namespace engine::demo {
namespace {

namespace fs = std::filesystem;

/// A folder that is removed again unless it was put in its place.
class Unfinished {
 public:
  explicit Unfinished(fs::path path) : path_(std::move(path)) {
    fs::remove_all(path_);  // of an attempt that was killed
    fs::create_directories(path_);
  }
  ~Unfinished() {
    std::error_code ignored;
    if (!placed_) fs::remove_all(path_, ignored);
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;
  Unfinished(Unfinished&&) = delete;
  Unfinished& operator=(Unfinished&&) = delete;

  [[nodiscard]] const fs::path& path() const { return path_; }
  void putInPlace(const fs::path& place) {
    fs::rename(path_, place);
    placed_ = true;
  }

 private:
  fs::path path_;
  bool placed_ = false;
};

void Make(const fs::path& folder, const Piece& piece) {
  const fs::path path = folder / piece.file;
  fs::create_directories(path.parent_path());
  WriteSound(path.string(), Render(piece), piece.format);
  WriteTags(path.string(), piece.tags,
            piece.cover != 0 ? CoverPng(static_cast<std::uint32_t>(piece.cover)) : "");
}

/// A playlist to wake up with: how each album begins.
void MakePlaylist(const fs::path& folder, const std::vector<Piece>& pieces) {
  fs::create_directories(folder);
  std::string text = "#EXTM3U\n";
  for (const Piece& piece : pieces) {
    if (piece.tags.track != 1) continue;
    text += "#EXTINF:" + std::to_string(piece.seconds) + "," + piece.tags.artist + " - " + piece.tags.title;
    text += "\n../" + piece.file + "\n";
  }
  files::WriteFile((folder / "Good Morning.m3u8").string(), text);
}

}  // namespace

bool MakeDemoLibrary(const std::string& folder, const std::function<void(const std::string&)>& told,
                     const std::vector<Piece>& pieces) {
  try {
    fs::path place = fs::absolute(folder).lexically_normal();
    if (!place.has_filename()) place = place.parent_path();
    if (fs::exists(place)) {
      told(place.string() + " exists already; nothing is made");
      return false;
    }
    // Hidden, so that a player watching the folder above does not look into it.
    std::string hidden = ".";
    hidden += place.filename().string();
    Unfinished made(place.parent_path() / (hidden + ".part"));
    for (const Piece& piece : pieces) {
      told(piece.file + ": " + piece.tags.artist + ", " + piece.tags.title);
      Make(made.path(), piece);
    }
    MakePlaylist(made.path() / "Playlists", pieces);
    made.putInPlace(place);
    told("The demonstration library is in " + place.string());
    return true;
  } catch (const fs::filesystem_error& failure) {
    const bool refused =
        failure.code() == std::errc::permission_denied || failure.code() == std::errc::read_only_file_system;
    throw base::Failure(refused ? base::number::kPermissionDenied : base::number::kDeviceIo, failure.what());
  }
}

}  // namespace engine::demo
