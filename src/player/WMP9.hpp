#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Failure.hpp"

/// The player's object model, under its own names. A property is an overloaded pair: without an argument it
/// reads, with one it writes. Every call may throw Failure with the player's own error number; an index out
/// of range throws number 9, use of something absent number 91. All calls come on the loop's thread.
namespace player {

/// Base of the model's classes: they are used by reference only.
class Modelled {
 public:
  Modelled() = default;
  Modelled(const Modelled&) = delete;
  Modelled& operator=(const Modelled&) = delete;
  Modelled(Modelled&&) = delete;
  Modelled& operator=(Modelled&&) = delete;
  virtual ~Modelled() = default;
};

/// The numbers of `playState`.
enum PlayState : std::int32_t {
  kUndefined = 0,
  kStopped = 1,
  kPaused = 2,
  kPlaying = 3,
  kScanForward = 4,
  kScanReverse = 5,
  kBuffering = 6,
  kWaiting = 7,
  kMediaEnded = 8,
  kTransitioning = 9,
  kReady = 10,
  kReconnecting = 11,
};

/// The answer of `getItemInfoByType("WM/Picture", …)`.
struct Picture {
  std::string url;  ///< an address that a download can read, also "file:"; empty without a picture
};

/// One piece of media.
class Media : public Modelled {
 public:
  [[nodiscard]] virtual std::string name() const = 0;
  /// Writes `name`. Not every player's media takes one.
  virtual void rename(const std::string& /*title*/) { throw base::Failure(base::number::kNoSuchMember); }
  [[nodiscard]] virtual std::string sourceURL() const = 0;
  /// The value of an attribute such as "Artist", "Album", "Genre", "Duration", "SourceURL", "WM/AlbumTitle",
  /// "WM/WMCollectionID", "WM/MCDI", "StreamTitle" (what a station says that it plays); empty for one that is
  /// unknown.
  [[nodiscard]] virtual std::string getItemInfo(const std::string& attribute) const = 0;
  [[nodiscard]] virtual Picture getItemInfoByType(const std::string& attribute, const std::string& language,
                                                  std::int32_t index) const = 0;
  /// Seconds.
  [[nodiscard]] virtual double duration() const = 0;
  /// "mm:ss", or "hh:mm:ss" from one hour on.
  [[nodiscard]] virtual std::string durationString() const = 0;
  /// Pixels; 0 for media without a picture of its own.
  [[nodiscard]] virtual std::int32_t imageSourceHeight() const = 0;
};
using MediaRef = std::shared_ptr<Media>;

/// A title as it is told for a place in a playlist; all but the address may be unknown.
struct ToldMedia {
  std::string url;
  std::string title;
  std::string artist;
  double seconds = 0;
};

/// An ordered list of media. Only one from the playlist collection can be changed with lasting effect.
class Playlist : public Modelled {
 public:
  [[nodiscard]] virtual std::string name() const = 0;
  virtual void name(const std::string& value) = 0;
  [[nodiscard]] virtual std::int32_t count() const = 0;
  /// `index` from 0 to count - 1.
  [[nodiscard]] virtual MediaRef item(std::int32_t index) const = 0;
  virtual void appendItem(const MediaRef& media) = 0;
  virtual void insertItem(std::int32_t index, const MediaRef& media) = 0;
  virtual void removeItem(const MediaRef& media) = 0;
  virtual void moveItem(std::int32_t oldIndex, std::int32_t newIndex) = 0;

  // Of this system's own, for whoever changes lists of thousands from another process.

