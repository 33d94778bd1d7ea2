#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "base/Object.hpp"

/// What start-up and dispatch call in the modules around them, as small interfaces. Each has a form that does
/// nothing, which stands for a module that is not there.
namespace plugin {

/// Neighbours are used by reference only.
class Neighbour {
 public:
  Neighbour() = default;
  Neighbour(const Neighbour&) = delete;
  Neighbour& operator=(const Neighbour&) = delete;
  Neighbour(Neighbour&&) = delete;
  Neighbour& operator=(Neighbour&&) = delete;
  virtual ~Neighbour() = default;
};

/// The library's changes and requests by name.
class LibraryCalls : public Neighbour {
 public:
  /// Plays by name. 0 when the player was told to play.
  virtual std::int32_t WMPPlay(const std::string& /*category*/, const std::string& /*name*/,
                               const std::string& /*title*/) {
    return 0;
  }
  /// Adds what was played last to a playlist. Empty or 0 for success.
  virtual base::Value AddMediaToPlayList(const std::string& /*name*/) { return {}; }
  /// Loads the names that lead from media keys to the library's own names.
  virtual void LoadNameTable() {}
};

/// Quick-play devices and voice events.
class MediaEvents : public Neighbour {
 public:
  virtual void UpdateControlEvent() {}
  virtual void UpdateMediaEvents(const std::string& /*category*/) {}
};

/// The popup window's menus of names, one a category, whose elements are numbered from 0.
class MediaMenus : public Neighbour {
 public:
  /// Makes an element. Throws number 360 for one that is there.
  virtual void load(const std::string& /*category*/, std::int16_t /*element*/) {}
  /// Throws number 340 for an element that is not there.
  virtual void caption(const std::string& /*category*/, std::int16_t /*element*/,
                       const std::string& /*text*/) {}
};

/// Windows of the desktop.
class Desktop : public Neighbour {
 public:
  virtual void ShowTrayIcon(bool /*show*/) {}
  /// Takes the tray icon away.
  virtual void unloadTray() {}
  /// The playlist editor is asked for, and there is no window for it.
  virtual void showPlayListEditor() {}
  /// A message that closes itself. 1 for OK, 2 for Cancel or the end of the time.
  virtual std::int16_t ShowTimedMessage(const std::string& title, const std::string& text,
                                        std::int16_t seconds) = 0;
};

/// The plug-in's pages.
class WebForms : public Neighbour {
 public:
  /// Loading the setup form registers the plug-in's second link.
  virtual void loadSetupForm() {}
  virtual void loadEditorForm() {}
  virtual std::string GenPage(const std::string& /*link*/) { return {}; }
  virtual std::string PagePut(const std::string& /*data*/) { return {}; }
};

/// Makes public objects by their registered names. Throws number 429 for a name that is not registered.
class ObjectFactory : public Neighbour {
 public:
  virtual base::ObjectRef create(const std::string& registeredName) = 0;
};

struct Neighbours {
  Desktop& desktop;
  ObjectFactory& objects;
};

}  // namespace plugin
