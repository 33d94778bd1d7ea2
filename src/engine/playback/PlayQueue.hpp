#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/playback/ShuffleOrder.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// What is played, and in which order: a playlist, a place in it, and the two modes.
class PlayQueue {
 public:
  explicit PlayQueue(std::uint32_t seed) : order_(seed) {}

  /// Takes up a playlist at its beginning; with shuffle, anywhere.
  void assign(player::PlaylistRef playlist);
  /// Takes a newer version of the playlist without leaving the current item, if it is still in it.
  void replace(player::PlaylistRef playlist);
  /// Takes up a playlist at the item with that source, the one nearest to `near` if there are several; false
  /// without one, and then at the place `near` itself, as far as the list goes.
  bool assignAt(player::PlaylistRef playlist, const std::string& source, int near);
  [[nodiscard]] const player::PlaylistRef& playlist() const { return playlist_; }
  [[nodiscard]] const player::MediaRef& current() const { return current_; }
  [[nodiscard]] int count() const;
  /// The current item's place, or, when it has gone from the list, the one before what follows.
  [[nodiscard]] int index() const { return index_; }

  /// The playlist itself may have changed.
  void changed() { stale_ = true; }

  void moveTo(int index);
  /// To the media, which stood at `index` when it was looked up, wherever it stands now. If the playlist no
  /// longer has it, it is current all the same, and what follows is what would have followed there.
  void moveTo(const player::MediaRef& media, int index);
  /// To where the playlist begins, with shuffle to a new round.
  void rewind();
  /// The same for a playlist that was empty and has got items since.
  void takeUp();
  /// Nothing plays: an item that the list no longer has gives way to the one that comes after it.
  void letGo();
  /// Where the current item stands, -1 when the list no longer has it.
  [[nodiscard]] int place();
  /// `count` items have been put in right behind the current one: with shuffle, too, they come next.
  void comeNext(int first, int count);
  /// The place after the current one. At the end: the beginning if `wrap`, else none.
  std::optional<int> following(bool wrap);
  std::optional<int> preceding(bool wrap);

  [[nodiscard]] bool loop() const { return loop_; }
  void loop(bool value) { loop_ = value; }
  [[nodiscard]] bool shuffle() const { return shuffle_; }
  void shuffle(bool value);

 private:
  /// Finds the current item again after the playlist was changed.
  void catchUp();
  /// The place of the item with that source, the one nearest to `near` if there are several; -1 without any.
  [[nodiscard]] int placeOf(const std::string& source, int near) const;
  /// Keeps the round of the shuffle on the items that it was made of.
  void renumber();
  /// What tells the playlist's items from each other, in their order.
  [[nodiscard]] std::vector<std::size_t> keys() const;

  player::PlaylistRef playlist_;
  player::MediaRef current_;
  int index_ = 0;
  int knownCount_ = 0;
  bool gone_ = false;   ///< the current item is no longer in the playlist
  bool stale_ = false;  ///< the playlist may be another one than the places were found in
  bool loop_ = false;
  bool shuffle_ = false;
  ShuffleOrder order_;             ///< only kept up while shuffled
  std::vector<std::size_t> keys_;  ///< of the items that the order's numbers stand for
};

}  // namespace engine
