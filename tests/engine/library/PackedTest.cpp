#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "engine/common/StringPool.hpp"
#include "engine/library/TrackTable.hpp"
#include "engine/scan/KnownFiles.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(APoolOfTexts, KeepsEachOnceWhateverItsLength) {
  StringPool pool;
  std::vector<StringPool::Id> ids;
  for (const std::size_t length : {1U, 127U, 128U, 16383U, 16384U, 70000U})
    ids.push_back(pool.intern(std::string(length, 'x')));
  for (int i = 0; i < 5000; ++i) pool.intern("text " + std::to_string(i));
  EXPECT_EQ(pool.size(), 5007U);
  EXPECT_EQ(pool.intern(""), 0U);
  EXPECT_EQ(pool.view(0), "");
  EXPECT_EQ(pool.find("text 4999"), pool.intern("text 4999"));
  EXPECT_EQ(pool.view(pool.find("text 17")), "text 17");
  EXPECT_EQ(pool.find("text 5000"), 0U);
  EXPECT_EQ(pool.view(ids[3]), std::string(16383, 'x'));
  EXPECT_EQ(pool.view(ids[5]), std::string(70000, 'x'));
  EXPECT_EQ(pool.intern(std::string(128, 'x')), ids[2]);
  const std::string withZero("a\0b", 3);
  EXPECT_EQ(pool.view(pool.intern(withZero)), withZero);
}

TEST(ATableOfTracks, FindsEachByItsPathAmongMany) {
  TrackTable table;
  TrackTags tags;
  for (int i = 0; i < 3000; ++i) {
    tags.title = "Title " + std::to_string(i);
    EXPECT_TRUE(table.put("/music/" + std::to_string(i % 50) + "/" + std::to_string(i) + ".mp3", tags));
  }
  EXPECT_FALSE(table.put("/music/49/2999.mp3", tags));
  EXPECT_EQ(table.count(), 3000U);
  const auto id = table.find("/music/7/107.mp3");
  ASSERT_TRUE(id);
  EXPECT_EQ(table.text(table.row(*id).title), "Title 107");
  EXPECT_EQ(table.path(*id), "/music/7/107.mp3");
  EXPECT_FALSE(table.find("/music/8/107.mp3"));
  EXPECT_FALSE(table.find("/music/7/none.mp3"));
  EXPECT_FALSE(table.find(""));
}

class KnownFilesOfALibrary : public ::testing::Test {
 protected:
  KnownFilesOfALibrary() {
    for (const char* path :
         {"/m/a/1.mp3", "/m/a/2.mp3", "/m/a/b/3.mp3", "/m/ab/4.mp3", "/m/a!/5.mp3", "/m/6.mp3"}) {
      known.put(path, {{1, 2, 3}, 7, false});
    }
  }
  std::set<std::string> below(const std::string& folder) {
    std::set<std::string> paths;
    known.forEachBelow(
        folder, [&](const std::string& path, const KnownFiles::File& /*file*/) { paths.insert(path); });
    EXPECT_EQ(known.countBelow(folder), paths.size());
    return paths;
  }
  KnownFiles known;
};

TEST_F(KnownFilesOfALibrary, AreFoundByPathAndByFolder) {
  ASSERT_NE(known.find("/m/a/b/3.mp3"), nullptr);
  EXPECT_EQ(known.find("/m/a/b/3.mp3")->stamp, (files::FileStamp{1, 2, 3}));
  EXPECT_EQ(known.find("/m/a/3.mp3"), nullptr);
  EXPECT_THAT(below("/m/a"), ElementsAre("/m/a/1.mp3", "/m/a/2.mp3", "/m/a/b/3.mp3"));
  EXPECT_EQ(below("/m").size(), 6U);
  EXPECT_THAT(below("/m/a/1.mp3"), IsEmpty());
  EXPECT_THAT(below("/n"), IsEmpty());
}

TEST_F(KnownFilesOfALibrary, MayGoAndComeBack) {
  known.erase("/m/a/1.mp3");
  known.erase("/m/none.mp3");
  EXPECT_EQ(known.find("/m/a/1.mp3"), nullptr);
  EXPECT_THAT(below("/m/a"), ElementsAre("/m/a/2.mp3", "/m/a/b/3.mp3"));
  known.put("/m/a/1.mp3", {{4, 5, 6}, 8, true});
  EXPECT_EQ(known.find("/m/a/1.mp3")->stamp, (files::FileStamp{4, 5, 6}));
  EXPECT_EQ(below("/m/a").size(), 3U);
  std::size_t added = 0;
  known.forEach(
      [&](const std::string& /*path*/, const KnownFiles::File& file) { added += file.added ? 1 : 0; });
  EXPECT_EQ(added, 1U);
}

}  // namespace
}  // namespace engine::testing
