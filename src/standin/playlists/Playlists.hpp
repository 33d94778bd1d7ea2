#pragma once
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "standin/player/PlayerLibrary.hpp"
#include "standin/playlists/PlaylistEdits.hpp"
#include "standin/playlists/PlaylistHistory.hpp"

namespace standin {

/// The player's playlists as the pages show and change them: one change after the other, each with its way
/// back, told to all open pages. A list is looked at again and again while a page shows it, so that changes
/// by others are seen; nothing is asked while nobody looks. All use is on the loop's thread.
class Playlists {
 public:
  Playlists(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house,
            PlayerLibrary& library)
      : Playlists(loop, connection, plugin, house, library, {}) {}
  Playlists(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house,
            PlayerLibrary& library, PluginKeeper::Address address);

  /// What has become of a request. The texts of `undo` and `redo` name the steps, empty where there is none.
  struct Outcome {
    std::int32_t failure = 0;  ///< a number of base/Failure.hpp
    std::string error;
    bool stuck = false;  ///< a step can't be undone or redone, and stands in the way of those behind it
    std::string name;    ///< of the list, as the player spells it
    std::shared_ptr<const NameList> names{};
    std::int64_t version = 0;  ///< one more with every change of the list
    std::string said;          ///< what has been done, in words
    std::int32_t restored = 0;
    std::int32_t restoring = 0;  ///< titles of a deleted list that is still on its way back; 0 when none is
    std::string undo;
    std::string redo;
  };
  using Done = std::function<void(const Outcome&)>;

  /// A list with its titles; read anew if `fresh`, or when nobody has watched what is kept of it.
  void show(const std::string& name, bool fresh, Done done);
  /// What could be undone and redone in the collection.
  void collection(Done done);

  using Plan = std::function<PlaylistStep(PlayerLists& lists, const PlayerList& list)>;
  /// Takes the step that `plan` makes of what it finds.
  void change(const std::string& name, Plan plan, Done done);
  void create(const std::string& name, Done done) { create(name, {}, std::move(done)); }
  /// With what is in the list `from`; an empty one for an empty name.
  void create(const std::string& name, const std::string& from, Done done);

  enum class Turn { kUndo, kRedo, kSkipUndo, kSkipRedo };
  /// Undoes or redoes the list's next step, or the collection's for an empty name; or forgets it.
  void turn(const std::string& name, Turn turn, Done done);

  /// A page shows the list, or the names of all lists for an empty name. It says so again every few seconds.
  /// `page` tells the pages apart.
  void watch(const std::string& page, const std::string& name);

 private:
  static constexpr base::Milliseconds kLookInterval = std::chrono::milliseconds(600);
  static constexpr base::Milliseconds kGood = std::chrono::seconds(4);  ///< unless somebody watches it
  static constexpr std::size_t kListsKept = 12;  ///< besides those that somebody watches

  using Items = std::shared_ptr<const std::vector<ListedItem>>;
  /// What a list holds: the names of its titles, and more of them unless it is the queue or a long one.
  struct Content {
    std::vector<std::string> names;
    Items items{};
  };
  struct Kept {
    std::string name;
    std::shared_ptr<const NameList> names;
    Items items{};  ///< null where they are not known
    std::int64_t version = 0;
    std::int64_t revision = 0;   ///< the player's own number for what it had then
    base::Milliseconds seen{0};  ///< when the player was last asked
  };
  struct Watcher {
    std::string name;
    base::Milliseconds until{0};
  };
  struct Restoring {
    PlaylistHistory::Entry entry;
    PlaylistRestore restore;
    Done done;
  };
  using Work = std::function<void(PlayerLists& lists, Outcome& outcome)>;

  void ask(Work work, Done done);
  void settle(PlayerLists& lists);
  void settle(PlayerLists& lists, const PlaylistHistory::Entry& entry);
  void tellSteps(Outcome& outcome, const std::string& list);
  /// The list as it is kept; it is the one used last now. Null for one that isn't.
  Kept* kept(const std::string& name);
  [[nodiscard]] bool watched(const std::string& name) const;
  Kept& keep(const std::string& name, Content content, std::int64_t revision);
  /// What has changed since it was kept is taken down as somebody else's.
  Kept& keepAsItIs(const PlayerList& list);
  void forget(const std::string& name);
  /// `before` is the list's revision right before the step, 0 where that is not known.
  void follow(PlayerLists& lists, const PlaylistStep& step, bool undone, const std::string& list,
              std::int64_t before);
  static Content ContentOf(const PlayerList& list);
  void forgetOldItems();
  /// A step that others have taken.
  void takeDown(const std::string& list, const PlaylistStep& step);
  void takeDownOthers(const std::string& list, const Content& now);
  /// Others' changes of a list come before the step that is about to be taken.
  void catchUp(const PlayerList& list, const std::string& name);
  /// What a list that is not found any more is called now: the one with its revision and its titles.
  std::optional<std::string> nameNow(PlayerLists& lists, const Kept& missing);
  /// A list that is kept is no longer there: others have renamed or deleted it.
  void followMissing(PlayerLists& lists, const std::string& name);
  void fill(PlayerLists& lists, Outcome& outcome, const std::string& name);
  void turnEntry(PlayerLists& lists, Outcome& outcome, const PlaylistHistory::Entry& entry, bool undo);
  void restoreSome(const std::shared_ptr<Restoring>& restoring);
  void look();
  void lookAt(PlayerLists& lists, const std::string& name);
  void lookAtNames(PlayerLists& lists);
  void tellChanged(const Kept& kept);
  void tellCollection();

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  PluginKeeper& plugin_;
  House& house_;
  PlayerLibrary& library_;
  PluginKeeper::Address address_;
  PlaylistHistory history_;
  std::list<Kept> kept_;  ///< the one used last in front
  std::map<std::string, Watcher> watchers_;
  std::set<std::string> restoring_;                 ///< names of lists on their way back, folded
  std::optional<std::vector<std::string>> listed_;  ///< all lists' names, once they have been seen
  std::int64_t lastVersion_;
  bool settled_ = false;
  bool looking_ = false;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
