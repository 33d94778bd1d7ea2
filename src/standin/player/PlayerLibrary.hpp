#pragma once
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/Connection.hpp"
#include "standin/player/NameList.hpp"
#include "standin/player/PlayerLists.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/player/TitleList.hpp"

namespace standin {

/// The player's own playlist, and what is said where nothing has been added to it.
inline constexpr const char* kOwnList = "Vantorix";
inline constexpr const char* kNothingAdded =
    "Nothing was added: choose something of the library to play first";
/// What a guest is told who wants something added: playlists are kept.
inline constexpr const char* kGuestsMayNotAdd = "Guests can’t change playlists";

/// The player's library as its script object and its raw player tell it. Lists are kept for some seconds, so
/// that a page that scrolls or searches does not ask the player again and again. All use is on the loop's
/// thread. What is called back is called in every case, with an answer or a failure.
class PlayerLibrary {
 public:
  PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin)
      : PlayerLibrary(loop, connection, plugin, {}) {}
  PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin,
                PluginKeeper::Address address);

  /// A category's own word for a text in any case; nothing when it is none that has groups.
  static std::optional<std::string> categoryOf(const std::string& text);

  /// Why something was not done; the text is empty where it was.
  struct Failed {
    std::string text;
    std::int32_t number = 0;  ///< of base/Failure.hpp, where it is known
  };

  using Listed = std::function<void(std::shared_ptr<const NameList> list, const Failed& failed)>;
  /// The groups of a category. Asks the player when `fresh` is wanted or the list kept is too old.
  void list(const std::string& category, bool fresh, Listed listed);

  using TitlesListed = std::function<void(std::shared_ptr<const TitleList> titles, const Failed& failed)>;
  /// The titles of a group; of all for "Media Library", whose groups have no names.
  void titles(const std::string& category, const std::string& group, bool fresh, TitlesListed listed);

  using TitlesRead = std::function<void(std::vector<Title> titles, const Failed& failed)>;
  /// The titles at these places of a group as it is now, one for each; an empty one where there is none.
  void titlesAt(const std::string& category, const std::string& group, std::vector<std::size_t> places,
                TitlesRead read);

  /// The albums of an artist, a genre or a playlist in the order of their first title.
  void albums(const std::string& category, const std::string& group, Listed listed);

  using ArtistsRead = std::function<void(std::vector<std::string> artists)>;
  /// Whose these albums are, one text for each; none where the player can't tell.
  void artistsOf(std::vector<std::string> albums, ArtistsRead read);

  /// The category's names and titles are asked for anew the next time: somebody has changed them.
  void forget(const std::string& category);

  using Played = std::function<void(const Failed& failed)>;
  /// Plays a whole group, or what an artist has in it.
  void play(const std::string& category, const std::string& group, const std::string& by, Played played);
  /// Plays this very title, whatever others of its name there are.
  void play(const TitleAddress& title, Played played);
  /// Plays the title's group from this title on.
  void playOn(const TitleAddress& title, const std::string& by, Played played);

  using Added = std::function<void(const std::optional<std::string>& title, const Failed& failed)>;
  /// Has the work done, and tells which title it has put at the end of that playlist; none where the list is
  /// no longer than before.
  void addition(const std::string& list, PluginKeeper::Command work, Added added);

  using Heard = std::function<void(std::int32_t volume, const Failed& failed)>;
  /// How loud the player is: 0 to 100.
  void volume(Heard heard);

 private:
  /// Lists of one kind, each for some seconds, with those who wait for it.
  template <class List>
  class Shelf {
   public:
    using Ref = std::shared_ptr<const List>;
    using Told = std::function<void(Ref list, const Failed& failed)>;
    explicit Shelf(bus::PollLoop& loop) : loop_(loop) {}
    /// Tells the list kept, or has it fetched when that is too old; true when it is to be fetched.
    bool ask(const std::string& key, bool fresh, Told told);
    void fetched(const std::string& key, Ref list, const Failed& failed);
    template <class Test>
    void forget(Test test) {
      for (Kept& each : kept_)
        if (test(each.key)) each.list.reset();
    }

   private:
    struct Kept {
      std::string key;
      base::Milliseconds since{0};
      Ref list;
      std::vector<Told> waiting;
    };
    Kept& slot(const std::string& key);
    bus::PollLoop& loop_;
    std::list<Kept> kept_;  ///< the one used last in front
  };

  using Work = std::function<void(PlayerLists& lists)>;
  /// Has the work done when the player is free for it.
  void ask(Work work, std::function<void(const Failed& failed)> done);
  void albumsOfTitles(const std::string& category, const std::string& group, Listed listed);
  static PlayerList groupOf(PlayerLists& lists, const std::string& category, const std::string& group);
  base::ObjectRef script();

  bus::Connection& connection_;
  PluginKeeper& plugin_;
  PluginKeeper::Address address_;
  Shelf<NameList> names_;
  Shelf<TitleList> titles_;
};

}  // namespace standin
