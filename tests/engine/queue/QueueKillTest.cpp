#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "engine/queue/QueueHouse.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/KilledWhile.hpp"

namespace engine::testing {
namespace {

/// The queue after so many changes; told by their number alone, so that the process that changes it and the
/// one that looks agree without a word.
std::vector<std::string> After(int changes) {
  std::vector<std::string> items;
  for (int i = 0; i <= changes; ++i) {
    const std::string name = "/" + std::to_string(i);
    if (i % 50 == 0) {
      items = {name, name + "b", name + "c", name + "d"};
    } else if (i % 4 == 1) {
      items.insert(items.begin() + 1, name);
    } else if (i % 4 == 2) {
      std::rotate(items.begin(), items.begin() + 1, items.end());
    } else if (i % 4 == 3) {
      items.push_back(name);
    } else {
      items.erase(items.begin() + 2);
    }
  }
  return items;
}

player::MediaRef MediaAt(const std::string& address) {
  return std::make_shared<LooseMedia>(address, TrackTags());
}

void Change(QueueHouse& house, int number) {
  const std::string name = "/" + std::to_string(number);
  if (number % 50 == 0) {
    std::vector<player::MediaRef> items;
    for (const char* more : {"", "b", "c", "d"}) items.push_back(MediaAt(name + more));
    house.assign(std::make_shared<ListPlaylist>("list", std::move(items)));
    return;
  }
  player::Playlist& list = *house.playback.queue().playlist();
  switch (number % 4) {
    case 1: list.insertItem(1, MediaAt(name)); break;
    case 2: list.moveItem(0, list.count() - 1); break;
    case 3: list.appendItem(MediaAt(name)); break;
    default: list.removeItem(list.item(2)); break;
  }
}

TEST(QueueKills, TheQueueIsThereAsLastAcknowledged) {
  const support::TempFolder root;
  Change(*std::make_unique<QueueHouse>(root.path()), 0);
  int done = 0;
  int within = 0;  // kills that fell inside a change
  std::mt19937 chance(20261122);
  for (int round = 0; round < 100; ++round) {
    const int count = static_cast<int>(chance() % 90) + 1;
    const auto last = support::KilledWhile(count, [&](const support::Acknowledge& acknowledge) {
      QueueHouse house(root.path());
      for (int number = done + 1;; ++number) {
        Change(house, number);
        acknowledge(number);
      }
    });
    ASSERT_TRUE(last.has_value()) << "round " << round;
    const QueueHouse house(root.path());
    const std::vector<std::string> kept = house.sources();
    // The one change that was under way may be there or not, but only as a whole.
    const bool under = kept == After(*last + 1);
    ASSERT_TRUE(under || kept == After(*last))
        << "round " << round << ", change " << *last << ": " << ::testing::PrintToString(kept);
    EXPECT_TRUE(house.messages.empty()) << house.messages.front();
    within += under ? 1 : 0;
    done = under ? *last + 1 : *last;
  }
  EXPECT_GT(done, 100);
  RecordProperty("kills_within_a_change", within);
}

}  // namespace
}  // namespace engine::testing