  /// Puts all of them in at one go: media of the library where it knows the address, and otherwise what is
  /// told of it, whether or not there is such a file now. Throws 5 for a list that is not stored.
  virtual void insertItems(std::int32_t /*index*/, const std::vector<ToldMedia>& /*items*/) {
    throw base::Failure(base::number::kInvalidArgument, "The list is not a stored playlist");
  }
  /// Grows by one with each item that is put in, taken out or moved, and by some number where items may be
  /// shown as others than before. Begins anew, above all that was, with every player. 0 for a list that is
  /// not stored.
  [[nodiscard]] virtual std::int64_t revision() const { return 0; }
};
using PlaylistRef = std::shared_ptr<Playlist>;

class PlaylistArray : public Modelled {
 public:
  [[nodiscard]] virtual std::int32_t count() const = 0;
  [[nodiscard]] virtual PlaylistRef item(std::int32_t index) const = 0;
};
using PlaylistArrayRef = std::shared_ptr<PlaylistArray>;

class StringCollection : public Modelled {
 public:
  [[nodiscard]] virtual std::int32_t count() const = 0;
  [[nodiscard]] virtual std::string item(std::int32_t index) const = 0;
};
using StringCollectionRef = std::shared_ptr<StringCollection>;

class MediaCollection : public Modelled {
 public:
  /// Adds a file or an address to the library.
  virtual MediaRef add(const std::string& url) = 0;
  virtual PlaylistRef getAll() = 0;
  virtual PlaylistRef getByName(const std::string& name) = 0;
  virtual PlaylistRef getByAttribute(const std::string& attribute, const std::string& value) = 0;
  virtual StringCollectionRef getAttributeStringCollection(const std::string& attribute,
                                                           const std::string& mediaType) = 0;
};

class PlaylistCollection : public Modelled {
 public:
  virtual PlaylistArrayRef getAll() = 0;
  virtual PlaylistArrayRef getByName(const std::string& name) = 0;
  virtual PlaylistRef newPlaylist(const std::string& name) = 0;
  virtual void remove(const PlaylistRef& playlist) = 0;
};

class Cdrom : public Modelled {
 public:
  [[nodiscard]] virtual std::string driveSpecifier() const = 0;
  /// The tracks of the disc in the drive.
  virtual PlaylistRef playlist() = 0;
  virtual void eject() = 0;
};

class CdromCollection : public Modelled {
 public:
  [[nodiscard]] virtual std::int32_t count() const = 0;
  virtual std::shared_ptr<Cdrom> item(std::int32_t index) = 0;
};

struct ErrorItem {
  std::int32_t errorCode = 0;
  std::string errorDescription;
};

class ErrorQueue : public Modelled {
 public:
  [[nodiscard]] virtual std::int32_t errorCount() const = 0;
  [[nodiscard]] virtual ErrorItem item(std::int32_t index) const = 0;
  virtual void clearErrorQueue() = 0;
};

class Controls : public Modelled {
 public:
  /// Whether a step such as "Play", "Pause", "Stop", "Next", "Previous", "FastForward", "FastReverse" makes
  /// sense now. Names compare without regard to case.
  [[nodiscard]] virtual bool isAvailable(const std::string& step) const = 0;
  virtual void play() = 0;  ///< takes a pause back from what is being opened
  virtual void stop() = 0;
  virtual void pause() = 0;  ///< what is being opened once it plays; "Play" is available till then
  virtual void fastForward() = 0;
  virtual void fastReverse() = 0;
  virtual void next() = 0;
  virtual void previous() = 0;
  /// Seconds from the item's start.
  [[nodiscard]] virtual double currentPosition() const = 0;
  virtual void currentPosition(double seconds) = 0;
};

class PlayerSettings : public Modelled {
 public:
  [[nodiscard]] virtual bool autoStart() const = 0;
  virtual void autoStart(bool value) = 0;
  [[nodiscard]] virtual bool mute() const = 0;
  virtual void mute(bool value) = 0;
  /// 0 to 100.
  [[nodiscard]] virtual std::int32_t volume() const = 0;
  virtual void volume(std::int32_t value) = 0;
  /// "loop" and "shuffle", without regard to case.
  [[nodiscard]] virtual bool getMode(const std::string& mode) const = 0;
  virtual void setMode(const std::string& mode, bool value) = 0;
  /// "none", "read" or "full".
  [[nodiscard]] virtual std::string mediaAccessRights() const = 0;
  virtual bool requestMediaAccessRights(const std::string& rights) = 0;
};

/// The player control itself.
class WMP9 : public Modelled {
 public:
  [[nodiscard]] virtual std::string URL() const = 0;
  virtual void URL(const std::string& value) = 0;
  virtual Controls& controls() = 0;
  virtual PlayerSettings& settings() = 0;
  [[nodiscard]] virtual MediaRef currentMedia() const = 0;
  virtual void currentMedia(const MediaRef& media) = 0;
  [[nodiscard]] virtual PlaylistRef currentPlaylist() const = 0;
  virtual void currentPlaylist(const PlaylistRef& playlist) = 0;
  [[nodiscard]] virtual std::int32_t playState() const = 0;
  /// What the player is doing, in words; may be empty.
  [[nodiscard]] virtual std::string status() const = 0;
  [[nodiscard]] virtual std::string versionInfo() const = 0;
  virtual ErrorQueue& Error() = 0;
  virtual CdromCollection& cdromCollection() = 0;
  [[nodiscard]] virtual bool fullScreen() const = 0;
  virtual void fullScreen(bool value) = 0;
  [[nodiscard]] virtual bool isOnline() const = 0;
  virtual MediaCollection& mediaCollection() = 0;
  virtual PlaylistCollection& playlistCollection() = 0;

