// Small MP4 files that say they hold very much, played.

#include <gtest/gtest.h>

#include <cstdlib>

#include "engine/common/Mp4Builder.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/playback/BombPlayer.hpp"

namespace engine::testing {
namespace {

constexpr std::uint32_t kVeryMany = 10'000'000;

std::string Repeated(int times, const std::string& part) {
  std::string all;
  for (int i = 0; i < times; ++i) all += part;
  return all;
}

/// A film that has its samples in fragments.
std::string InFragments(const std::string& others = {}) {
  const std::string lists = FullBox("stts", Big(0, 4)) + FullBox("stsc", Big(0, 4)) + Sizes(0, 0) + Chunks(0);
  const std::string track = FullBox("trex", Big(1, 4) + Big(1, 4) + std::string(12, '\0'));
  return Movie(Mp4Track(1, lists) + others + Box("mvex", track));
}

class PlayingAnMp4 : public BombPlayer {
 protected:
  static constexpr std::size_t kAllowed = std::size_t{300} << 20U;

  /// Plays a good file, and then the bomb, to its end or until it is refused.
  void play(const std::string& name, const std::function<std::string()>& file) {
    const std::size_t before = begin(name, file);
    const auto ended = [&] {
      return told.errors > 0 || (!told.states.empty() && told.states.back() == player::kStopped);
    };
    ASSERT_TRUE(until(ended)) << name;
    const std::size_t taken = PeakMemory() - before;
    RecordProperty("megabytes", static_cast<int>(taken >> 20U));
    EXPECT_LT(taken, kAllowed) << name;
  }
};

TEST_F(PlayingAnMp4, OfManyTracksOfManySamplesTakesNoMoreThanABookDoes) {
  play("tracks.mp4", [] { return Mp4File(Movie(Tracks(kVeryMany, 400))); });
}

TEST_F(PlayingAnMp4, OfManySmallSamplesTakesNoMore) {
  play("small.mp4", [] { return Mp4File(Movie(Tracks(kVeryMany, 4))); });
}

TEST_F(PlayingAnMp4, OfFragmentsOfManySamplesTakesNoMore) {
  play("fragments.mp4", [] {
    return Mp4File(InFragments() +
                   Repeated(8, Fragment(SampleRun(kVeryMany / 8)) + Box("mdat", std::string(400, '\0'))));
  });
}

TEST_F(PlayingAnMp4, ThatIsPackedTakesNoMore) {
  play("packed.mp4", [] {
    const std::string movie = Movie(Tracks(kVeryMany, 400));
    return Mp4File(
        Box("moov", Box("cmov", Box("dcom", "zlib") + Box("cmvd", Big(movie.size(), 4) + Packed(movie)))));
  });
}

TEST_F(PlayingAnMp4, ThatBeginsLikeAnotherFormTakesNoMore) {
  play("other.mp4", [] { return "OggS" + Movie(Tracks(kVeryMany, 400)).substr(4); });
}

TEST_F(PlayingAnMp4, WhoseChunksHoldVeryMuchTakesNoMore) {
  play("chunks.mp4", [] {
    std::string tracks;
    for (std::uint32_t id = 1; id <= 8; ++id)
      tracks += Mp4Track(id, Times(kVeryMany, 1) + Spread(0x7FFFFFFF) + Sizes(4, kVeryMany) + Chunks(4));
    return Mp4File(Movie(tracks));
  });
}

TEST_F(PlayingAnMp4, WhoseListsReadEachOtherTakesNoMore) {
  play("lists.mp4", [] {
    const std::string list = FullBox("stss", Big(140'000, 4)) + Sizes(400, 1);
    return Mp4File(Movie(Repeated(900, Box("trak", list)))) + std::string(570'000, '\0');
  });
}

TEST_F(PlayingAnMp4, OfManyTracksInManyFragmentsTakesNoMore) {
  play("both.mp4", [] {
    std::string tracks;
    for (std::uint32_t id = 2; id < 900; ++id)
      tracks += Box("trak", FullBox("tkhd", std::string(8, '\0') + Big(id, 4) + std::string(68, '\0')));
    return Mp4File(InFragments(tracks) + Repeated(50'000, Box("moof", {})));
  });
}

TEST_F(PlayingAnMp4, OfManyLockedSamplesTakesNoMore) {
  play("locked.mp4", [] {
    const std::string lock = FullBox("tenc", std::string(24, '\0')) + FullBox("senc", Big(5'000'000, 4));
    return Mp4File(Movie(Box("trak", lock)));
  });
}

TEST_F(PlayingAnMp4, OfManyChaptersTakesNoMore) {
  play("chapters.mp4", [] {
    const auto lists = [](std::uint32_t chunks) {
      return Times(chunks * 6000, 20) + Spread(6000) + Sizes(80, chunks * 6000) + Chunks(chunks, 4096);
    };
    const std::string sound = Mp4Track(1, lists(1), Box("tref", Box("chap", Big(2, 4))));
    return Mp4File(Movie(sound + Mp4Track(2, lists(300)))) + std::string(500'000, '\0');
  });
}

class AnHonestMp4 : public PlayerTest {
 protected:
  /// What is heard of a tone of 24 seconds that another program has put into a file.
  demo::Sound heard(const std::string& name, const std::string& options) {
    const std::string path = folder / name;
    demo::WriteSound(folder / "tone.wav", tone, demo::FileFormat::kWav);
    const std::string line = "ffmpeg -v error -y -i '" + (folder / "tone.wav") + "' " + options + " '" +
                             path + "' < /dev/null > /dev/null 2>&1";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    config.audioOutput = "pcm:" + (folder / "heard.wav");
    start();
    player->settings().volume(100);
    player->URL(path);
    player->controls().play();
    EXPECT_TRUE(untilState(player::kStopped));
    player.reset();
    return demo::ReadSound(folder / "heard.wav");
  }

  demo::Sound tone = demo::Tone(441, 24);
};

/// There are more numbers in it than the decoder is told.
class AnUnpackedMp4 : public AnHonestMp4, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(AnUnpackedMp4, IsHeardToItsEnd) {
  tone.samples.resize(GetParam());
  const demo::Sound sound = heard("plain.mov", "-c:a pcm_s16le");
  ASSERT_EQ(sound.samples.size(), tone.samples.size());
  for (std::size_t i = 0; i < sound.samples.size(); i += 97)
    ASSERT_NEAR(sound.samples[i], tone.samples[i], 0.001) << i;
}

/// Read as it is; told smaller; and so with an end that a time for silence may have.
INSTANTIATE_TEST_SUITE_P(Of, AnUnpackedMp4, ::testing::Values(573'300, 1'058'400, 0x1024FF));

TEST_F(AnHonestMp4, OfSoundThatIsHardlyPackedIsHeardToItsEnd) {
  EXPECT_NEAR(static_cast<double>(heard("ima.mov", "-c:a adpcm_ima_qt").samples.size()),
              static_cast<double>(tone.samples.size()), 64);
}

TEST_F(AnHonestMp4, IsHeardWithoutWhatItsEncoderPutBefore) {
  EXPECT_NEAR(static_cast<double>(heard("packed.m4a", "-c:a aac").samples.size()),
              static_cast<double>(tone.samples.size()), 1024);
}

TEST_F(AnHonestMp4, OfFragmentsIsHeardToItsEnd) {
  EXPECT_NEAR(static_cast<double>(
                  heard("fragments.m4a", "-c:a aac -movflags frag_keyframe+empty_moov -frag_duration 500000")
                      .samples.size()),
              static_cast<double>(tone.samples.size()), 2048);
}

}  // namespace
}  // namespace engine::testing
