#pragma once
#include <memory>

#include "base/Loop.hpp"
#include "plugin/Plugin.hpp"

/// On the first start of all the player's library is empty while start-up reads it, as its first look at the
/// music goes on beside that: quick play and the spoken names are made anew once both are done.
class FirstMeeting {
 public:
  explicit FirstMeeting(base::Loop& loop) : timer_(loop.makeTimer(kLook, [this] { look(); })) {}

  /// What the names are made with; it lives as long as this.
  void meetIn(plugin::Plugin& plugin) { plugin_ = &plugin; }
  /// The library's first media are there.
  void met() { timer_->enabled(true); }

 private:
  static constexpr base::Milliseconds kLook{50};

  void look() {
    if (plugin_ == nullptr || !plugin_->state.Initialized) return;
    timer_->enabled(false);
    for (const char* category : {"PlayList", "Album", "Artist", "Genre"})
      plugin_->mediaEvents.UpdateMediaEvents(category);
  }

  plugin::Plugin* plugin_ = nullptr;
  std::unique_ptr<base::Timer> timer_;
};
