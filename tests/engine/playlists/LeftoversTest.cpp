#include <gmock/gmock.h>

#include <filesystem>

#include "engine/library/Pictures.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;

class Leftovers : public ::testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return root.path() / name; }
  static bool cleared(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.path().filename().string().front() == '.') return false;
    }
    return true;
  }
  const support::TempFolder root;
};

TEST_F(Leftovers, AtTheStartThePicturesFolderIsCleared) {
  WriteText(path("pictures/.vantorix-0123456789abcdef.part"), "x");
  WriteText(path("pictures/kept.jpg"), "x");
  const Pictures pictures(path("pictures"), path("chosen"));
  EXPECT_TRUE(cleared(root.path() / "pictures"));
  EXPECT_TRUE(fs::exists(path("pictures/kept.jpg")));
}

TEST_F(Leftovers, AtTheStartThePlaylistFolderIsCleared) {
  const std::string target = path("elsewhere/real.m3u8");
  WriteText(target, "#PLAYLIST:Linked\n");
  WriteText(path("elsewhere/.vantorix-0123456789abcdef.part"), "x");
  WriteText(path("playlists/.vantorix-0123456789abcdef.part"), "x");
  fs::create_symlink(target, path("playlists/L.m3u8"));
  const PlaylistFolder playlists(root.path(), files::WriteBytes, {path("elsewhere")});
  EXPECT_TRUE(cleared(root.path() / "playlists"));
  EXPECT_TRUE(cleared(root.path() / "elsewhere"));
}

}  // namespace
}  // namespace engine::testing
