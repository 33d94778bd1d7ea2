#include "engine/scan/LibraryStore.hpp"

#include <gmock/gmock.h>

#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

FileRecord Loud(const std::string& path) {
  FileRecord record;
  record.path = path;
  record.stamp.modified = 5;
  record.tags.title = "Song";
  record.tags.loudness = {-654, Loudness::kUnknown, 9877, 65535};
  return record;
}

class LibraryIndex : public ::testing::Test {
 protected:
  std::vector<FileRecord> known() {
    return LibraryStore(folder.path(), [this](const std::string& line) { told.push_back(line); }).load();
  }
  void keep(const FileRecord& record) {
    LibraryStore(folder.path(), [this](const std::string& line) {
      told.push_back(line);
    }).apply({record}, {});
  }

  TempFolder folder;
  std::vector<std::string> told;
};

TEST_F(LibraryIndex, KnowsHowLoudTracksAre) {
  keep(Loud("/1.flac"));
  const auto records = known();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].tags, Loud("/1.flac").tags);
}

TEST_F(LibraryIndex, FromBeforeLoudnessWasKnownHasItsFilesReadAnew) {
  keep(Loud("/1.flac"));
  {
    database::Database index(folder / "library.db", "The index");
    index.run("ALTER TABLE tracks DROP COLUMN loudness");
    index.run("PRAGMA user_version=2");
  }
  const auto records = known();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].tags.title, "Song");
  EXPECT_EQ(records[0].tags.loudness, Loudness());
  EXPECT_EQ(records[0].stamp.modified, -1);
  EXPECT_TRUE(told.empty());
}

TEST_F(LibraryIndex, ThatALaterVersionHasWrittenIsKeptBeside) {
  keep(Loud("/1.flac"));
  {
    database::Database index(folder / "library.db", "The index");
    index.run("PRAGMA user_version=99");
  }
  EXPECT_THAT(known(), ::testing::IsEmpty());
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], "The library's index was written by a newer player; it was moved to " +
                         (folder / "library.db.newer") + " and is built anew");
  {
    database::Database kept(folder / "library.db.newer", "The index");
    database::Statement rows(kept, "SELECT title FROM tracks");
    ASSERT_TRUE(rows.step());
    EXPECT_EQ(rows.text(0), "Song");
  }
  keep(Loud("/2.flac"));
  EXPECT_EQ(known().size(), 1U) << "the new one serves";
}

}  // namespace
}  // namespace engine::testing
