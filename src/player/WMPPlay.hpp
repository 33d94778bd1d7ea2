#pragma once
#include <cstdint>
#include <string>

#include "player/LibraryLookup.hpp"
#include "player/PlayTarget.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Settings.hpp"

namespace player {

/// The one door through which anything gets played by name.
class PlayRequests {
 public:
  /// The title that means a whole group, as the empty title does.
  static constexpr const char* kEntireList = "(Play entire list)";

  PlayRequests(WMPPlayer& form, LibraryLookup& library, PlayTarget& target, plugin::HostServices& host,
               plugin::Settings& settings)
      : form_(form), library_(library), target_(target), host_(host), settings_(settings) {}

  /// Finds what the three texts mean, hands it to the player and starts it; the player's reaction comes later
  /// through its events. `category` is a category word in any case, or "URL" with the address as `title`.
  /// 0 when the player was told to play, -1 when the request was dropped with a message in the log, which is
  /// also spoken if the settings want it. An unexpected failure is logged and gives 0. Never throws.
  std::int32_t WMPPlay(const std::string& category, const std::string& name, const std::string& title);

 private:
  struct Request {
    const std::string& category;
    const std::string& name;
    std::string title;  // becomes the library's own name once it is looked up
  };
  std::int32_t play(Request request);
  std::int32_t playUrl(const std::string& url);
  std::int32_t playLibraryTitle(Request& request);
  std::int32_t playFromGroup(Request& request, PlaylistRef group);
  std::int32_t start();
  std::int32_t refuse(const std::string& message);

  WMPPlayer& form_;
  LibraryLookup& library_;
  PlayTarget& target_;
  plugin::HostServices& host_;
  plugin::Settings& settings_;
};

}  // namespace player
