// Files that can't be read to their end, as on a disc that hangs.

#include <gmock/gmock.h>

#include <algorithm>
#include <condition_variable>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/scan/Scanner.hpp"
#include "engine/scan/TagPool.hpp"
#include "engine/tags/MediaFile.hpp"

namespace engine::testing {
namespace {

using ::testing::HasSubstr;
using Outcome = TagResult::Outcome;

/// A disc on which files whose names begin with "slow" hang until they are let go.
struct Disc {
  std::mutex mutex;
  std::condition_variable changed;
  bool hangs = true;
  int hanging = 0;  ///< that have begun to
  int over = 0;     ///< that have come to their end after all
  std::chrono::steady_clock::time_point now;

  TagResult read(FileRecord record) {
    TagResult result;
    if (record.path.find("/slow") != std::string::npos) {
      std::unique_lock lock(mutex);
      ++hanging;
      changed.notify_all();
      changed.wait(lock, [this] { return !hangs; });
    }
    result.record = std::move(record);
    result.record.tags.kind = MediaKind::kAudio;
    return result;
  }
  void end() {
    const std::lock_guard lock(mutex);
    ++over;
    changed.notify_all();
  }
  void pass(std::chrono::seconds time) {
    const std::lock_guard lock(mutex);
    now += time;
  }
};

/// The disc lives for as long as anybody reads on it.
class AHangingDisc : public ::testing::Test {
 protected:
  ~AHangingDisc() override {
    std::unique_lock lock(disc->mutex);
    disc->hangs = false;
    disc->changed.notify_all();
    disc->changed.wait_for(lock, std::chrono::seconds(60), [this] { return disc->over == disc->hanging; });
  }
  AHangingDisc() = default;
  AHangingDisc(const AHangingDisc&) = delete;
  AHangingDisc& operator=(const AHangingDisc&) = delete;
  AHangingDisc(AHangingDisc&&) = delete;
  AHangingDisc& operator=(AHangingDisc&&) = delete;

  [[nodiscard]] TagPool::Settings settings(int workers) const {
    TagPool::Settings settings;
    settings.workers = workers;
    settings.atEnd = std::chrono::milliseconds(1);
    settings.read = [held = disc](FileRecord record) {
      const bool slow = record.path.find("/slow") != std::string::npos;
      TagResult result = held->read(std::move(record));
      if (slow) held->end();
      return result;
    };
    settings.now = [held = disc] {
      const std::lock_guard lock(held->mutex);
      return held->now;
    };
    return settings;
  }
  bool untilHanging(int count) const {
    std::unique_lock lock(disc->mutex);
    return disc->changed.wait_for(lock, std::chrono::seconds(60), [&] { return disc->hanging >= count; });
  }
  static FileRecord file(const std::string& name) {
    FileRecord record;
    record.path = "/disc/" + name;
    return record;
  }

