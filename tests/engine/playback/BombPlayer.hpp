#pragma once
#include <functional>
#include <string>

#include "engine/common/Fixtures.hpp"
#include "support/faults/InChild.hpp"

namespace engine::testing {

/// Plays small files that say they hold very much.
class BombPlayer : public PlayerTest {
 protected:
  /// Plays a good file to its end, and then begins with what `content` makes, under that name. Answers the
  /// most memory that was taken before that.
  std::size_t begin(const std::string& name, const std::function<std::string()>& content) {
    const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
    const std::string bomb = folder / name;
    // What a process has held once hides what it comes to hold later.
    EXPECT_TRUE(support::InChild([&] { Write(bomb, content()); }));
    EXPECT_LT(fs::file_size(bomb), 700'000U);
    startWith(1);
    player->URL(good);
    player->controls().play();
    EXPECT_TRUE(untilState(player::kStopped));
    const std::size_t before = PeakMemory();
    told.states.clear();
    player->URL(bomb);
    player->controls().play();
    return before;
  }
};

}  // namespace engine::testing
