// What is queued when the plug is pulled.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <random>

#include "base/Failure.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using Titles = std::vector<std::string>;

/// The raw player's queue, over the bus.
class Queue {
 public:
  explicit Queue(const std::string& busAddress) : connection_(loop_, busAddress) {
    script_ = connection_.proxy("org.vantorix.vxif_WMP9", "/scriptclass");
    player_ = base::ToObject(script_->get("WMPObject"));
    list_ = base::ToObject(base::Deref(player_).get("queue"));
  }
  void playAlbum() { script_->invoke("Play", "Album", "Counting", ""); }
  [[nodiscard]] Titles read(const char* field) const {
    Titles titles;
    const std::int32_t count = base::ToInt32(list_->get("count"));
    if (count == 0) return titles;
    const base::Value answer = list_->invoke("readItems", base::Array{field}, 0, count);
    for (const base::Value& each : answer.array()) titles.push_back(base::ToText(each));
    return titles;
  }
  void insert(std::size_t at, const std::string& source) {
    list_->invoke("insertItems", static_cast<std::int32_t>(at), base::Array{"sourceURL"},
                  base::Array{source});
  }
  void move(std::size_t from, std::size_t to) {
    list_->invoke("moveItem", static_cast<std::int32_t>(from), static_cast<std::int32_t>(to));
  }
  void remove(std::size_t at) { list_->invoke("removeItems", base::Array{static_cast<std::int32_t>(at)}); }
  [[nodiscard]] std::uint32_t process() { return connection_.processOf("org.vantorix.vxif_WMP9"); }

 private:
  bus::PollLoop loop_;
  bus::Connection connection_;
  base::ObjectRef script_;
  base::ObjectRef player_;
  base::ObjectRef list_;
};

/// Changes the queue and knows what it must be.
class Editor {
 public:
  Editor(Titles now, unsigned seed) : all(now), acknowledged(std::move(now)), random_(seed) {}

  /// Makes one change after the other until one isn't answered.
  void work(Queue& queue) {
    try {
      for (;;) {
        underWay = acknowledged;
        change(queue);
        acknowledged = underWay;
        ++changes;
      }
    } catch (const base::Failure&) {  // the plug has been pulled
    }
  }

  const Titles all;
  Titles acknowledged;
  Titles underWay;  ///< what it becomes by the last change, which was not answered
  std::atomic<int> changes = 0;

 private:
  std::size_t any(std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_);
  }

  void change(Queue& queue) {
    const std::size_t size = underWay.size();
    const std::size_t kind = size < 2 ? 0 : size > 60 ? 1 : any(3);
    if (kind == 0) {
      const std::size_t at = any(size + 1);
      const std::string& source = all[any(all.size())];
      underWay.insert(underWay.begin() + static_cast<std::ptrdiff_t>(at), source);
      queue.insert(at, source);
      return;
    }
    const std::size_t from = any(size);
    const std::string source = underWay[from];
    underWay.erase(underWay.begin() + static_cast<std::ptrdiff_t>(from));
    if (kind == 1) {
      queue.remove(from);
      return;
    }
    const std::size_t to = any(size);
    underWay.insert(underWay.begin() + static_cast<std::ptrdiff_t>(to), source);
    queue.move(from, to);
  }

  std::mt19937 random_;
};

class KeptQueue : public ::testing::Test {
 protected:
  support::SmallMusic music{60};
  support::RealHouse house{{.music = music.path()}};
};

}  // namespace

TEST_F(KeptQueue, IsThereAsAcknowledgedHoweverOftenThePlugIsPulled) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<int> moment(0, 150);
  ASSERT_TRUE(house.startReady());
  Titles sources;
  {
    Queue queue(house.busAddress());
    queue.playAlbum();
    ASSERT_TRUE(support::Eventually([&] { return queue.read("sourceURL").size() == 3; }));
    sources = queue.read("sourceURL");
  }
  Editor editor(sources, 20261122);
  for (int round = 0; round < 20; ++round) {
    {
      Queue queue(house.busAddress());
      const auto process = static_cast<pid_t>(queue.process());
      ASSERT_GT(process, 0);
      const int had = editor.changes;
      std::thread hand([&, wait = std::chrono::milliseconds(moment(random))] {
        support::Eventually([&] { return editor.changes >= had + 2; });
        std::this_thread::sleep_for(wait);
        ::kill(process, SIGKILL);
      });
      editor.work(queue);
      hand.join();
    }
    // Now and then the server goes with it.
    if (round % 3 == 0) {
      house.server().signal(SIGKILL);
      house.server().kill();
      house.start();
    }
    ASSERT_TRUE(support::Eventually([&] {
      try {
        return Queue(house.busAddress()).process() != 0 && house.pluginState() == "ready";
      } catch (const base::Failure&) {
        return false;
      }
    })) << "round "
        << round;
    const Titles kept = Queue(house.busAddress()).read("sourceURL");
    ASSERT_THAT(kept, ::testing::AnyOf(editor.acknowledged, editor.underWay)) << "round " << round;
    editor.acknowledged = kept;
  }
  EXPECT_GT(editor.changes, 20);
}

TEST_F(KeptQueue, IsThereAfterAnOrderlyEndWithItsPlace) {
  ASSERT_TRUE(house.startReady());
  {
    Queue queue(house.busAddress());
    queue.playAlbum();
    ASSERT_TRUE(house.textBecomes("Title", "One"));
    ASSERT_EQ(house.post("/api/player/next", nlohmann::json::object()), 200);
    ASSERT_TRUE(house.textBecomes("Title", "Two"));
    queue.move(2, 0);
    ASSERT_EQ(queue.read("name"), (Titles{"Three", "One", "Two"}));
  }
  house.server().signal(SIGTERM);
  ASSERT_EQ(house.server().wait(), 0);
  ASSERT_TRUE(house.startReady());
  EXPECT_EQ(Queue(house.busAddress()).read("name"), (Titles{"Three", "One", "Two"}));
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
  ASSERT_EQ(house.post("/api/player/play", nlohmann::json::object()), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
}
