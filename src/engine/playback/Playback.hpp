#pragma once
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/Loop.hpp"
#include "engine/decoder/Output.hpp"
#include "engine/playback/ErrorList.hpp"
#include "engine/playback/PlayQueue.hpp"

namespace engine {

/// The states of playing. It drives an output through a queue, and tells each new state; `state` already has
/// the new value when it is told.
class Playback : public OutputEvents {
 public:
  struct Events {
    std::function<void(player::PlayState)> state;
    std::function<void()> error;           ///< an item was added to the error list
    std::function<void()> place = [] {};   ///< another list, item or position may be the one to go on from
    std::function<void()> title = [] {};   ///< the station that plays has gone on to another title
    std::function<void()> sought = [] {};  ///< another position was chosen
    std::function<void()> length = [] {};  ///< the item that plays turns out to be that long
  };

  Playback(base::Loop& loop, Output& output, ErrorList& errors, std::uint32_t seed, Events events);

  [[nodiscard]] player::PlayState state() const { return state_; }
  /// An item is loaded, or being loaded.
  [[nodiscard]] bool playing() const { return active(); }
  [[nodiscard]] const PlayQueue& queue() const { return queue_; }

  /// Stops what plays and takes up the playlist: ready, or without one, undefined.
  void assign(const player::PlaylistRef& playlist);
  /// The library at the start: taken up without telling a state.
  void preset(const player::PlaylistRef& playlist);
  /// What was played by an earlier player, stopped: `seconds` count from the start of the item with that
  /// source, which stood at `near`. Without it the item that stands there now begins at its start.
  void preset(const player::PlaylistRef& playlist, const std::string& source, int near, double seconds);
  /// A newer version of the same playlist.
  void refresh(const player::PlaylistRef& playlist);
  /// The playlist itself may have changed.
  void listChanged();
  /// `count` items have been put into it right behind the current one.
  void comeNext(int first, int count);
  /// Where the current item stands in the playlist, -1 when it is not in it.
  [[nodiscard]] int place() { return queue_.place(); }

  /// What is being opened plays once it is there, even if it was to be paused.
  void play();
  /// Plays the playlist's item at that place. Throws 9 where there is none.
  void playAt(int index);
  /// What is being opened, or what follows where it can't be, is paused once it is there.
  void pause();
  void stop();
  void next();
  void previous();
  void fastForward();
  void fastReverse();
  /// Whether the step of that name makes sense now. The name is in lower case.
  [[nodiscard]] bool available(const std::string& step);

  /// Playing or scanning.
  [[nodiscard]] bool running() const;
  [[nodiscard]] double position() const;
  void position(double seconds);
  void loop(bool value);
  void shuffle(bool value);

  void started(EntryId entry) override;
  void heightKnown(EntryId entry, std::int32_t height) override;
  void lengthKnown(EntryId entry, double seconds) override;
  void titleTold(EntryId entry, const std::string& title) override;
  void ended(EntryId entry) override;
  void failed(EntryId entry, const std::string& reason) override;
  void stalled(bool value) override;

 private:
  void tell(player::PlayState state);
  /// Loads the current item.
  void begin();
  /// Whether what is being opened is to be paused once it is there.
  void holdAtStart(bool value);
  void endScan();
  void stepBack();
  /// Hands the item that follows to the output in time.
  void prepareNext();
  void moveOn(std::optional<int> index);
  /// What came from the output while it was paused has its turn now.
  void tellPutOff();
  /// True while an item is loaded or being loaded.
  [[nodiscard]] bool active() const;
  /// Failures are told one by one; of very many in a row the rest is told as one.
  void noteFailure(const player::Media& media, const std::string& reason);
  void tellUntold();
  /// From now on they count anew.
  void forgetFailures();
  /// True when every item of the list has failed since something was played.
  [[nodiscard]] bool nothingCanBePlayed();

  Output& output_;
  ErrorList& errors_;
  Events events_;
  PlayQueue queue_;
  std::unique_ptr<base::Timer> reverse_;
  player::PlayState state_ = player::kUndefined;
  EntryId lastEntry_ = 0;
  EntryId entry_ = 0;      ///< 0 while nothing is loaded
  EntryId nextEntry_ = 0;  ///< 0 while nothing is appended
  int nextIndex_ = 0;      ///< where it stood in the playlist
  player::MediaRef nextMedia_;
  std::string nextLocation_;
  std::vector<std::function<void()>> putOff_;  ///< ends and starts that wait for a pause to end
  double startAt_ = 0;
  bool heldAtStart_ = false;                ///< only while something is being opened
  int failures_ = 0;                        ///< in a row
  std::unordered_set<std::string> failed_;  ///< the locations they were at
  int tried_ = 0;                           ///< so many items at the list's beginning are among them
  int untold_ = 0;
  std::string lastUntold_;
};

/// What a state is called.
std::string StatusText(player::PlayState state);

}  // namespace engine
