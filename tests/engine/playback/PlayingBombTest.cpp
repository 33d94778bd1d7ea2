// Small files that say they hold very much, played.

#include <gmock/gmock.h>

#include "engine/common/TagBuilder.hpp"
#include "engine/playback/BombPlayer.hpp"
#include "support/faults/InChild.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;

constexpr std::size_t kHuge = std::size_t{20} * 1024 * 1024;
constexpr std::size_t kAllowed = std::size_t{40} * 1024 * 1024;

/// A tag of some hundred KiB that holds 160 MiB of text, none of it long enough to be refused for itself.
std::string Bomb() {
  std::string frames;
  for (const char* id : {"TALB", "TIT2", "TPE1", "TPE2", "TCOM", "TCON", "TCOP", "TENC"})
    frames += PackedFrame(4, id, std::string(1, '\3') + std::string(kHuge, 'x'));
  return Id3Tag(4, frames);
}

std::string Wav(const std::string& tag) {
  const std::string sound(8820, '\0');
  const std::string parts = "fmt " + Little(16, 4) + Little(1, 2) + Little(1, 2) + Little(44100, 4) +
                            Little(88200, 4) + Little(2, 2) + Little(16, 2) + "id3 " + Little(tag.size(), 4) +
                            tag + std::string(tag.size() % 2, '\0') + "data" + Little(sound.size(), 4) +
                            sound;
  return "RIFF" + Little(parts.size() + 4, 4) + "WAVE" + parts;
}

std::string Aiff(const std::string& tag) {
  const std::string sound(8820, '\0');
  const std::string parts = "COMM" + Big(18, 4) + Big(1, 2) + Big(4410, 4) + Big(16, 2) +
                            std::string("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10) + "ID3 " + Big(tag.size(), 4) +
                            tag + std::string(tag.size() % 2, '\0') + "SSND" + Big(sound.size() + 8, 4) +
                            Big(0, 8) + sound;
  return "FORM" + Big(parts.size() + 4, 4) + "AIFF" + parts;
}

/// Silence of AAC in frames of its own.
std::string Adts(int frames) {
  std::string all;
  for (int i = 0; i < frames; ++i)
    all += std::string("\xFF\xF1\x50\x40\x01\xBF\xFC\x00\xC8\x00\x80\x23\x80", 13);
  return all;
}

/// An element of a Matroska file.
std::string Element(const std::string& id, const std::string& content) {
  return id + "\x01" + Big(content.size(), 7) + content;
}

/// Silence in blocks of which each is packed: the second becomes 120 MiB.
std::string Matroska() {
  const std::string packing =
      Element("\x62\x40", Element("\x50\x32", "\1") + Element("\x50\x33", std::string(1, '\0')) +
                              Element("\x50\x34", Element("\x42\x54", std::string(1, '\0'))));
  const std::string sound =
      Element("\xB5", Big(0x472C4400, 4)) + Element("\x9F", "\1") + Element("\x62\x64", "\x10");
  const std::string track = Element("\xD7", "\1") + Element("\x73\xC5", "\1") + Element("\x83", "\2") +
                            Element("\x86", "A_PCM/INT/LIT") + Element("\xE1", sound) +
                            Element("\x6D\x80", packing);
  const auto block = [](std::size_t bytes) {
    return Element("\xA3", std::string("\x81\0\0\x80", 4) + Packed(std::string(bytes, '\0')));
  };
  const std::string head =
      Element("\x42\x82", "matroska") + Element("\x42\x87", "\2") + Element("\x42\x85", "\2");
  const std::string info =
      Element("\x2A\xD7\xB1", Big(1'000'000, 4)) + Element("\x4D\x80", "x") + Element("\x57\x41", "x");
  return Element("\x1A\x45\xDF\xA3", head) +
         Element("\x18\x53\x80\x67",
                 Element("\x15\x49\xA9\x66", info) + Element("\x16\x54\xAE\x6B", Element("\xAE", track)) +
                     Element("\x1F\x43\xB6\x75", Element("\xE7", std::string(1, '\0')) + block(120'000) +
                                                     block(std::size_t{120} << 20U)));
}

class PlayingABomb : public BombPlayer {
 protected:
  /// Plays a good file, and then the bomb, to their ends.
  void play(const std::string& name, const std::function<std::string(const std::string& tag)>& file,
            std::size_t allowed = kAllowed) {
    const std::size_t before = begin(name, [&] { return file(Bomb()); });
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1)) << name;
    EXPECT_LT(PeakMemory() - before, allowed) << name;
  }
};

TEST_F(PlayingABomb, AtTheFrontTakesNoMoreMemoryThanAnyFile) {
  play("front.mp3", [](const std::string& tag) { return tag + MpegSilence(); });
}

TEST_F(PlayingABomb, WithAFooterTakesNoMore) {
  play("footer.mp3", [](std::string tag) {
    tag[5] = '\x10';
    return tag + "3DI" + tag.substr(3, 7) + MpegSilence();
  });
}

TEST_F(PlayingABomb, InAPartOfAWaveTakesNoMore) { play("part.wav", Wav); }
TEST_F(PlayingABomb, InAPartOfAnAiffTakesNoMore) { play("part.aiff", Aiff); }

TEST_F(PlayingABomb, BetweenFramesTakesNoMore) {
  play("between.aac", [](const std::string& tag) { return Adts(40) + tag + Adts(40); });
}

TEST_F(PlayingABomb, InAPackedBlockTakesNoMore) {
  constexpr std::size_t kUnpacking = std::size_t{60} << 20U;  // ten million bytes grow threefold, in copies
  play(
      "block.mka", [](const std::string& /*tag*/) { return Matroska(); }, kAllowed + kUnpacking);
}

/// What is spoken in a film, of which the libraries below the decoder would keep each line.
TEST_F(PlayingABomb, OfTextUnderTheNameOfMusicIsNotKept) {
  const std::string bomb = folder / "text.mp3";
  const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
  startWith(1);
  EXPECT_TRUE(support::InChild([&] {
    std::string text;
    for (int i = 0; i < 400'000; ++i) text += "1\n00:00:01,000 --> 00:00:02,000\nx\n\n";
    Write(bomb, text);
  }));
  player->URL(good);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  const std::size_t before = PeakMemory();
  player->URL(bomb);
  player->controls().play();
  ASSERT_TRUE(until([&] { return told.errors > 0; }));
  EXPECT_LT(PeakMemory() - before, kAllowed);
}

}  // namespace
}  // namespace engine::testing
