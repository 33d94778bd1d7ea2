// The music index on a disk whose operations fail one after the other.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "base/Failure.hpp"
#include "engine/scan/LibraryStore.hpp"
#include "support/faults/FailingFiles.hpp"

namespace engine {
namespace {

const std::string kLong(300, 'x');

FileRecord Song(const std::string& path, const std::string& title) {
  FileRecord record;
  record.path = path;
  record.tags.title = title;
  return record;
}

/// Titles by path.
std::map<std::string, std::string> TitlesOf(LibraryStore& store) {
  std::map<std::string, std::string> titles;
  for (const FileRecord& record : store.load()) titles[record.path] = record.tags.title;
  return titles;
}

/// Whether the player ends while the disk fails.
class IndexFaults : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Ending, IndexFaults, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "OnTheFailingDisk" : "Behind"; });

TEST_P(IndexFaults, WhereAnyOperationFailsWhatWasTakenInStandsAndNoHalfOfTheRest) {
  const int failed = support::WithEachFileFault([endsThere = GetParam()](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/index";
    std::vector<std::string> told;
    const LogLine tell = [&](const std::string& line) { told.push_back(line); };
    { LibraryStore(folder, tell).apply({Song("/0", "Before")}, {}); }
    std::map<std::string, std::string> expected{{"/0", "Before"}};
    bool onDisk = false;
    {
      std::optional<LibraryStore> store;
      run.onTheFailingDisk([&] {
        store.emplace(folder, tell);
        onDisk = told.empty();
        for (int i = 1; i < 5; ++i) {
          const std::string path = "/" + std::to_string(i);
          try {
            store->apply({Song(path, kLong), Song(path + "b", "B")}, {"/" + std::to_string(i - 1)});
            if (!onDisk) continue;
            expected.erase("/" + std::to_string(i - 1));
            expected[path] = kLong;
            expected[path + "b"] = "B";
          } catch (const base::Failure&) {  // told
          }
        }
        if (endsThere) store.reset();
      });
    }
    EXPECT_TRUE(onDisk || told.size() == 1) << told.size();
    const auto toldThere = std::exchange(told, {});
    LibraryStore next(folder, tell);
    EXPECT_EQ(TitlesOf(next), expected) << ::testing::PrintToString(toldThere);
    EXPECT_TRUE(told.empty()) << told.front();
  });
  EXPECT_GT(failed, 40);
}

TEST(NewIndexFaults, AnIndexThatIsMadeOnAFailingDiskIsMadeOrTold) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/a/index";
    std::vector<std::string> told;
    const LogLine tell = [&](const std::string& line) { told.push_back(line); };
    bool kept = false;
    run.onTheFailingDisk([&] {
      LibraryStore store(folder, tell);
      try {
        store.apply({Song("/1", "One")}, {});
        kept = told.empty();
      } catch (const base::Failure&) {  // told
      }
    });
    told.clear();
    {
      LibraryStore next(folder, tell);
      EXPECT_EQ(TitlesOf(next).size(), kept ? 1U : 0U);
      EXPECT_TRUE(told.empty()) << told.front();
      next.apply({Song("/2", "Two")}, {});
    }
    LibraryStore last(folder, tell);
    EXPECT_EQ(TitlesOf(last).count("/2"), 1U);
  });
  EXPECT_GT(failed, 20);
}

}  // namespace
}  // namespace engine
