#include <gmock/gmock.h>

#include <cstdlib>
#include <set>

#include "Film.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/playback/Screen.hpp"

namespace engine::testing {
namespace {

constexpr base::PictureSize kSize{160, 90};

/// A real player, and somebody who looks at its pictures.
class Picture : public PlayerTest {
 protected:
  Picture() {
    screen.tell([this] { ++changes; });
  }
  ~Picture() override { player.reset(); }  // before what it shows on
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  Picture(Picture&&) = delete;
  Picture& operator=(Picture&&) = delete;

  /// A film of moving colours with a tone, made by the encoder's own sources.
  std::string film(const std::string& name, int seconds = 120) {
    const std::string path = folder / name;
    MakeFilm(path, "testsrc2=size=320x180:rate=25", seconds);
    return path;
  }

  void plays(const std::string& path) {
    config.untimed = false;                         // pictures have their time
    config.cardPatience = std::chrono::minutes(1);  // a driver may come from a slow disc
    player = MakePlayer(
        loop, config, told, [this](const std::string& line) { log.push_back(line); }, {}, &screen);
    player->URL(path);
    ASSERT_TRUE(until([this] { return player->playState() == player::kPlaying; }));
  }

  bool lit() {
    return until([this] { return screen.frame() && Lit(*screen.frame()) > 100; });
  }

  Screen screen;
  int changes = 0;
};

TEST_F(Picture, OfAVideoIsThereWhileItIsSeenAndMoves) {
  plays(film("film.mkv"));
  EXPECT_EQ(player->currentMedia()->imageSourceHeight(), 180);
  EXPECT_EQ(screen.frame(), nullptr) << "nobody looks";
  screen.seen(kSize);
  ASSERT_TRUE(lit());
  EXPECT_EQ(screen.frame()->size, kSize);
  EXPECT_GT(Lit(*screen.frame()), kSize.width * kSize.height / 2);
  std::set<base::FrameRef> frames;
  EXPECT_TRUE(until([&] { return frames.insert(screen.frame()).second && frames.size() >= 3; }));
  screen.seen({320, 180});
  EXPECT_TRUE(until([&] { return screen.frame() && screen.frame()->size.width == 320; }));
  screen.seen({});
  EXPECT_EQ(screen.frame(), nullptr);
  EXPECT_EQ(player->playState(), player::kPlaying);
  screen.seen(kSize);
  EXPECT_TRUE(lit()) << "seen again";
  EXPECT_THAT(log, ::testing::IsEmpty());
}

TEST_F(Picture, OfAPausedVideoIsDrawnAnewInAnotherSize) {
  plays(film("film.mkv"));
  screen.seen(kSize);
  ASSERT_TRUE(lit());
  player->controls().pause();
  ASSERT_TRUE(until([this] { return player->playState() == player::kPaused; }));
  screen.seen({320, 180});
  EXPECT_TRUE(until(
      [&] { return screen.frame() && screen.frame()->size.width == 320 && Lit(*screen.frame()) > 100; }));
}

TEST_F(Picture, OfSoundShowsThatItSounds) {
  screen.seen(kSize);
  plays(addTrack("song.wav", "Song", "Somebody", "Album", "Genre", 1, 120));
  EXPECT_EQ(player->currentMedia()->imageSourceHeight(), 0);
  EXPECT_TRUE(until([this] { return screen.frame() && Lit(*screen.frame()) > 10; }));
  player->controls().stop();
  EXPECT_EQ(screen.frame(), nullptr);
  EXPECT_THAT(log, ::testing::IsEmpty());
}

TEST_F(Picture, ACoverThatStandsStillIsNone) {
  const std::string path = folder / "covered.mp3";
  const std::string line =
      "ffmpeg -v error -y -f lavfi -i sine=440:d=20 -f lavfi -i color=red:size=64x64:d=1 -map 0 -map 1 "
      "-frames:v 1 "
      "-c:v mjpeg -disposition:v attached_pic -id3v2_version 3 '" +
      path + "' < /dev/null > /dev/null 2>&1";
  ASSERT_EQ(std::system(line.c_str()), 0);
  plays(path);
  EXPECT_EQ(player->currentMedia()->imageSourceHeight(), 0);
}

TEST_F(Picture, OfAVideoIsDrawnByWhateverTheSettingAllows) {
  for (const Graphics graphics : {Graphics::kAny, Graphics::kNone}) {
    config.graphics = graphics;
    plays(film("film.mkv"));
    screen.seen(kSize);
    EXPECT_TRUE(lit());
    EXPECT_THAT(log, ::testing::IsEmpty());
    player.reset();
    screen.seen({});
  }
}

TEST_F(Picture, EndsWithThePlayerWhileFramesAreOnTheirWay) {
  plays(film("film.mkv"));
  screen.seen(kSize);
  ASSERT_TRUE(lit());
  player.reset();
  EXPECT_EQ(screen.frame(), nullptr);
  screen.seen({320, 180});
  loop.pump();
  EXPECT_EQ(screen.frame(), nullptr);
}

}  // namespace
}  // namespace engine::testing
