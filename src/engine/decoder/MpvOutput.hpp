#pragma once
#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "base/Loop.hpp"
#include "engine/card/GraphicsCard.hpp"
#include "engine/common/Config.hpp"
#include "engine/common/Poster.hpp"
#include "engine/decoder/DataLimit.hpp"
#include "engine/decoder/DecoderAddress.hpp"
#include "engine/decoder/DecoderFiles.hpp"
#include "engine/decoder/Leveller.hpp"
#include "engine/decoder/MemoryWatch.hpp"
#include "engine/decoder/MpvHandle.hpp"
#include "engine/decoder/Output.hpp"
#include "engine/decoder/PictureRenderer.hpp"

struct mpv_event;
struct mpv_event_end_file;
struct mpv_event_property;

namespace engine {

/// The output through libmpv. Its threads only wake the loop; all of its events are handled there. The
/// decoder takes more memory than all the rest of the player, so it is made when something is played for the
/// first time.
class MpvOutput : public Output {
 public:
  /// How loud what lies there is, as its tags tell it.
  using LoudnessOf = std::function<Loudness(const std::string& location)>;

  /// `message` gets lines for people, on the loop's thread. `loudnessOf` is only asked where it is needed.
  /// `shown` gets the frames of moving pictures while somebody looks at them, drawn by a card where there is
  /// one to open.
  /// Throws number 429 when there is too little memory for the decoder; should that be so when it is made,
  /// what was to be played fails.
  MpvOutput(base::Loop& loop, const Config& config, SectorsOf sectorsOf,
            std::function<void(const std::string&)> message, LoudnessOf loudnessOf = {},
            PictureRenderer::Shown shown = {}, OpenCard openCard = {});
  ~MpvOutput() override;
  MpvOutput(const MpvOutput&) = delete;
  MpvOutput& operator=(const MpvOutput&) = delete;
  MpvOutput(MpvOutput&&) = delete;
  MpvOutput& operator=(MpvOutput&&) = delete;

  /// Set once, before anything is played.
  void listener(OutputEvents& events) { events_ = &events; }

  void load(EntryId entry, const std::string& location) override;
  void append(EntryId entry, const std::string& location) override;
  bool dropNext() override;
  void stop() override;
  void pause(bool value) override;
  void seek(double seconds) override;
  [[nodiscard]] double position() const override { return position_; }
  void speed(double factor) override;
  void volume(std::int32_t percent) override;
  void mute(bool value) override;
  void look(base::PictureSize size) override;

 private:
  using FileId = std::int64_t;

  /// Makes the decoder if there is none yet. Throws as `MpvHandle`.
  void needDecoder();
  void drain();
  void handle(const mpv_event& event);
  void fileGiven(const mpv_event& event);
  void fileEnded(const mpv_event_end_file& end);
  void fileStarted(FileId file);
  /// The file that was started waits to be opened: it is decided how far it may lead.
  void aboutToOpen(std::uint64_t held);
  /// The address that the held file of a station would open, which may be one that the station sent.
  void addressTold(const mpv_event& event);
  /// The decoder's tracks: whether there is a moving picture among them.
  void tracksTold(const mpv_event& event);
  void audible();
  /// Or no longer.
  void showPicture();
  /// The picture is drawn with something else from now on.
  void canvasChanged();
  /// Asks how much of the held sound is still to be heard.
  void askHeard();
  void heardTold(const mpv_event& event);
  void propertyTold(const mpv_event_property& property);
  /// The sound of what had ended has been heard to its end: tells so, and what has started meanwhile.
  void tellHeld();
  void tellStarted(EntryId entry);
  [[nodiscard]] EntryId entryOf(FileId file) const;
  void forget();
  /// What is opened fills the memory: it can't be played, or not to its end.
  void tooLarge();
  void addFile(EntryId entry, const std::string& location, const char* how);

  base::Loop& loop_;
  OutputEvents* events_ = nullptr;
  SectorsOf sectorsOf_;
  std::function<void(const std::string&)> message_;
  MpvOptions options_;
  Leveller leveller_;
  LoudnessOf loudnessOf_;
  PictureRenderer::Shown shown_;
  OpenCard openCard_;
  base::Milliseconds cardPatience_;
  std::string streamTitle_;
  bool wantsDevice_;  ///< silence is not what was asked for
  bool inSilence_ = false;
  std::unique_ptr<base::Timer> heardTimer_;
  MemoryWatch watch_;
  DataLimit limit_;                         ///< from what is opened until the decoder is idle
  std::map<FileId, EntryId> files_;         ///< what the decoder's own list holds of ours
  std::map<EntryId, std::string> entries_;  ///< why each is not opened; empty when it is
  std::set<EntryId> stations_;              ///< those of them that may lead on to other addresses
  std::map<EntryId, std::string> tracks_;   ///< the addresses of those that are opened in their turn only
  FileId playing_ = 0;
  std::uint64_t heldStation_ = 0;  ///< the file that waits to be opened
  bool opening_ = false;           ///< the file that plays can't be heard yet
  bool tracksKnown_ = false;
  bool audibleFirst_ = false;  ///< it could be heard before its tracks were known
  std::int32_t height_ = 0;    ///< of its moving picture
  EntryId held_ = 0;           ///< decoded to its end, still being heard
  EntryId startedMeanwhile_ = 0;
  bool paused_ = false;
  std::int32_t volume_ = 100;
  bool mute_ = false;
  base::PictureSize size_;  ///< how large it is looked at
  bool decodesPicture_ = false;
  DecoderFiles decoderFiles_;
  std::set<EntryId> dropped_;  ///< what may still be begun, as the decoder was about to when it was dropped
  double position_ = 0;
  double duration_ = 0;
  std::atomic<bool> woken_{false};
  Poster post_;
  std::optional<MpvHandle> mpv_;  // its threads call `woken_` and `post_`
  std::optional<PictureRenderer> renderer_;
};

}  // namespace engine
