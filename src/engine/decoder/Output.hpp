#pragma once
#include <cstdint>
#include <string>

#include "base/MovingPicture.hpp"

namespace engine {

/// The number that the playback gives to one playing of one item.
using EntryId = std::uint64_t;

/// What the decoder tells, on the loop's thread and never from within a call of `Output`.
class OutputEvents {
 public:
  OutputEvents() = default;
  OutputEvents(const OutputEvents&) = delete;
  OutputEvents& operator=(const OutputEvents&) = delete;
  OutputEvents(OutputEvents&&) = delete;
  OutputEvents& operator=(OutputEvents&&) = delete;
  virtual ~OutputEvents() = default;

  /// The entry can be heard now.
  virtual void started(EntryId entry) = 0;
  /// How high its moving picture is, in lines; 0 without one. Comes before it is told as started.
  virtual void heightKnown(EntryId entry, std::int32_t height) = 0;
  /// How long it is, once that is known.
  virtual void lengthKnown(EntryId entry, double seconds) = 0;
  /// What a station says that it plays, when it says so; its bytes are a stranger's.
  virtual void titleTold(EntryId entry, const std::string& title) = 0;
  /// The last of its sound has been heard. An entry that was appended follows by itself.
  virtual void ended(EntryId entry) = 0;
  /// It can't be played, or not to its end. Nothing follows by itself.
  virtual void failed(EntryId entry, const std::string& reason) = 0;
  /// The network does not keep up, or does again.
  virtual void stalled(bool value) = 0;
};

/// What turns media into sound: one entry now, and one that follows without a gap. No call waits.
class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  Output(Output&&) = delete;
  Output& operator=(Output&&) = delete;
  virtual ~Output() = default;

  /// Drops everything and plays the entry, at normal speed and not paused.
  virtual void load(EntryId entry, const std::string& location) = 0;
  /// What follows the entry that plays.
  virtual void append(EntryId entry, const std::string& location) = 0;
  /// Nothing follows. False when it has moved on to what was appended already, though the entry that plays
  /// has not been heard to its end: then that follows all the same.
  virtual bool dropNext() = 0;
  virtual void stop() = 0;
  virtual void pause(bool value) = 0;
  /// Seconds from the start of the entry that plays.
  virtual void seek(double seconds) = 0;
  [[nodiscard]] virtual double position() const = 0;
  /// 1 is normal.
  virtual void speed(double factor) = 0;
  /// 0 to 100.
  virtual void volume(std::int32_t percent) = 0;
  virtual void mute(bool value) = 0;
  /// Somebody looks at its moving picture, that large; none is made for an empty size. Where the frames go is
  /// the output's own.
  virtual void look(base::PictureSize size) = 0;
};

}  // namespace engine
