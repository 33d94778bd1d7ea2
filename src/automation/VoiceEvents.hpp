#pragma once
#include <cstdint>
#include <map>
#include <string>

#include "automation/Devices.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "catalogue/Progress.hpp"
#include "player/StaleMarks.hpp"
#include "plugin/host/Neighbours.hpp"

namespace automation {

/// What the voice events and quick-play devices are made from.
struct VoiceEventParts {
  Devices& devices;
  catalogue::MediaCatalogue& catalogue;
  catalogue::Progress& progress;
  player::StaleMarks& stale;
  plugin::MediaMenus& menus;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  plugin::PluginState& state;
};

/// The library in the house without a dialog: for each category a device whose values are its names, an event
/// whose voice command speaks them, and a menu. Names are media keys in all three.
class VoiceEvents : public plugin::MediaEvents {
 public:
  explicit VoiceEvents(const VoiceEventParts& parts) : in_(parts) {}

  /// Makes sure that the event of the spoken transport commands is there and tied to the device "Status",
  /// which is made again where it is missing. A failure is logged. Never throws.
  void UpdateControlEvent() override;
  /// Reads the names of "PlayList", "Album", "Artist" or "Genre" anew. The host gets turns meanwhile. A
  /// failure is logged and leaves what was stored until then. Never throws.
  void UpdateMediaEvents(const std::string& CategoryType) override;

 private:
  class Names;

  std::int32_t statusRef();
  base::ObjectRef quickDevice(const std::string& category);
  base::ObjectRef mediaEvent(const std::string& category);
  void publish(const std::string& category, catalogue::ProgressShown& shown);
  void fill(Names& names, catalogue::ProgressShown& shown);
  /// The event with that name; `made` tells that it is new.
  base::ObjectRef eventNamed(const std::string& name, bool& made);
  /// Puts in the event's place among the plug-in's: its time, its group.
  static void place(base::Object& event);
  /// Ties the device to the event, once: the event is heard as a command to it.
  void attach(base::Object& event, std::int32_t ref);

  VoiceEventParts in_;
  std::map<std::string, std::uint64_t> tables_;  ///< how often a category's values were given to the host
};

}  // namespace automation
