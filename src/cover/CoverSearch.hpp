#pragma once
#include <cstdint>
#include <string>

#include "base/Attempt.hpp"
#include "cover/CoverFiles.hpp"
#include "player/MediaStatus.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"

namespace cover {

/// Where covers are asked for in the network: scheme and host, and with them the path "/cover/". Without the
/// two nothing is asked.
struct Services {
  std::string metadata{};
  std::string cover{};
};

struct SearchParts {
  player::WMPPlayer& form;
  player::PopupView& popup;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  const plugin::PluginState& state;
  CoverFiles& files;
};

/// Looks for the cover of what plays, cheapest source first: the picture within the file, those that the
/// player has left beside the music, the network. What it finds lies in two files below the host's web
/// folder, a large one and a small one, and in the popup window.
class CoverSearch {
 public:
  CoverSearch(const SearchParts& parts, Services services) : in_(parts), services_(std::move(services)) {}

  /// The whole search. Failures are skipped statement by statement; it never throws. While the network is
  /// asked, others get their turn, and may end the track it was begun for.
  void GetCoverImage();

 private:
  struct Pictures {
    Picture large{};
    Picture small{};
  };
  bool embedded(Pictures& found);
  bool local(Pictures& found);
  bool remote(Pictures& found);
  bool remoteLarge(const std::string& answer, Pictures& found);
  /// Whether a small one is there at its end, even if it is one that lay beside the music.
  bool remoteSmall(const std::string& answer, Pictures& found);
  std::string metadata();
  void show(const Pictures& found);
  void log(const char* text);
  std::string info(const std::string& attribute);
  std::string pictureUrl();

  SearchParts in_;
  Services services_;
  base::Attempt step_;  ///< its pending failure is the search's error state
};

}  // namespace cover
