#pragma once
#include <memory>

#include "base/Loop.hpp"
#include "plugin/Plugin.hpp"

/// On the first start of all the player's first look at the music goes on beside start-up, which may read the
/// library before that: quick play and the spoken names of what is stale by then are made anew.
class FirstMeeting {
 public:
  explicit FirstMeeting(base::Loop& loop) : timer_(loop.makeTimer(kLook, [this] { look(); })) {}

  /// What the names are made with; it lives as long as this.
  void meetIn(plugin::Plugin& plugin) { plugin_ = &plugin; }
  /// The library's first media are there.
  void met() { timer_->enabled(true); }
  /// Whether it looks for start-up's end still.
  [[nodiscard]] bool waits() const { return timer_->enabled(); }

 private:
  static constexpr base::Milliseconds kLook{50};

  void look() {
    if (plugin_ == nullptr || (!plugin_->state.Initialized && !plugin_->lifecycle.failed())) return;
    timer_->enabled(false);
    // Whoever doesn't want the names read at the start doesn't want them read now.
    if (plugin_->lifecycle.failed() || !plugin_->settings.flag("UpdateMediaEvents", true)) return;
    for (const char* category : {"Album", "Artist", "Genre"})
      if (plugin_->stale.CategoryStale[category]) plugin_->mediaEvents.UpdateMediaEvents(category);
  }

  plugin::Plugin* plugin_ = nullptr;
  std::unique_ptr<base::Timer> timer_;
};
