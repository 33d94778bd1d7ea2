#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "engine/playlists/PlaylistFolder.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/KilledWhile.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;

/// What the playlists hold after so many edits. Every state is told by the number of edits alone, so that the
/// process that edits and the one that looks agree without a word.
struct State {
  std::string name = "start";
  std::vector<std::string> items{"http://x/a", "http://x/b", "http://x/c"};
  bool second = false;

  bool operator==(const State&) const = default;
};

State After(int edits) {
  State state;
  for (int i = 1; i <= edits; ++i) {
    switch (i % 6) {
      case 0: state.items.insert(state.items.begin(), "http://x/" + std::to_string(i)); break;
      case 1: state.items.push_back("http://x/" + std::to_string(i)); break;
      case 2: std::rotate(state.items.begin(), state.items.begin() + 1, state.items.end()); break;
      case 3: state.name = "name " + std::to_string(i); break;
      case 4: state.second = !state.second; break;
      default: state.items.erase(state.items.begin()); break;
    }
  }
  return state;
}

/// The edit of that number on the playlists themselves.
void Edit(PlaylistFolder& playlists, player::Playlist& list, int number) {
  const std::int32_t last = list.count() - 1;
  switch (number % 6) {
    case 0: list.insertItem(0, playlists.media("http://x/" + std::to_string(number))); break;
    case 1: list.appendItem(playlists.media("http://x/" + std::to_string(number))); break;
    case 2: list.moveItem(0, last); break;
    case 3: list.name("name " + std::to_string(number)); break;
    case 4:
      if (const auto second = playlists.named("second")) {
        playlists.lists.remove(second);
      } else {
        playlists.lists.newPlaylist("second");
      }
      break;
    default: list.removeItem(list.item(0)); break;
  }
}

State Stored(PlaylistFolder& playlists) {
  State state;
  state.second = playlists.named("second") != nullptr;
  const auto all = playlists.lists.getAll();
  EXPECT_EQ(all->count(), state.second ? 2 : 1);
  for (std::int32_t i = 0; i < all->count(); ++i) {
    if (all->item(i)->name() == "second") continue;
    state.name = all->item(i)->name();
    state.items = Addresses(*all->item(i));
  }
  return state;
}

/// True if a file has been left there half written, or whole but not yet in its place.
bool HoldsPart(const fs::path& folder) {
  const fs::directory_iterator files(folder);
  return std::any_of(begin(files), end(files),
                     [](const auto& file) { return file.path().extension() == ".part"; });
}

TEST(PlaylistKills, AKillLosesNoEditThatWasAcknowledgedAndBreaksNoFile) {
  const support::TempFolder root;
  PlaylistFolder(root.path()).make("start", After(0).items);
  int done = 0;
  int within = 0;  // kills that fell inside an edit
  std::mt19937 chance(20261121);
  for (int round = 0; round < 100; ++round) {
    const int count = static_cast<int>(chance() % 12) + 1;
    const auto last = support::KilledWhile(count, [&](const support::Acknowledge& acknowledge) {
      PlaylistFolder playlists(root.path());
      const auto list = playlists.named(After(done).name);
      for (int number = done + 1;; ++number) {
        Edit(playlists, *list, number);
        acknowledge(number);
      }
    });
    ASSERT_TRUE(last.has_value()) << "round " << round;
    const bool leftover = HoldsPart(root.path() / "playlists");
    PlaylistFolder playlists(root.path());
    const State stored = Stored(playlists);
    // The one edit that was under way may be there or not, but only as a whole.
    const bool under = stored == After(*last + 1);
    ASSERT_TRUE(under || stored == After(*last))
        << "round " << round << ", edit " << *last << ": " << stored.name << ", "
        << ::testing::PrintToString(stored.items);
    EXPECT_TRUE(playlists.messages.empty());
    for (const auto& file : fs::directory_iterator(playlists.folder)) {
      EXPECT_EQ(file.path().extension(), ".m3u8") << file.path();
    }
    within += under || leftover ? 1 : 0;
    done = under ? *last + 1 : *last;
  }
  EXPECT_GT(done, 100);
  EXPECT_GT(within, 0);
  RecordProperty("kills_within_an_edit", within);
}

}  // namespace
}  // namespace engine::testing
