// What a station sends that says it holds very much, played.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>

#include "engine/common/Fixtures.hpp"
#include "engine/common/Mp4Builder.hpp"
#include "engine/common/SmallServer.hpp"
#include "engine/common/TagBuilder.hpp"

/// What is refused its memory is told so here, too, as it is without a sanitizer.
// NOLINTBEGIN(readability-identifier-naming): the sanitizer asks for it by this name.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
// NOLINTEND(readability-identifier-naming)

namespace engine::testing {
namespace {

class AStationsBomb : public PlayerTest {
 protected:
  static constexpr std::size_t kRoom = std::size_t{512} << 20U;
  /// What had been asked for before the title, and is filled only then.
  static constexpr std::size_t kAskedForBefore = std::size_t{128} << 20U;

  AStationsBomb() {
    config.titleMemory = std::size_t{8} << 30U;  // nobody looks in time
    config.titleRoom = kRoom;
    good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
  }

  void play(const std::string& location) {
    told.states.clear();
    player->URL(location);
    player->controls().play();
  }
  /// Plays a good file, what the station sends to its end or until it is refused, and the good one again.
  void playBetween(const std::string& address) {
    startWith(1);
    play(good);
    ASSERT_TRUE(untilState(player::kStopped));
    const std::size_t before = PeakMemory();
    play(address);
    ASSERT_TRUE(until(
        [&] { return told.errors > 0 || (!told.states.empty() && told.states.back() == player::kStopped); }));

    EXPECT_LT(PeakMemory() - before, kRoom + kAskedForBefore);
    ASSERT_TRUE(untilState(player::kStopped));
    const int errors = told.errors;
    play(good);
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kPlaying), 1);
    EXPECT_EQ(told.errors, errors);
    EXPECT_TRUE(until([&] { return limit() == unlimited; }));
  }
  static rlim_t limit() {
    rlimit limit{};
    EXPECT_EQ(::getrlimit(RLIMIT_DATA, &limit), 0);
    return limit.rlim_cur;
  }

  const rlim_t unlimited = limit();
  std::string good;
  SmallServer server;
};

TEST_F(AStationsBomb, OfManyTracksOfManySamplesTakesNoMoreThanATitleMay) {
  server.sends("/tracks.mp4", Mp4File(Movie(Tracks(10'000'000, 400))), "video/mp4");
  playBetween(server / "tracks.mp4");
}

/// What stations send as MP4, at once or in pieces.
class AStationsMp4 : public AStationsBomb {
 protected:
  /// Makes files of ten seconds of sound, and sends all of them.
  void make(const std::string& options, const std::string& name) {
    fs::create_directories(folder / "sent");
    const std::string line = "cd '" + (folder / "sent") +
                             "' && ffmpeg -v error -y -f lavfi -i sine=440:d=10 -c:a aac " + options + " " +
                             name + " < /dev/null > /dev/null 2>&1";
    ASSERT_EQ(std::system(line.c_str()), 0) << line;
    for (const auto& file : fs::directory_iterator(folder / "sent")) {
      const std::string kind =
          file.path().extension() == ".m3u8" ? "application/vnd.apple.mpegurl" : "video/mp4";
      server.sends("/" + file.path().filename().string(), Content(file.path()), kind);
    }
  }
  void playToItsEnd(const std::string& address) {
    startWith(1);
    play(address);
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kPlaying), 1);
    EXPECT_EQ(told.errors, 0);
  }
};

TEST_F(AStationsMp4, IsHeard) {
  make("", "sound.m4a");
  playToItsEnd(server / "sound.m4a");
}

TEST_F(AStationsMp4, IsHeardPieceByPiece) {
  make("-f hls -hls_time 2 -hls_list_size 0 -hls_segment_type fmp4", "list.m3u8");
  playToItsEnd(server / "list.m3u8");
}

}  // namespace
}  // namespace engine::testing
