#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>

#include "engine/queue/QueueHouse.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The file of a kept queue, and what becomes of it before the next start.
class QueueFile : public ::testing::Test {
 protected:
  /// A queue of three titles, one of them put in later; answers its file.
  std::string keep() {
    {
      QueueHouse house(root.path());
      house.play({"/a", "/c"})->insertItem(1, std::make_shared<LooseMedia>("/b", TrackTags()));
      house.pass();
    }
    return file();
  }
  [[nodiscard]] std::string file() const {
    std::string found;
    for (const auto& entry : fs::directory_iterator(root.path() / "kept")) {
      if (entry.path().extension() != ".damaged") found = entry.path().string();
    }
    return found;
  }

  support::TempFolder root;
};

TEST_F(QueueFile, CutAtAnyByteItHoldsWhatWasThereBeforeAndIsToldToNobody) {
  const std::string path = keep();
  const std::string whole = FileContent(path);
  ASSERT_GT(whole.size(), 100U);
  std::size_t before = 0;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    fs::remove_all(root.path() / "kept");
    WriteText(path, whole.substr(0, size));
    QueueHouse house(root.path());
    const std::size_t now = house.chosen ? house.sources().size() : 0;
    EXPECT_GE(now, before) << "at " << size;
    EXPECT_THAT(house.messages, IsEmpty()) << "at " << size;
    before = now;
  }
  EXPECT_EQ(before, 3U);
}

TEST_F(QueueFile, WhatIsAppendedBehindACutIsReadAgain) {
  const std::string path = keep();
  fs::resize_file(path, fs::file_size(path) - 3);
  {
    QueueHouse house(root.path());
    house.playback.queue().playlist()->appendItem(std::make_shared<LooseMedia>("/d", TrackTags()));
  }
  const QueueHouse house(root.path());
  EXPECT_EQ(house.sources().back(), "/d");
  EXPECT_THAT(house.messages, IsEmpty());
}

TEST_F(QueueFile, ABitThatFlipsIsNoticedAndNothingElseIsLost) {
  const std::string path = keep();
  const std::string whole = FileContent(path);
  std::mt19937 chance(7);
  for (int round = 0; round < 300; ++round) {
    std::string text = whole;
    const std::size_t at = chance() % text.size();
    text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^ (1U << (chance() % 8)));
    fs::remove_all(root.path() / "kept");
    WriteText(path, text);
    QueueHouse house(root.path());
    ASSERT_LE(house.messages.size(), 1U);
    const auto sources = house.sources();
    if (house.chosen && sources.size() == 3U) {
      ASSERT_THAT(sources, ElementsAre("/a", "/b", "/c"));
    } else if (house.chosen) {
      ASSERT_THAT(sources, ElementsAre("/a", "/c"));
    }
    house.play({"/new"});
    EXPECT_LE(house.messages.size(), 1U);
    const QueueHouse next(root.path());
    ASSERT_THAT(next.sources(), ElementsAre("/new")) << "bit at " << at;
  }
}

TEST_F(QueueFile, AForeignOneIsToldOnceAndMovedAside) {
  const std::string path = keep();
  WriteText(path, "something else altogether");
  {
    const QueueHouse house(root.path());
    EXPECT_FALSE(house.chosen);
    EXPECT_THAT(house.messages, ElementsAre(HasSubstr("is none that this player has written")));
    EXPECT_EQ(FileContent(path + ".damaged"), "something else altogether");
  }
  EXPECT_THAT(QueueHouse(root.path()).messages, IsEmpty());
}

TEST_F(QueueFile, OneOfALaterPlayerIsMovedAsideAndNotLost) {
  const std::string path = keep();
  std::string text = FileContent(path);
  text.replace(0, 17, "vantorix queue 9\n");
  WriteText(path, text);
  const QueueHouse house(root.path());
  EXPECT_THAT(house.messages, SizeIs(1));
  EXPECT_EQ(FileContent(path + ".damaged"), text);
}

TEST_F(QueueFile, BehindANewOneThatWasNeverWholeTheOldOneIsTakenUp) {
  const std::string path = keep();
  const std::string next = root.path() / "kept/queue.99";
  WriteText(next, FileContent(path).substr(0, 40));
  const QueueHouse house(root.path());
  EXPECT_THAT(house.sources(), ElementsAre("/a", "/b", "/c"));
  EXPECT_THAT(house.messages, IsEmpty());
}

