#include <gmock/gmock.h>

#include <random>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/tags/MediaFile.hpp"

namespace engine::testing {
namespace {

/// Heads of all kinds of files, as small as they can be.
std::vector<std::pair<std::string, std::string>> Seeds() {
  const std::string ogg = "OggS" + std::string(2, '\2') + std::string(20, '\0') + Big(1, 1) + Big(30, 1) +
                          "\x01vorbis" + std::string(23, '\1');
  const std::string comments = Comments("TITLE=Song");
  const std::string page = "OggS" + std::string(2, '\0') + std::string(20, '\0') + Big(1, 1) +
                           Big(7 + comments.size(), 1) + "\x03vorbis" + comments;
  const std::string wave = "RIFF" + Little(100, 4) + "WAVEfmt " + Little(16, 4) + Little(1, 2) +
                           Little(1, 2) + Little(44100, 4) + Little(88200, 4) + Little(2, 2) + Little(16, 2) +
                           "LIST" + Little(16, 4) + "INFOINAM" + Little(4, 4) + "Song" + "data" +
                           Little(100, 4);
  const std::string matroska = Big(0x1A45DFA3, 4) + Big(0x80, 1) + Big(0x18538067, 4) +
                               Big(0x01FFFFFFFFFFFFFF, 8) + Big(0x1549A966, 4) + Big(0x87, 1) +
                               Big(0x7BA9, 2) + Big(0x84, 1) + "Song" + Big(0x1254C367, 4) + Big(0x90, 1) +
                               Big(0x7373, 2) + Big(0x8D, 1) + Big(0x67C8, 2) + Big(0x8A, 1) +
                               Big(0x45A3, 2) + Big(0x82, 1) + "ab" + Big(0x4487, 2) + Big(0x81, 1) + "x";
  return {{"a.mp3", Id3Tag(3, Frame(3, "TIT2", "\3Song") + PackedFrame(3, "TALB", "\3Blue")) + MpegSilence()},
          {"b.mp3",
           Id3Tag(4, Frame(4, "TIT2", "\3Song") + PackedFrame(4, "APIC", std::string("\0png\0\3\0x", 8))) +
               MpegSilence()},
          {"a.flac", FlacWith(comments)},
          {"a.ogg", ogg + page},
          {"a.m4a", Mp4With("\xA9nam", "Song")},
          {"a.mkv", matroska},
          {"a.wav", wave},
          {"a.dsf", "DSD " + Little(28, 8) + Little(120, 8) + Little(80, 8) + "fmt " + std::string(48, '\1') +
                        Id3Tag(3, "")},
          {"a.mpc", "MPCKSH" + std::string(20, '\3')},
          {"a.ape", "MAC " + Little(3990, 2) + Big(0, 2) + Little(52, 4) + std::string(80, '\2')},
          {"a.wma", std::string("\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16) +
                        Little(200, 8) + Little(3, 4) + Little(0, 2) +
                        std::string("\x40\xA4\xD0\xD2\x07\xE3\xD2\x11\x97\xF0\x00\xA0\xC9\x5E\xA8\x50", 16) +
                        Little(80, 8) + Little(9, 2) + std::string(60, '\2')}};
}

TEST(FilesWithAnyBytesChanged, AreReadWithoutHarm) {
  const TempFolder folder;
  std::mt19937 random(20);
  const auto below = [&](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
  };
  std::size_t longest = 0;
  for (const auto& [name, seed] : Seeds()) {
    for (int round = 0; round < 120; ++round) {
      std::string bytes = seed;
      for (std::size_t change = below(6); change-- > 0 && !bytes.empty();) {
        const std::size_t at = below(std::min<std::size_t>(bytes.size(), 300));
        switch (below(4)) {
          case 0: bytes[at] = static_cast<char>(below(256)); break;
          case 1: bytes[at] = '\xFF'; break;
          case 2: bytes.resize(at); break;
          default: bytes.insert(at, bytes.substr(below(bytes.size()), below(40)));
        }
      }
      Write(folder / name, bytes);
      const tags::MediaFile file = tags::ReadMediaFile(folder / name);
      longest = std::max(longest, file.tags.title.size());
      EXPECT_LE(tags::ReadPicture(folder / name).size(), bytes.size() + 100'000);
    }
  }
  EXPECT_GT(longest, 0U);
  EXPECT_LE(longest, 4096U);
}

TEST(FilesCutShort, TellWhatIsThere) {
  const TempFolder folder;
  for (const auto& [name, seed] : Seeds()) {
    for (std::size_t size = 0; size <= std::min<std::size_t>(seed.size(), 260); ++size) {
      Write(folder / name, seed.substr(0, size));
      EXPECT_LE(tags::ReadMediaFile(folder / name).tags.title.size(), seed.size()) << name << " " << size;
    }
  }
}

}  // namespace
}  // namespace engine::testing
