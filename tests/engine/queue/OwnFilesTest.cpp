// What the player keeps of its own is its user's alone, whatever he gives others of new files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "engine/library/TakenPictures.hpp"
#include "engine/queue/QueueJournal.hpp"
#include "engine/scan/LibraryStore.hpp"
#include "support/TempFolder.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

class OwnFiles : public ::testing::Test {
 protected:
  OwnFiles() : before_(::umask(0)) {}
  ~OwnFiles() override { ::umask(before_); }
  OwnFiles(const OwnFiles&) = delete;
  OwnFiles& operator=(const OwnFiles&) = delete;
  OwnFiles(OwnFiles&&) = delete;
  OwnFiles& operator=(OwnFiles&&) = delete;

  /// How many files and folders there are; all of them must be the user's alone.
  [[nodiscard]] int checked() const {
    int count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root.path())) {
      ++count;
      EXPECT_EQ(entry.status().permissions() & (fs::perms::group_all | fs::perms::others_all),
                fs::perms::none)
          << entry.path();
    }
    return count;
  }
  [[nodiscard]] std::string folder() const { return root.path() / "player"; }

  support::TempFolder root;

 private:
  mode_t before_;
};

TEST_F(OwnFiles, AreTheIndexAndWhatLiesBesideIt) {
  LibraryStore store(folder(), [](const std::string& line) { ADD_FAILURE() << line; });
  store.apply({FileRecord{}}, {});
  EXPECT_EQ(checked(), 4);  // the folder, the index, its log and its shared memory
}

TEST_F(OwnFiles, AreAnIndexThatWasMadeForAll) {
  fs::create_directory(folder());
  fs::permissions(folder(), fs::perms::owner_all);
  for (const char* name : {"library.db", "library.db-wal"}) std::ofstream(folder() + '/' + name).flush();
  const LibraryStore store(folder(), [](const std::string& line) { ADD_FAILURE() << line; });
  EXPECT_EQ(checked(), 4);
}

TEST_F(OwnFiles, IsTheKeptQueue) {
  QueueJournal journal(folder(), [](const std::string& line) { ADD_FAILURE() << line; });
  journal.load();
  journal.begin(KeptQueue{});
  EXPECT_EQ(checked(), 2);
}

TEST_F(OwnFiles, ArePicturesTakenOutOfMusic) {
  TakenPictures pictures(folder(), 1 << 20);
  pictures.keep("\xFF\xD8\xFF picture");
  EXPECT_EQ(checked(), 2);
}

}  // namespace
}  // namespace engine