TEST_F(QueueFile, AFullDiskIsToldOnceAndEverythingElseGoesOn) {
  bool full = false;
  const auto write = [&](int file, const void* bytes, std::size_t size) -> ssize_t {
    if (!full) return ::write(file, bytes, size);
    if (size > 5) return ::write(file, bytes, 5);  // a little room was left
    errno = ENOSPC;
    return -1;
  };
  {
    QueueHouse house(root.path(), write);
    const auto list = house.play({"/a", "/b"});
    full = true;
    for (int i = 0; i < 20; ++i) {
      list->appendItem(std::make_shared<LooseMedia>("/" + std::to_string(i), TrackTags()));
      house.playback.next();
      house.pass();
    }
    EXPECT_THAT(house.messages, ElementsAre(HasSubstr("can't be kept for the next start")));
    EXPECT_EQ(list->count(), 22);
    EXPECT_EQ(house.current(), "/18");
  }
  EXPECT_THAT(QueueHouse(root.path()).sources(), ElementsAre("/a", "/b"));
  full = false;
  {
    QueueHouse house(root.path(), write);
    house.playback.queue().playlist()->appendItem(std::make_shared<LooseMedia>("/c", TrackTags()));
    EXPECT_THAT(house.messages, IsEmpty());
  }
  EXPECT_THAT(QueueHouse(root.path()).sources(), ElementsAre("/a", "/b", "/c"));
}

TEST_F(QueueFile, OnceThereIsRoomAgainItIsKeptAsItIsThen) {
  bool full = true;
  const auto write = [&](int file, const void* bytes, std::size_t size) -> ssize_t {
    if (!full) return ::write(file, bytes, size);
    errno = ENOSPC;
    return -1;
  };
  {
    QueueHouse house(root.path(), write);
    const auto list = house.play({"/a", "/b"});
    full = false;
    list->moveItem(0, 1);
    EXPECT_THAT(house.messages, SizeIs(1));
  }
  EXPECT_THAT(QueueHouse(root.path()).sources(), ElementsAre("/b", "/a"));
}

/// A disk with room for small records and for no long list.
class QueueFileWithLittleRoom : public QueueFile {
 protected:
  files::WriteCall write() {
    return [this](int file, const void* bytes, std::size_t size) -> ssize_t {
      if (!little || size <= 1024) return ::write(file, bytes, size);
      errno = ENOSPC;
      return -1;
    };
  }
  static std::vector<std::string> album() {
    std::vector<std::string> addresses;
    for (int i = 0; i < 100; ++i) addresses.push_back("/album/" + std::to_string(i));
    return addresses;
  }

  bool little = false;
};

TEST_F(QueueFileWithLittleRoom, AQueueThatDidNotFitIsNeverMixedWithTheOneBefore) {
  for (const bool roomAgain : {false, true}) {
    little = false;
    fs::remove_all(root.path() / "kept");
    {
      QueueHouse house(root.path(), write());
      house.play({"/a", "/b", "/c", "/d", "/e"});
      house.pass();
      little = true;
      ++house.mark;
      const auto list = house.play(album());
      list->moveItem(90, 1);
      list->moveItem(1, 0);  // such places are in the queue before as well
      house.playback.next();
      house.pass();
      EXPECT_THAT(house.messages, SizeIs(1));
      if (roomAgain) {
        little = false;
        list->moveItem(0, 2);
      }
    }
    QueueHouse house(root.path());
    EXPECT_THAT(house.messages, IsEmpty());
    if (roomAgain) {
      ASSERT_EQ(house.sources().size(), 100U);
      ASSERT_EQ(house.sources()[2], "/album/90");
    } else {
      EXPECT_THAT(house.sources(), ElementsAre("/a", "/b", "/c", "/d", "/e"));
      EXPECT_EQ(house.current(), "/a");
    }
  }
}

TEST_F(QueueFile, WithoutAFolderToWriteInItIsToldOnce) {
  WriteText(root.path() / "kept", "a file where the folder should be");
  QueueHouse house(root.path());
  house.play({"/a", "/b"});
  house.playback.next();
  EXPECT_THAT(house.messages, SizeIs(1));
  EXPECT_EQ(house.current(), "/b");
}

}  // namespace
}  // namespace engine::testing
