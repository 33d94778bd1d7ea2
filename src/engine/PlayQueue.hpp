#pragma once
#include <cstdint>
#include <optional>

#include "engine/ShuffleOrder.hpp"
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
  [[nodiscard]] const player::PlaylistRef& playlist() const { return playlist_; }
  [[nodiscard]] const player::MediaRef& current() const { return current_; }
  [[nodiscard]] int count() const;

  void moveTo(int index);
  /// To where the playlist begins, with shuffle to a new round.
  void rewind();
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

  player::PlaylistRef playlist_;
  player::MediaRef current_;
  int index_ = 0;
  int knownCount_ = 0;
  bool gone_ = false;  ///< the current item is no longer in the playlist
  bool loop_ = false;
  bool shuffle_ = false;
  ShuffleOrder order_;
};

}  // namespace engine
