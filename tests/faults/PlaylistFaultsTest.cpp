// Playlists on a disk whose operations fail one after the other.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>

#include "base/Failure.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "files/FolderSync.hpp"
#include "support/faults/FailingFiles.hpp"

namespace engine::testing {
namespace {

using Lists = std::map<std::string, std::vector<std::string>>;

/// What a restart finds.
Lists ListsIn(const std::string& root) {
  PlaylistFolder playlists(root);
  Lists lists;
  for (const std::string& name : playlists.names()) lists[name] = Addresses(*playlists.named(name));
  return lists;
}

using Edit = std::function<void(PlaylistFolder&, Lists&)>;

/// Each changes a playlist, and then what is known of it.
const std::vector<Edit>& Edits() {
  static const std::vector<Edit> edits{
      [](PlaylistFolder& playlists, Lists& known) {
        playlists.named("L")->appendItem(playlists.media("http://x/4"));
        known["L"].push_back("http://x/4");
      },
      [](PlaylistFolder& playlists, Lists& known) {
        playlists.lists.newPlaylist("New");
        known["New"] = {};
      },
      [](PlaylistFolder& playlists, Lists& known) {
        playlists.named("L")->moveItem(0, 1);
        std::swap(known["L"][0], known["L"][1]);
      },
      [](PlaylistFolder& playlists, Lists& known) {
        const auto list = playlists.named("Other");
        list->removeItem(list->item(0));
        known["Other"].clear();
      },
      [](PlaylistFolder& playlists, Lists& known) {
        playlists.named("Other")->name("Another");
        known.insert({"Another", known["Other"]});
        known.erase("Other");
      },
      [](PlaylistFolder& playlists, Lists& known) {
        playlists.lists.remove(playlists.named("Third"));
        known.erase("Third");
      },
  };
  return edits;
}

TEST(PlaylistFaults, WhereAnyOperationFailsAnEditIsKeptOrToldAndWhatStoodStands) {
  int failed = 0;
  int unsyncedFolders = 0;
  for (const Edit& edit : Edits()) {
    failed += support::WithEachFileFault([&](support::FaultyRun& run) {
      Lists known{{"L", {"http://x/1", "http://x/2"}}, {"Other", {"http://x/3"}}, {"Third", {"http://x/5"}}};
      PlaylistFolder playlists(run.folder());
      for (const auto& [name, addresses] : known) playlists.make(name, addresses);
      playlists.names();
      int unsynced = 0;
      run.onTheFailingDisk([&] {
        const files::UnsyncedFolders watch([&](const base::Failure&) { ++unsynced; });
        try {
          edit(playlists, known);
        } catch (const base::Failure&) {  // told
        }
      });
      if (run.failed() == "sync " + playlists.folder) {
        EXPECT_GT(unsynced, 0);
        ++unsyncedFolders;
      }
      EXPECT_EQ(ListsIn(run.folder()), known);
      Lists now;
      for (const std::string& name : playlists.names()) now[name] = Addresses(*playlists.named(name));
      EXPECT_EQ(now, known);
      for (const auto& file : std::filesystem::directory_iterator(playlists.folder))
        EXPECT_EQ(file.path().extension(), ".m3u8") << "left lying about";
      playlists.make("After", {"http://x/9"});
      known["After"] = {"http://x/9"};
      EXPECT_EQ(ListsIn(run.folder()), known);
    });
  }
  EXPECT_GT(failed, 40);
  EXPECT_GT(unsyncedFolders, 0);
}

}  // namespace
}  // namespace engine::testing
