// What a playlist takes from its file that others have written.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/library/Media.hpp"
#include "engine/playlists/StoredPlaylist.hpp"

namespace engine::testing {
namespace {

/// Nothing is asked of it.
class NoKeeper : public PlaylistKeeper {
 public:
  M3uText open(StoredPlaylist&) override { return M3uText(); }
  void save(StoredPlaylist&, const M3uText&) override {}
  [[nodiscard]] bool holds(const StoredPlaylist&) const override { return true; }
  [[nodiscard]] player::MediaRef mediaOf(const M3uItem&) const override { return nullptr; }
  void tellContent() override {}
  void rename(StoredPlaylist&, const std::string&) override {}
};

/// Media that counts how often it is asked for its name, as at each comparison.
class Asked : public LooseMedia {
 public:
  Asked(TrackTags tags, int& asked) : LooseMedia("http://x/station", std::move(tags)), asked_(asked) {}
  [[nodiscard]] std::string name() const override {
    ++asked_;
    return LooseMedia::name();
  }

 private:
  int& asked_;
};

class TakenItems : public ::testing::Test {
 protected:
  /// Items of one source.
  std::vector<player::MediaRef> named(const std::string& name) {
    std::vector<player::MediaRef> items;
    for (int i = 0; i < kMany; ++i) {
      TrackTags tags;
      tags.title = name + std::to_string(i);
      items.push_back(std::make_shared<Asked>(std::move(tags), asked));
    }
    return items;
  }

  static constexpr int kMany = 2000;
  int asked = 0;
  NoKeeper keeper;
};

TEST_F(TakenItems, OfOneSourceWithOtherTitlesAreNotComparedEachWithEach) {
  StoredPlaylist list(keeper, "L", named("old "));
  list.take("L", named("new "));
  EXPECT_LT(asked, 50 * kMany);
  EXPECT_EQ(list.item(7)->name(), "new 7");
}

TEST_F(TakenItems, OfOneSourceInAnotherOrderAreTheSameObjects) {
  const std::vector<player::MediaRef> before = named("title ");
  StoredPlaylist list(keeper, "L", before);
  auto turned = named("title ");
  std::reverse(turned.begin(), turned.end());
  list.take("L", turned);
  EXPECT_LT(asked, 50 * kMany);
  for (int i = 0; i < kMany; ++i) ASSERT_EQ(list.items()[i], before[kMany - 1 - i]) << i;
}

}  // namespace
}  // namespace engine::testing