  // Of this system's own, for whoever shows and changes from another process what is played.

  /// What is played and comes after it, as a list of the player's own: changing it changes no stored
  /// playlist, and what sounds goes on. Nothing in it until somebody has chosen something.
  virtual PlaylistRef queue() { return currentPlaylist(); }
  /// Names the queue as long as nothing else is chosen to be played; another one does not get it.
  [[nodiscard]] virtual std::int64_t queueMark() const { return 0; }
  /// Where the current item stands in the queue, -1 when it is not in it.
  [[nodiscard]] virtual std::int32_t queuePlace() { return -1; }
  /// Plays the list from the item at that index on. Throws 9 where there is none.
  virtual void playFrom(const PlaylistRef& playlist, std::int32_t /*index*/) {
    currentPlaylist(playlist);
    controls().play();
  }
  /// Goes on with the queue's item at that index. Throws 9 where there is none.
  virtual void playItem(std::int32_t /*index*/) { controls().play(); }
};

/// What the player reports. Always called on the loop's thread, on a turn of its own; only a
/// change of the playlists may be told inside the call that has made it.
class WMP9Events {
 public:
  WMP9Events() = default;
  WMP9Events(const WMP9Events&) = delete;
  WMP9Events& operator=(const WMP9Events&) = delete;
  WMP9Events(WMP9Events&&) = delete;
  WMP9Events& operator=(WMP9Events&&) = delete;
  virtual ~WMP9Events() = default;

  virtual void PlayStateChange(std::int32_t newState) = 0;
  /// `modeName` is "Loop" or "Shuffle".
  virtual void ModeChange(const std::string& modeName, bool newValue) = 0;
  virtual void Error() = 0;
  virtual void Warning(std::int32_t warningType, std::int32_t param, const std::string& description) = 0;
  virtual void MediaCollectionChange() = 0;
  virtual void PlaylistCollectionChange() = 0;
  virtual void DoubleClick() = 0;

  // Of this system's own.

  /// The station that plays has gone on to another title: the current item's "StreamTitle" is another.
  virtual void StreamTitleChange() {}
  /// What is shown of the player may be another than before: its state, its item, the queue, a mode, how loud
  /// it is. Changes that come together are told once.
  virtual void Changed() {}
  /// Somebody has chosen another place in the item.
  virtual void Sought() {}
};

/// Makes the player control. Throws number 429 when it can't be created.
using PlayerFactory = std::function<std::unique_ptr<WMP9>(WMP9Events&)>;

}  // namespace player
