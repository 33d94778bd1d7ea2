// Small files, or files that take little place on the disc, that say they hold very much.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "database/Database.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/tags/MediaFile.hpp"
#include "engine/tags/TagFields.hpp"
#include "support/faults/InChild.hpp"

namespace engine::testing {
namespace {

using ::testing::HasSubstr;

constexpr std::size_t kHuge = std::size_t{150} * 1024 * 1024;
constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;
constexpr std::size_t kAllowed = std::size_t{40} * 1024 * 1024;  // what reading one file may cost at most

class ABomb : public ::testing::Test {
 protected:
  /// The file as it is made by `make`, in a process of its own: what this one has held once would hide what
  /// it comes to hold by reading.
  template <typename Make>
  std::string made(const std::string& name, const Make& make, std::uint64_t size = 0) {
    const std::string path = folder / name;
    EXPECT_TRUE(support::InChild([&] {
      Write(path, make(), size);
      return true;
    }));
    return path;
  }

  static tags::MediaFile read(const std::string& path) {
    const std::size_t before = PeakMemory();
    tags::MediaFile file = tags::ReadMediaFile(path);
    EXPECT_LT(PeakMemory() - before, kAllowed) << path;
    return file;
  }

  static std::string pictureIn(const std::string& path) {
    const std::size_t before = PeakMemory();
    std::string found = tags::ReadPicture(path);
    EXPECT_LT(PeakMemory() - before, 3 * kAllowed) << path;
    return found;
  }

