#pragma once
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/Connection.hpp"
#include "standin/player/NameList.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// What the player says of one title; a negative duration where it doesn't know.
struct MediaFacts {
  std::string artist;
  std::string album;
  std::string genre;
  double seconds = -1;
};

/// The player's library as its script object tells it. Lists are kept for some seconds, so that a page that
/// scrolls or searches does not ask the player again and again. All use is on the loop's thread.
class PlayerLibrary {
 public:
  PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin)
      : PlayerLibrary(loop, connection, plugin, {}) {}
  PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin,
                PluginKeeper::Address address);

  /// A category's own word for a text in any case; nothing when it is none that the pages show.
  static std::optional<std::string> categoryOf(const std::string& text);

  using Listed = std::function<void(std::shared_ptr<const NameList> list, const std::string& failure)>;
  /// The groups of a category, or the titles of one of its groups. Asks the player when `fresh` is wanted or
  /// the list kept is too old. `listed` is called in every case, with a list or a failure's text.
  void list(const std::string& category, const std::optional<std::string>& group, bool fresh, Listed listed);

  /// The category's names and titles are asked for anew the next time: somebody has changed them.
  void forget(const std::string& category);

  using Played = std::function<void(std::int32_t result, const std::string& failure)>;
  /// Plays a title, or the whole group when the title is empty. 0 is success, -1 "not found".
  void play(const std::string& category, const std::string& name, const std::string& title, Played played);

  using Heard = std::function<void(std::int32_t volume, const std::string& failure)>;
  /// How loud the player is: 0 to 100.
  void volume(Heard heard);

  using Told = std::function<void(const MediaFacts& facts, const std::string& failure)>;
  void facts(const std::string& category, const std::string& name, const std::string& title, Told told);

 private:
  struct Kept {
    std::string key;
    base::Milliseconds since{0};
    std::shared_ptr<const NameList> list;
    std::vector<Listed> waiting;  ///< while it is being fetched
  };
  Kept& slot(const std::string& key);
  void fetched(const std::string& key, std::shared_ptr<const NameList> list, const std::string& failure);
  base::ObjectRef script();

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  PluginKeeper& plugin_;
  PluginKeeper::Address address_;
  std::list<Kept> kept_;  ///< the one used last in front
};

}  // namespace standin