  std::shared_ptr<Disc> disc = std::make_shared<Disc>();
};

TEST_F(AHangingDisc, HoldsUpNoOtherFile) {
  TagPool pool(settings(1));
  for (const char* name : {"slow.mp3", "a.mp3", "b.mp3"}) pool.submit(file(name));
  ASSERT_TRUE(untilHanging(1));
  EXPECT_TRUE(pool.collect(std::chrono::milliseconds(0)).empty());
  disc->pass(std::chrono::seconds(21));
  std::map<std::string, TagResult> results;
  while (pool.outstanding() > 0) {
    for (TagResult& result : pool.collect(std::chrono::milliseconds(50))) {
      const std::string path = result.record.path;
      EXPECT_TRUE(results.emplace(path, std::move(result)).second) << path;
    }
  }
  EXPECT_EQ(results["/disc/slow.mp3"].outcome, Outcome::kSlow);
  EXPECT_THAT(results["/disc/slow.mp3"].complaint, HasSubstr("/disc/slow.mp3: reading it takes too long"));
  EXPECT_EQ(results["/disc/a.mp3"].outcome, Outcome::kRead);
  EXPECT_EQ(results["/disc/b.mp3"].outcome, Outcome::kRead);
}

TEST_F(AHangingDisc, KeepsNoMoreThanAFewThreads) {
  TagPool pool(settings(2));
  constexpr int kFiles = 40;
  for (int i = 0; i < kFiles; ++i)
    pool.submit(file("slow" + std::to_string(i) + ".mp3"), static_cast<std::uint64_t>(i));
  int unread = 0;
  while (pool.outstanding() > 0) {
    disc->pass(std::chrono::seconds(21));
    for (const TagResult& result : pool.collect(std::chrono::milliseconds(1)))
      unread += result.outcome == Outcome::kSlow || result.outcome == Outcome::kUnreadable ? 1 : 0;
  }
  EXPECT_EQ(unread, kFiles);
  const std::lock_guard lock(disc->mutex);
  EXPECT_LE(disc->hanging, TagPool::kMostLeft + 2);
}

TEST_F(AHangingDisc, LeavesTheFilesOfAnotherToBeRead) {
  TagPool pool(settings(2));
  constexpr int kFiles = 40;
  for (int i = 0; i < kFiles; ++i) pool.submit(file("slow" + std::to_string(i) + ".mp3"), 1);
  for (int i = 0; i < kFiles; ++i) pool.submit(file(std::to_string(i) + ".mp3"), 2);
  std::map<Outcome, int> outcomes;
  int lines = 0;
  const auto collect = [&] {
    for (const TagResult& result : pool.collect(std::chrono::milliseconds(50))) {
      ++outcomes[result.outcome];
      lines += result.complaint.empty() ? 0 : 1;
    }
  };
  for (int hanging = 2; hanging <= TagPool::kMostOnADisc; hanging += 2) {
    ASSERT_TRUE(untilHanging(hanging));
    disc->pass(std::chrono::seconds(21));
    collect();
  }
  for (int i = 0; pool.outstanding() > 0 && i < 1200; ++i) collect();
  EXPECT_EQ(outcomes[Outcome::kRead], kFiles);
  EXPECT_EQ(outcomes[Outcome::kSlow], TagPool::kMostOnADisc);
  EXPECT_EQ(outcomes[Outcome::kUnreadable], kFiles - TagPool::kMostOnADisc);
  EXPECT_EQ(lines, TagPool::kMostOnADisc + 1);
}

TEST_F(AHangingDisc, IsLeftOutByTheNextLookToo) {
  {
    TagPool first(settings(2));
    for (int i = 0; i < TagPool::kMostOnADisc; ++i)
      first.submit(file("slow" + std::to_string(i) + ".mp3"), 1);
    for (int hanging = 2; hanging <= TagPool::kMostOnADisc; hanging += 2) {
      ASSERT_TRUE(untilHanging(hanging));
      disc->pass(std::chrono::seconds(21));
      first.collect(std::chrono::milliseconds(0));
    }
  }
  // One worker, so that what is behind the hanging file waits for it where it is tried.
  TagPool next(settings(1));
  next.submit(file("a.mp3"), 2);
  next.submit(file("slow9.mp3"), 1);
  next.submit(file("b.mp3"), 2);
  std::map<std::string, Outcome> outcomes;
  for (int i = 0; next.outstanding() > 0 && i < 1200; ++i)
    for (const TagResult& each : next.collect(std::chrono::milliseconds(50)))
      outcomes.emplace(each.record.path, each.outcome);
  EXPECT_EQ(outcomes, (std::map<std::string, Outcome>{{"/disc/a.mp3", Outcome::kRead},
                                                      {"/disc/b.mp3", Outcome::kRead},
                                                      {"/disc/slow9.mp3", Outcome::kUnreadable}}));
  const std::lock_guard lock(disc->mutex);
  EXPECT_EQ(disc->hanging, TagPool::kMostOnADisc);
}

TEST_F(AHangingDisc, IsReadAgainOnceItAnswers) {
  TagPool pool(settings(2));
  constexpr int kFiles = 40;
  for (int i = 0; i < kFiles; ++i)
    pool.submit(file("slow" + std::to_string(i) + ".mp3"), static_cast<std::uint64_t>(i));
  while (pool.outstanding() > 0) {
    disc->pass(std::chrono::seconds(21));
    pool.collect(std::chrono::milliseconds(1));
  }
  {
    const std::lock_guard lock(disc->mutex);
    disc->hangs = false;
    disc->changed.notify_all();
  }
  bool read = false;
  for (int i = 0; !read && i < 1200; ++i) {
    pool.submit(file("new.mp3"), 1);
    for (int j = 0; pool.outstanding() > 0 && j < 1200; ++j) {
      for (const TagResult& result : pool.collect(std::chrono::milliseconds(50)))
        read = read || result.outcome == Outcome::kRead;
    }
  }
  EXPECT_TRUE(read);
}

TEST_F(AHangingDisc, HoldsUpNoEnd) {
  {
    TagPool pool(settings(1));
    pool.submit(file("slow.mp3"));
    ASSERT_TRUE(untilHanging(1));
  }
  const std::lock_guard lock(disc->mutex);
  EXPECT_EQ(disc->over, 0);
}

TEST_F(AHangingDisc, IsToldOnceAndNotReadAgainWhileItsFilesStayAsTheyAre) {
  const TempFolder folder;
  fs::create_directories(folder / "music");
  Write(folder / "music/slow.mp3", "x");
  Write(folder / "music/good.mp3", "x");
  std::mutex mutex;
  std::condition_variable changed;
  std::set<std::string> held;
  std::vector<std::string> messages;
  const auto has = [&](const std::string& name) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(60), [&] { return held.contains(folder / name); });
  };
  Scanner::Settings scan;
  scan.roots = {folder / "music"};
  scan.quiet = std::chrono::milliseconds(1);
  scan.reading = settings(1);
  auto store = std::make_unique<LibraryStore>(folder.path(), [](const std::string&) {});
  Scanner scanner(scan, std::move(store), {}, [&](const LibraryChange& change) {
    const std::lock_guard lock(mutex);
    for (const FileRecord& record : change.changed) held.insert(record.path);
    messages.insert(messages.end(), change.messages.begin(), change.messages.end());
    changed.notify_all();
  });
  ASSERT_TRUE(untilHanging(1));
  disc->pass(std::chrono::seconds(21));
  EXPECT_TRUE(has("music/good.mp3"));
  for (const char* name : {"music/new.mp3", "music/newer.mp3"}) {  // the folder is looked at again for each
    Write(folder / name, "x");
    EXPECT_TRUE(has(name));
  }
  const std::lock_guard lock(mutex);
  EXPECT_EQ(
      std::count_if(messages.begin(), messages.end(),
                    [](const std::string& line) { return line.find("takes too long") != std::string::npos; }),
      1);
  EXPECT_FALSE(held.contains(folder / "music/slow.mp3"));
  const std::lock_guard onDisc(disc->mutex);
  EXPECT_EQ(disc->hanging, 1);
}

