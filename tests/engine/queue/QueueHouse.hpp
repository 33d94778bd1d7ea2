#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "engine/playback/PlaybackStates.hpp"
#include "engine/playlists/PlaylistFolder.hpp"
#include "engine/queue/QueueKeeper.hpp"
#include "support/SkippingClock.hpp"

namespace engine::testing {

/// All of the player that keeps a queue, with an output that makes no sound. Made anew in the same folder it
/// is what the next start finds.
class QueueHouse {
 public:
  /// `told` hears the messages too, those of its end among them; on any thread.
  explicit QueueHouse(const std::string& root, files::WriteCall write = files::WriteBytes,
                      std::function<void(const std::string&)> told = {})
      : stored(root),
        keeper(
            {loop, playback, stored.library, stored.lists, [this] { return chosen; }, [this] { return mark; },
             [this, told = std::move(told)](const std::string& line) {
               const std::lock_guard lock(telling);
               if (told) told(line);
               messages.push_back(line);
             }},
            root + "/kept", std::move(write)) {
    playback.preset(stored.library.getAll());
    if (const auto taken = keeper.takeUp()) {
      chosen = taken->chosen;
      mark = taken->mark;
      takenUp = true;
    }
    keeper.begin();
  }

  void assign(const player::PlaylistRef& list) {
    chosen = true;
    playback.assign(list);
  }
  /// Plays a list of addresses from one of them on.
  std::shared_ptr<ListPlaylist> play(const std::vector<std::string>& addresses, int from = 0) {
    std::vector<player::MediaRef> items;
    for (const std::string& address : addresses) {
      TrackTags tags;
      tags.title = "Title of " + address;
      tags.milliseconds = 300000;
      items.push_back(std::make_shared<LooseMedia>(address, tags));
    }
    auto list = std::make_shared<ListPlaylist>("Evening", std::move(items));
    assign(list);
    for (int i = 0; i < from; ++i) playback.next();
    playback.play();
    playback.started(output.now);
    return list;
  }
  /// The loop has its turn, and timers that are due theirs.
  void pass(std::chrono::seconds time = std::chrono::seconds(0)) {
    clock.skip(time);
    loop.pump();
  }
  [[nodiscard]] std::vector<std::string> sources() const {
    std::vector<std::string> all;
    const auto& list = playback.queue().playlist();
    for (std::int32_t i = 0; list && i < list->count(); ++i) all.push_back(list->item(i)->sourceURL());
    return all;
  }
  [[nodiscard]] std::string current() const {
    const auto& media = playback.queue().current();
    return media ? media->sourceURL() : std::string();
  }

  support::SkippingClock clock;
  bus::PollLoop loop{clock.reader()};
  PlaylistFolder stored;
  FakeOutput output;
  ErrorList errors;
  bool chosen = false;
  bool takenUp = false;
  std::int64_t mark = 0;
  std::mutex telling;
  std::vector<std::string> messages;
  std::vector<std::int32_t> states;
  Playback playback{
      loop,
      output,
      errors,
      1,
      {[this](player::PlayState state) { states.push_back(state); }, [] {}, [this] { keeper.note(); }}};
  QueueKeeper keeper;
};

}  // namespace engine::testing
