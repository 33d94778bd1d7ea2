// The disc of the playlists hangs, as a network drive does whose server sleeps.
#include <gmock/gmock.h>

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<std::string> kAddresses{"http://x/1", "http://x/2"};

/// A disc that answers nobody while it is asleep.
class Disc {
 public:
  void reach() {
    std::unique_lock lock(mutex_);
    ++waiting_;
    woken_.wait(lock, [this] { return !asleep_; });
    --waiting_;
  }
  void asleep(bool value) {
    {
      const std::lock_guard lock(mutex_);
      asleep_ = value;
    }
    woken_.notify_all();
  }
  /// One that is awake answers, however slow this machine is.
  [[nodiscard]] base::Milliseconds patience() const {
    const std::lock_guard lock(mutex_);
    return asleep_ ? base::Milliseconds(20) : std::chrono::minutes(2);
  }
  [[nodiscard]] int waiting() const {
    const std::lock_guard lock(mutex_);
    return waiting_;
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable woken_;
  bool asleep_ = false;
  int waiting_ = 0;
};

class SleepingDisc : public ::testing::Test {
 protected:
  ~SleepingDisc() override {
    disc->asleep(false);
    playlists.reset();
    EXPECT_TRUE(support::Eventually([&] { return disc.use_count() == 1; })) << "its thread goes on";
  }
  SleepingDisc() { start(); }

 public:
  SleepingDisc(const SleepingDisc&) = delete;
  SleepingDisc& operator=(const SleepingDisc&) = delete;
  SleepingDisc(SleepingDisc&&) = delete;
  SleepingDisc& operator=(SleepingDisc&&) = delete;

 protected:
  void start() {
    playlists.emplace(root.path(), files::WriteBytes, std::vector<std::string>(), StoredPlaylists::kMostItems,
                      PlaylistDisc{[disc = disc] { disc->reach(); },
                                   [disc = disc](base::Milliseconds) { return disc->patience(); }});
  }
  /// Once the disc has answered what it had been asked asleep; until then each try is refused.
  bool appended(player::Playlist& list, const std::string& address) {
    return support::Eventually(
        [&] { return FailureOf([&] { list.appendItem(playlists->media(address)); }) == 0; });
  }
  const support::TempFolder root;
  std::shared_ptr<Disc> disc = std::make_shared<Disc>();
  std::optional<PlaylistFolder> playlists;
};

TEST_F(SleepingDisc, KeepsNobodyWaitingAndWhatIsKnownIsShown) {
  const auto list = playlists->make("L", kAddresses);
  disc->asleep(true);
  WriteText(playlists->path("New.m3u8"), "http://x/3\n");
  for (int time = 0; time < 3; ++time) EXPECT_THAT(playlists->names(), ElementsAre("L"));
  EXPECT_EQ(playlists->named("L"), list);
  EXPECT_THAT(Addresses(*list), kAddresses);
  bool turned = false;
  playlists->loop.post([&] { turned = true; });
  playlists->loop.pump();
  EXPECT_TRUE(turned);
  EXPECT_TRUE(support::Eventually([&] { return disc->waiting() == 1; })) << "its thread alone waits";
  EXPECT_THAT(playlists->messages, ElementsAre(HasSubstr("playlists doesn't answer")));

  const int changes = playlists->changes;
  disc->asleep(false);
  EXPECT_TRUE(TurnUntil(playlists->loop, [&] { return playlists->changes > changes; }))
      << "what it answers late is taken in, though nobody asks";
  EXPECT_THAT(playlists->names(), ElementsAre("L", "New"));
  EXPECT_EQ(playlists->messages.size(), 1U);

  disc->asleep(true);
  EXPECT_THAT(playlists->names(), ElementsAre("L", "New"));
  EXPECT_EQ(playlists->messages.size(), 2U) << "each time that it falls asleep";
}

TEST_F(SleepingDisc, IsNotWrittenTo) {
  const auto list = playlists->make("L", kAddresses);
  const std::string before = playlists->content("L.m3u8");
  disc->asleep(true);
  const auto expectRefused = [&](const std::function<void()>& step) {
    EXPECT_EQ(FailureOf(step), base::number::kDeviceIo);
  };
  expectRefused([&] { playlists->lists.newPlaylist("M"); });
  expectRefused([&] { playlists->lists.remove(list); });
  expectRefused([&] { list->name("N"); });
  expectRefused([&] { list->appendItem(playlists->media("http://x/3")); });
  expectRefused([&] { list->removeItem(list->item(0)); });
  EXPECT_THAT(Addresses(*list), kAddresses);
  EXPECT_EQ(playlists->content("L.m3u8"), before);
  disc->asleep(false);
  ASSERT_TRUE(appended(*list, "http://x/3"));
  EXPECT_THAT(ItemsOf(playlists->content("L.m3u8")), ::testing::SizeIs(3));
  playlists->lists.remove(list);
  EXPECT_THAT(playlists->names(), IsEmpty());
}

TEST_F(SleepingDisc, IsNotWaitedForAtTheEnd) {
  for (const bool known : {true, false}) {
    start();
    disc->asleep(true);
    if (known) playlists->names();  // which has waited in vain
    EXPECT_TRUE(TurnUntil(playlists->loop, [&] { return disc->waiting() == 1; }));
    playlists.reset();
    EXPECT_EQ(disc->waiting(), 1) << "it is still asleep";
    disc->asleep(false);
    EXPECT_TRUE(support::Eventually([&] { return disc.use_count() == 1; }));
  }
}

TEST_F(SleepingDisc, ThatLiesBetweenTwoChangesLosesNeither) {
  const auto list = playlists->make("L", kAddresses);
  disc->asleep(true);
  EXPECT_THAT(playlists->names(), ElementsAre("L"));
  WriteText(playlists->path("L.m3u8"), "#PLAYLIST:L\nhttp://x/theirs\n");
  disc->asleep(false);
  // What the look has found meanwhile is older than this, and comes to the loop later.
  ASSERT_TRUE(appended(*list, "http://x/ours"));
  const std::vector<std::string> both{"http://x/theirs", "http://x/ours"};
  EXPECT_EQ(Addresses(*list), both);
  bool turned = false;
  playlists->loop.post([&] { turned = true; });
  EXPECT_TRUE(TurnUntil(playlists->loop, [&] { return turned; }));
  EXPECT_EQ(Addresses(*list), both);
}

TEST(LargePlaylists, AreAllReadAtTheStartThoughNotAllAtOnce) {
  const support::TempFolder root;
  for (const std::string name : {"A", "B", "C", "D"}) {
    const std::string path = root.path() / "playlists" / (name + ".m3u8");
    WriteText(path, "http://x/" + name + "\n");
    fs::resize_file(path, std::uintmax_t{40} << 20U);  // with a line that isn't read
  }
  PlaylistFolder playlists(root.path());
  EXPECT_EQ(playlists.changes, 0);
  EXPECT_THAT(playlists.names(), ElementsAre("A", "B", "C", "D"));
  EXPECT_EQ(playlists.changes, 0) << "they had been known";
}

}  // namespace
}  // namespace engine::testing
