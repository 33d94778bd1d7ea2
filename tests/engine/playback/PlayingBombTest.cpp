// Small files that say they hold very much, played.

#include <gmock/gmock.h>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
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

class PlayingABomb : public PlayerTest {
 protected:
  /// Plays a good file, and then the bomb, to their ends.
  void play(const std::string& name, const std::function<std::string(const std::string& tag)>& file) {
    const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
    const std::string bomb = folder / name;
    // What a process has held once hides what it comes to hold later.
    EXPECT_TRUE(support::InChild([&] { Write(bomb, file(Bomb())); }));
    EXPECT_LT(fs::file_size(bomb), 700'000U);
    startWith(1);
    player->URL(good);
    player->controls().play();
    ASSERT_TRUE(untilState(player::kStopped));
    const std::size_t before = PeakMemory();
    told.states.clear();
    player->URL(bomb);
    player->controls().play();
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1)) << name;
    EXPECT_LT(PeakMemory() - before, kAllowed) << name;
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

}  // namespace
}  // namespace engine::testing
