#pragma once
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "engine/library/Lists.hpp"
#include "engine/playback/Playback.hpp"

namespace engine::testing {

/// An output that only remembers what it is told.
class FakeOutput : public Output {
 public:
  void load(EntryId entry, const std::string& location) override {
    loaded.push_back(location);
    now = entry;
    next = 0;
  }
  void append(EntryId entry, const std::string& location) override {
    appended = location;
    next = entry;
    ++appends;
  }
  bool dropNext() override {
    if (onNext) return false;
    appended.clear();
    next = 0;
    return true;
  }
  void stop() override { now = next = 0; }
  void pause(bool value) override { paused = value; }
  void seek(double seconds) override { place = seconds; }
  [[nodiscard]] double position() const override { return place; }
  void speed(double factor) override { rate = factor; }
  void volume(std::int32_t) override {}
  void mute(bool) override {}
  void look(base::PictureSize size) override { looked = size; }

  std::vector<std::string> loaded;
  std::string appended;
  EntryId now = 0;
  EntryId next = 0;
  int appends = 0;
  bool onNext = false;  ///< what was appended is under way already
  bool paused = false;
  double place = 0;
  double rate = 1;
  base::PictureSize looked;
};

/// A loop whose one timer is fired by hand.
class HandLoop : public base::Loop {
 public:
  class HandTimer : public base::Timer {
   public:
    HandTimer(base::Milliseconds interval, std::function<void()> event)
        : interval_(interval), event_(std::move(event)) {}
    [[nodiscard]] base::Milliseconds interval() const override { return interval_; }
    void interval(base::Milliseconds value) override { interval_ = value; }
    [[nodiscard]] bool enabled() const override { return enabled_; }
    void enabled(bool value) override { enabled_ = value; }
    void fire() const {
      if (enabled_) event_();
    }

   private:
    base::Milliseconds interval_;
    std::function<void()> event_;
    bool enabled_ = false;
  };

  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds interval, std::function<void()> event) override {
    auto made = std::make_unique<HandTimer>(interval, std::move(event));
    timer = made.get();
    return made;
  }
  void post(std::function<void()> work) override { work(); }
  void pump() override {}
  void whileOpen(const std::function<void()>& body) override { body(); }
  [[nodiscard]] base::Milliseconds now() const override { return {}; }

  HandTimer* timer = nullptr;
};

class PlaybackStates : public ::testing::Test {
 protected:
  static player::MediaRef media(const std::string& path) {
    TrackTags tags;
    tags.title = path.substr(1);
    return std::make_shared<LooseMedia>(path, tags);
  }
  static std::shared_ptr<ListPlaylist> list(const std::vector<std::string>& paths) {
    std::vector<player::MediaRef> items;
    for (const auto& path : paths) items.push_back(media(path));
    return std::make_shared<ListPlaylist>("list", items);
  }
  void playing(const std::vector<std::string>& paths) {
    playback.assign(list(paths));
    playback.play();
    playback.started(output.now);
    states.clear();
  }
  /// The end of what plays, with what was appended following by itself.
  void end() {
    const EntryId now = output.now;
    const EntryId next = output.next;
    playback.ended(now);
    if (next == 0) return;
    output.now = next;
    output.next = 0;
    output.onNext = false;
    playback.started(next);
  }

  HandLoop loop;
  FakeOutput output;
  ErrorList errors;
  std::vector<std::int32_t> states;
  int told = 0;
  Playback playback{loop,
                    output,
                    errors,
                    1,
                    {[this](player::PlayState state) { states.push_back(state); }, [this] { ++told; }}};
};

}  // namespace engine::testing