  TempFolder folder;
};

TEST_F(ABomb, OfAPackedFrameIsCutWhereNamesEnd) {
  for (const int version : {3, 4}) {
    const std::string path = made("album.mp3", [=] {
      return Id3Tag(version, PackedFrame(version, "TALB", std::string(1, '\3') + std::string(kHuge, 'x')) +
                                 Frame(version, "TIT2", std::string(1, '\3') + "Song")) +
             MpegSilence();
    });
    EXPECT_LT(fs::file_size(path), 200'000U);
    const tags::MediaFile file = read(path);
    EXPECT_EQ(file.tags.album, std::string(tags::TagFields::kLongest, 'x'));
    EXPECT_EQ(file.tags.title, "Song");
    EXPECT_TRUE(file.cut);
    EXPECT_TRUE(file.music);
  }
}

TEST_F(ABomb, OfWideCharactersIsCutBetweenThem) {
  const std::string path = made("title.mp3", [] {
    std::string text("\1\xFF\xFE", 3);
    for (std::size_t i = 0; i < kHuge / 32; ++i) text += std::string("\x3D\xD8\x00\xDE", 4);
    return Id3Tag(3, PackedFrame(3, "TIT2", text)) + MpegSilence();
  });
  const std::string title = read(path).tags.title;
  EXPECT_EQ(title.size(), tags::TagFields::kLongest / 4 * 4);
  EXPECT_EQ(title.substr(title.size() - 4), "\xF0\x9F\x98\x80");
}

TEST_F(ABomb, WithinABombOpensOnlyTheFirst) {
  const std::string path = made("twice.mp3", [] {
    return Id3Tag(4, PackedFrame(4, "TIT2", "\3" + Packed(std::string(kHuge, 'x')))) + MpegSilence();
  });
  EXPECT_LE(read(path).tags.title.size(), tags::TagFields::kLongest);
}

TEST_F(ABomb, OfAPackedPictureIsNoPictureAboveItsBound) {
  for (const int version : {3, 4}) {
    const std::string path = made("cover.mp3", [=] {
      return Id3Tag(version, PackedFrame(version, "APIC",
                                         std::string("\0image/png\0\3\0", 13) + std::string(kHuge, 'p'))) +
             MpegSilence();
    });
    EXPECT_LE(pictureIn(path).size(), std::size_t{16} * 1024 * 1024);
    EXPECT_TRUE(read(path).music);
  }
}

TEST_F(ABomb, OfLongPlainFramesIsCut) {
  const std::string path = made("plain.mp3", [] {
    const std::string text(std::size_t{200} * 1024 * 1024, 'y');
    return Id3Tag(4, Frame(4, "TPE1", std::string(1, '\0') + text)) + MpegSilence();
  });
  EXPECT_EQ(read(path).tags.artist, std::string(tags::TagFields::kLongest, 'y'));
}

TEST_F(ABomb, OfHugeAtomsIsCut) {
  // The sizes say gigabytes, and the file is as long as they say.
  const auto atom = [](const std::string& type) {
    std::string bytes = Mp4With(type, "Name");
    const auto grow = [&](const std::string& box) {
      const std::size_t at = bytes.rfind(box) - 4;
      bytes.replace(at, 4, Big(0xC0000000U, 4));
    };
    for (const char* box : {"moov", "udta", "meta", "ilst", "data"}) grow(box);
    grow(type);
    return bytes;
  };
  const std::string path = made(
      "a.m4a", [&] { return atom("\xA9nam"); }, 3 * kGigabyte);
  EXPECT_EQ(read(path).tags.title, "Name");
  const std::string covered = made(
      "b.m4a", [&] { return atom("covr"); }, 3 * kGigabyte);
  EXPECT_EQ(pictureIn(covered), "");
  EXPECT_TRUE(read(covered).music);
}

TEST_F(ABomb, OfHugeCommentsIsCut) {
  std::string title = "TITLE=";
  title.append(15'000'000, 'z');
  const std::string path = made("a.flac", [&] { return FlacWith(Comments(title)); });
  const tags::MediaFile file = read(path);
  EXPECT_EQ(file.tags.title, std::string(tags::TagFields::kLongest, 'z'));
  EXPECT_EQ(file.tags.artist, "Ann");

  const std::string lying = made(
      "b.flac",
      [] { return FlacWith(Little(0, 4) + Little(0xFFFFFFFF, 4) + Little(0xFFFFFFFF, 4) + "TITLE=Song"); },
      4 * kGigabyte);
  EXPECT_LE(read(lying).tags.title.size(), tags::TagFields::kLongest);
}

TEST_F(ABomb, OfAHugeItemBehindTheMusicIsCut) {
  // APE's items: as long as the file says they are, and nearly nothing of it on the disc.
  const std::uint64_t size = 2 * kGigabyte;
  const std::string path = made(
      "a.mp3", [] { return MpegSilence(); }, size);
  const std::string head = Little(size - 100'000, 4) + Little(0, 4) + "Title" + Big(0, 1) + "Long";
  const std::string tail = "APETAGEX" + Little(2000, 4) + Little(head.size() + size - 100'004 + 32, 4) +
                           Little(1, 4) + Little(0, 4) + Little(0, 8);
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(size - tail.size()));
  file << tail;
  file.seekp(static_cast<std::streamoff>(size - 32 - (head.size() + size - 100'004)));
  file << head;
  file.close();
  EXPECT_EQ(read(path).tags.title, "Long");
}

TEST_F(ABomb, OfCountlessSmallPartsEndsSoon) {
  // A gigabyte of boxes without content: read to its end it would take its reader very long.
  const std::string boxes = made("boxes.mp4", [] {
    std::string bytes = Box("ftyp", "mp42");
    for (int i = 0; i < 2'000'000; ++i) bytes += Box("free", "");
    return bytes;
  });
  EXPECT_TRUE(read(boxes).music);
  const std::string frames = made("frames.mp3", [] {
    std::string all;
    for (int i = 0; i < 2'000'000; ++i) all += Frame(4, "TXXX", "");
    return Id3Tag(4, all) + MpegSilence();
  });
  EXPECT_TRUE(read(frames).music);
}

class ALibraryWithBombs : public PlayerTest {};

TEST_F(ALibraryWithBombs, FromBeforeNamesWereBoundReadsThemAnew) {
  Write(music("film.mp4"), Mp4With("\xA9nam", "Moving"));
  Write(music("song.flac"), FlacWith(Comments("TITLE=Song")));
  startWith(2);
  EXPECT_THAT(Names(*player->mediaCollection().getAll()), ::testing::UnorderedElementsAre("Moving", "Song"));
  player.reset();
  {
    database::Database index(config.dataFolder + "/library.db", "The index");
    index.run("UPDATE tracks SET title = 'film' WHERE kind = 2");
    index.run("UPDATE tracks SET title = printf('%.*c', 100000, 'x') WHERE kind = 1");
    index.run("ALTER TABLE tracks DROP COLUMN loudness");
    index.run("PRAGMA user_version=1");
  }
  start();
  EXPECT_THAT(Names(*player->mediaCollection().getAll()),
              ::testing::UnorderedElementsAre("film", std::string(1024, 'x')));
  EXPECT_TRUE(until([&] {
    const auto names = Names(*player->mediaCollection().getAll());
    return std::is_permutation(names.begin(), names.end(),
                               std::vector<std::string>{"Moving", "Song"}.begin());
  }));
}

TEST_F(ALibraryWithBombs, KeepsShortNamesAndTellsOfEachOnce) {
  EXPECT_TRUE(support::InChild([&] {
    Write(music("bomb.mp3"),
          Id3Tag(3, PackedFrame(3, "TALB", std::string(1, '\3') + std::string(kHuge, 'x')) +
                        Frame(3, "TIT2", std::string(1, '\3') + "Song")) +
              MpegSilence());
    return true;
  }));
  const std::size_t before = PeakMemory();
  startWith(1);
  EXPECT_LT(PeakMemory() - before, 2 * kAllowed);
  EXPECT_EQ(player->mediaCollection().getAll()->item(0)->getItemInfo("Album").size(),
            tags::TagFields::kLongest);
  ASSERT_TRUE(until([&] { return !log.empty(); }));
  player.reset();
  startWith(1);
  EXPECT_THAT(log, ::testing::ElementsAre(HasSubstr("bomb.mp3: a name in it is too long and was cut")));
}

}  // namespace
}  // namespace engine::testing
