#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Object.hpp"
#include "standin/player/Title.hpp"

namespace standin {

/// A title as a playlist holds it. The source tells it from others of the same name.
struct ListedItem {
  std::string name;
  std::string source;
  std::string artist{};
  double seconds = 0;

  ListedItem() = default;
  ListedItem(std::string name, std::string source, std::string artist = {}, double seconds = 0)
      : name(std::move(name)), source(std::move(source)), artist(std::move(artist)), seconds(seconds) {}
  explicit ListedItem(const Title& title)
      : ListedItem(title.name, title.source, title.artist, title.seconds) {}
  bool operator==(const ListedItem&) const = default;
};

/// The name that stands for the queue, for what the player plays: no playlist can have it. With the mark of
/// one, it stands for that queue alone and for none that comes after it.
std::string QueueName(std::int64_t mark = 0);
bool IsQueue(const std::string& name);

/// One playlist of the player's, by name. Every access is a call to the player; places count from 0.
class PlayerList {
 public:
  /// `called`: the name that it goes by here, where that is not the player's own for it.
  explicit PlayerList(base::ObjectRef object, std::string called = {})
      : object_(std::move(object)), called_(std::move(called)) {}

  [[nodiscard]] std::string name() const;
  [[nodiscard]] std::int32_t count() const;
  [[nodiscard]] std::string nameAt(std::int32_t at) const;
  [[nodiscard]] std::string sourceAt(std::int32_t at) const;
  [[nodiscard]] ListedItem at(std::int32_t at) const;
  [[nodiscard]] base::ObjectRef mediaAt(std::int32_t at) const;
  /// The titles from one place on, at most so many; one call for a great many of them.
  [[nodiscard]] std::vector<Title> titles(std::int32_t from, std::int32_t count) const;
  /// Where the title is now: where it was seen, or else at the nearest place with its name and source. Throws
  /// number 3197 where it is no longer in the list.
  [[nodiscard]] std::int32_t placeOf(const TitleAddress& title) const;
  [[nodiscard]] std::vector<std::string> names(std::int32_t from, std::int32_t count) const;
  /// Grows by one with each title put in, taken out or moved, and by some number when titles may be shown as
  /// others; as long as it is the same, all of the list is.
  [[nodiscard]] std::int64_t revision() const;
  /// Puts them in at one go: those whose source the player can't find now too, as they were. `at` may be the
  /// count, for the end.
  void insert(std::int32_t at, const std::vector<ListedItem>& items);
  /// Takes those at these places out at one go; the places rise and count as before.
  void removeAll(const std::vector<std::int32_t>& places);
  void move(std::int32_t from, std::int32_t to);
  void rename(const std::string& name);
  [[nodiscard]] const base::ObjectRef& object() const { return object_; }

 private:
  base::ObjectRef object_;
  std::string called_;
};

/// The player's playlists and media as its raw player hands them out to scripts. Throws what the player
/// throws; number 91 while it isn't ready.
class PlayerLists {
 public:
  /// `script` is the plug-in's script object.
  explicit PlayerLists(base::ObjectRef script);

  /// The playlist of that name, without regard to case; one of exactly that spelling comes first. A name as
  /// lists show it, with single blanks for several, is found too.
  std::optional<PlayerList> find(const std::string& name);
  /// What is played, under its name with its mark.
  PlayerList queue();
  /// Where in the queue the current item stands, -1 when it is not in it.
  std::int32_t queuePlace();
  /// Throws what the player throws for a name that is in use.
  PlayerList make(const std::string& name);
  void remove(const PlayerList& list);
  /// The titles of "Album", "Artist", "Genre" or "PlayList" under that name, or all of "Media Library".
  std::optional<PlayerList> group(const std::string& category, const std::string& name);
  /// Whose each of these albums is: its album's artist, or that of its first title.
  std::vector<std::string> artistsOf(const std::vector<std::string>& albums);
  /// Plays the titles of a list, which may be one of no name.
  void play(const PlayerList& list);
  /// Plays a list from one place on.
  void playFrom(const PlayerList& list, std::int32_t at);
  /// Plays this one item, with what its list says of it.
  void play(const base::ObjectRef& media);
  /// Whether the plug-in, which knows names by their letters and digits alone, may take the name for
  /// another's.
  bool sharesKey(const std::string& category, const std::string& name);
  /// Whether the plug-in, asked for a playlist's title by its name, takes the one at that place.
  bool findsByName(const PlayerList& list, std::int32_t at);
  /// Whether the library has it, and does not only hear of it from a playlist.
  bool isInLibrary(const ListedItem& item);
  [[nodiscard]] base::Object& script() const { return *script_; }
  /// The raw player.
  [[nodiscard]] base::Object& player() const { return *player_; }
  /// A part of it: "controls", "settings".
  [[nodiscard]] base::ObjectRef part(const char* name) const;

 private:
  base::ObjectRef playlists();
  base::ObjectRef media();

  base::ObjectRef script_;
  base::ObjectRef player_;
  base::ObjectRef playlists_;
  base::ObjectRef media_;
};

}  // namespace standin