/// What this process has read of files so far, in bytes.
std::uint64_t BytesRead() {
  std::uint64_t bytes = 0;
  std::ifstream numbers("/proc/self/io");
  for (std::string name; numbers >> name >> bytes;) {
    if (name == "rchar:") return bytes;
  }
  return 0;
}

TEST(AFileOfNothingButZeros, IsReadInABoundedPart) {
  const TempFolder folder;
  constexpr std::uint64_t kSize = std::uint64_t{4} << 30U;
  constexpr std::uint64_t kMost = std::uint64_t{72} << 20U;
  for (const char* name : {"a.mp3", "a.flac", "a.ogg", "a.m4a", "a.aac", "a.wav", "a.aiff", "a.wma", "a.ape",
                           "a.mpc", "a.wv", "a.tta", "a.dsf", "a.mka", "a.avi", "a.ts"}) {
    Write(folder / name, "", kSize);
    const std::uint64_t before = BytesRead();
    ASSERT_GT(before, 0U);
    tags::ReadMediaFile(folder / name);
    tags::ReadPicture(folder / name);
    EXPECT_LT(BytesRead() - before, 2 * kMost) << name;
  }
}

/// A tag that says that each of its countless parts is as large as may be copied.
TEST(AFileOfNothingButLargeParts, IsReadInABoundedPart) {
  const TempFolder folder;
  constexpr std::size_t kPart = std::size_t{15} << 20U;
  const std::string path = folder / "a.mp3";
  std::string frames;
  for (int i = 0; i < 16; ++i) frames += Frame(3, "APIC", std::string(kPart, 'x'));
  Write(path, Id3Tag(3, frames) + MpegSilence());
  const std::uint64_t before = BytesRead();
  ASSERT_GT(before, 0U);
  tags::ReadPicture(path);
  EXPECT_LT(BytesRead() - before, std::uint64_t{72} << 20U);
}

}  // namespace
}  // namespace engine::testing
