#include "engine/Player.hpp"

#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/card/CardOpener.hpp"
#include "engine/common/Poster.hpp"
#include "engine/decoder/MpvOutput.hpp"
#include "engine/library/Library.hpp"
#include "engine/library/Lists.hpp"
#include "engine/machine/CdDrives.hpp"
#include "engine/machine/Network.hpp"
#include "engine/playback/Crossfade.hpp"
#include "engine/playback/ErrorList.hpp"
#include "engine/playback/Playback.hpp"
#include "engine/playback/Projector.hpp"
#include "engine/playback/QueueList.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "engine/queue/QueueKeeper.hpp"

namespace engine {
namespace {

constexpr std::int32_t kDefaultVolume = 50;

class PlaybackControls : public player::Controls {
 public:
  explicit PlaybackControls(Playback& playback) : playback_(playback) {}

  [[nodiscard]] bool isAvailable(const std::string& step) const override {
    return playback_.available(base::LowerCase(step));
  }
  void play() override { playback_.play(); }
  void stop() override { playback_.stop(); }
  void pause() override { playback_.pause(); }
  void fastForward() override { playback_.fastForward(); }
  void fastReverse() override { playback_.fastReverse(); }
  void next() override { playback_.next(); }
  void previous() override { playback_.previous(); }
  [[nodiscard]] double currentPosition() const override { return playback_.position(); }
  void currentPosition(double seconds) override { playback_.position(seconds); }

 private:
  Playback& playback_;
};

/// "none", "read" and "full" in this order; -1 for anything else.
int RightsRank(const std::string& rights) {
  const std::string folded = base::LowerCase(rights);
  if (folded == "none") return 0;
  if (folded == "read") return 1;
  return folded == "full" ? 2 : -1;
}

class Preferences : public player::PlayerSettings {
 public:
  using ModeChange = std::function<void(const std::string&, bool)>;

  Preferences(Playback& playback, Output& output, std::string rights, ModeChange changed,
              std::function<void()> loudness)
      : playback_(playback),
        output_(output),
        rights_(std::move(rights)),
        changed_(std::move(changed)),
        loudness_(std::move(loudness)) {
    output_.volume(volume_);
  }

  [[nodiscard]] bool autoStart() const override { return autoStart_; }
  void autoStart(bool value) override { autoStart_ = value; }
  [[nodiscard]] bool mute() const override { return mute_; }
  void mute(bool value) override {
    mute_ = value;
    output_.mute(value);
    loudness_();
  }
  [[nodiscard]] std::int32_t volume() const override { return volume_; }
  void volume(std::int32_t value) override {
    if (value < 0 || value > 100) throw base::Failure(base::number::kInvalidArgument);
    volume_ = value;
    output_.volume(value);
    loudness_();
  }

  [[nodiscard]] bool getMode(const std::string& mode) const override {
    if (base::SameText(mode, "loop")) return playback_.queue().loop();
    if (base::SameText(mode, "shuffle")) return playback_.queue().shuffle();
    throw base::Failure(base::number::kInvalidArgument);
  }
  void setMode(const std::string& mode, bool value) override {
    const bool changed = getMode(mode) != value;
    const bool loop = base::SameText(mode, "loop");
    if (loop)
      playback_.loop(value);
    else
      playback_.shuffle(value);
    // Only a change is told. A new player has modes of its own until the saved ones are set: if setting the
    // mode that it has already were told as well, its listener would save that one over the saved one.
    if (changed) changed_(loop ? "Loop" : "Shuffle", value);
  }

  [[nodiscard]] std::string mediaAccessRights() const override { return rights_; }
  bool requestMediaAccessRights(const std::string& rights) override {
    const int wanted = RightsRank(rights);
    return wanted >= 0 && wanted <= RightsRank(rights_);
  }

 private:
  Playback& playback_;
  Output& output_;
  std::string rights_;
  ModeChange changed_;
  std::function<void()> loudness_;  ///< another volume, or muted or not
  bool autoStart_ = true;
  bool mute_ = false;
  std::int32_t volume_ = kDefaultVolume;
};

class Player : public player::WMP9 {
 public:
  Player(base::Loop& loop, const Config& config, player::WMP9Events& events,
         std::function<void(const std::string&)> log, std::function<void()> met, Screen* screen)
      : events_(events),
        log_(std::move(log)),
        met_(std::move(met)),
        post_(loop),
        screen_(screen),
        openCard_(CardOpener(config.graphics)),
        output_(makeOutput(loop, config)),
        playback_(loop, *output_, errors_, config.shuffleSeed.value_or(std::random_device{}()),
                  {[this](player::PlayState state) {
                     if (projector_) projector_->follow();
                     post_([this, state] { events_.PlayStateChange(state); });
                   },
                   [this] { post_([this] { events_.Error(); }); },
                   [this] {
                     if (keeper_) keeper_->note();
                     if (projector_) projector_->follow();
                     changed();
                   },
                   [this] {
                     post_([this] { events_.StreamTitleChange(); });
                     changed();
                   },
                   [this] { post_([this] { events_.Sought(); }); }, [this] { changed(); }}),
        controls_(playback_),
        settings_(
            playback_, *output_, config.mediaAccessRights,
            [this](const std::string& mode, bool value) {
              post_([this, mode, value] { events_.ModeChange(mode, value); });
            },
            [this] { changed(); }),
        library_(loop, config,
                 {[this] { libraryChanged(); }, [this](const std::string& line) { message(line); },
                  [this] { libraryScanned(); }, [this] { playlists_.libraryChanged(); }}),
        playlists_(loop, config.playlistFolder, library_,
                   {[this] { post_([this] { events_.PlaylistCollectionChange(); }); },
                    [this] { playback_.listChanged(); }, [this](const std::string& line) { message(line); },
                    // At once: who has renamed a playlist asks for the names on the same turn.
                    [this] { events_.PlaylistCollectionChange(); }}),
        drives_(config.cdDevices, config.findCdDrives, library_.shelf()) {
    playback_.preset(library_.getAll());
    if (screen_ != nullptr) project(loop);
    if (config.resume) takeUp(loop, config.dataFolder);
  }

  [[nodiscard]] std::string URL() const override {
    const auto& media = playback_.queue().current();
    return media ? media->sourceURL() : std::string();
  }
  void URL(const std::string& value) override {
    currentMedia(value.empty() ? nullptr : library_.mediaAt(value));
  }
  player::Controls& controls() override { return controls_; }
  player::PlayerSettings& settings() override { return settings_; }

  [[nodiscard]] player::MediaRef currentMedia() const override { return playback_.queue().current(); }
  void currentMedia(const player::MediaRef& media) override {
    if (!media) {
      assign(nullptr);
      return;
    }
    assign(std::make_shared<ListPlaylist>(media->name(), std::vector<player::MediaRef>{media}));
  }
  [[nodiscard]] player::PlaylistRef currentPlaylist() const override { return playback_.queue().playlist(); }
  void currentPlaylist(const player::PlaylistRef& playlist) override { assign(playlist); }

  player::PlaylistRef queue() override { return queue_; }
  [[nodiscard]] std::int64_t queueMark() const override { return queue_->mark(); }
  [[nodiscard]] std::int32_t queuePlace() override { return queueIsShown() ? playback_.place() : -1; }
  void playFrom(const player::PlaylistRef& playlist, std::int32_t index) override {
    if (!playlist) throw base::Failure(base::number::kObjectMissing);
    if (index < 0 || index >= playlist->count()) throw base::Failure(base::number::kIndex);
    take(playlist);
    playback_.playAt(index);
  }
  void playItem(std::int32_t index) override { playback_.playAt(index); }
  [[nodiscard]] std::int32_t playState() const override { return playback_.state(); }
  [[nodiscard]] std::string status() const override { return StatusText(playback_.state()); }
  [[nodiscard]] std::string versionInfo() const override { return "9.0.23"; }
  player::ErrorQueue& Error() override { return errors_; }
  player::CdromCollection& cdromCollection() override { return drives_; }
  [[nodiscard]] bool fullScreen() const override { return fullScreen_; }
  void fullScreen(bool value) override {
    fullScreen_ = value;
    if (projector_) projector_->full(value);
  }
  [[nodiscard]] bool isOnline() const override { return IsOnline(); }
  player::MediaCollection& mediaCollection() override { return library_; }
  player::PlaylistCollection& playlistCollection() override { return playlists_; }

 private:
  std::unique_ptr<MpvOutput> makeDecoder(base::Loop& loop, const Config& config) {
    return std::make_unique<MpvOutput>(
        loop, config, sectorsOfDrives(), [this](const std::string& line) { message(line); },
        [this](const std::string& location) { return library_.loudnessAt(location); }, shown(), openCard_);
  }

  [[nodiscard]] SectorsOf sectorsOfDrives() const {
    return [this](const std::string& device, int track) { return drives_.sectorsOf(device, track); };
  }

  [[nodiscard]] PictureRenderer::Shown shown() const {
    if (screen_ == nullptr) return {};
    return [screen = screen_](base::FrameRef frame) { screen->show(std::move(frame)); };
  }

  void project(base::Loop& loop) {
    visualiser_.emplace(
        loop, sectorsOfDrives(), [this](const std::string& line) { message(line); }, shown());
    projector_.emplace(Projector::Parts{
        *screen_, playback_, *output_,
        SoundPicture{[this](const std::string& location, double seconds, bool paused,
                            base::PictureSize size) { visualiser_->show(location, seconds, paused, size); },
                     [this] { visualiser_->end(); }}});
  }

  /// The playback hears of it, though nothing is told before it stands.
  std::unique_ptr<Output> makeOutput(base::Loop& loop, const Config& config) {
    if (config.crossfade <= 0) {
      auto output = makeDecoder(loop, config);
      output->listener(playback_);
      return output;
    }
    auto make = [this, &loop, config, number = 0](OutputEvents& events) mutable {
      Config own = config;
      // One decoder can't write into the file of another.
      if (++number > 1 && own.audioOutput.rfind("pcm:", 0) == 0)
        own.audioOutput += "." + std::to_string(number);
      auto output = makeDecoder(loop, own);
      output->listener(events);
      return output;
    };
    auto output = std::make_unique<Crossfade>(loop, config.crossfade, make,
                                              [this](const std::string& first, const std::string& second) {
                                                return library_.followsOnAlbum(first, second);
                                              });
    output->listener(playback_);
    return output;
  }

  /// What an earlier player played, and everything from now on for a later one.
  void takeUp(base::Loop& loop, const std::string& folder) {
    keeper_.emplace(QueueKeeper::Parts{loop, playback_, library_, playlists_, [this] { return ownChoice_; },
                                       [this] { return queue_->mark(); },
                                       [this](const std::string& line) { message(line); }},
                    folder);
    if (const auto taken = keeper_->takeUp()) {
      ownChoice_ = taken->chosen;
      if (taken->mark != 0) queue_->mark(taken->mark);
    }
    keeper_->begin();
  }

  void take(const player::PlaylistRef& playlist) {
    ownChoice_ = true;
    queue_->begin();
    playback_.assign(playlist);
  }

  void assign(const player::PlaylistRef& playlist) {
    take(playlist);
    if (settings_.autoStart()) playback_.play();
  }

  /// What is there only because nobody has chosen anything is no queue before it plays.
  [[nodiscard]] bool queueIsShown() const { return ownChoice_ || playback_.playing(); }

  /// Of a step that changes much the whole is told at its end.
  void changed() {
    if (std::exchange(changeTold_, true)) return;
    post_([this] {
      changeTold_ = false;
      events_.Changed();
    });
  }

  /// Somebody has changed the queue: it is his choice from then on.
  void queueEdited() { ownChoice_ = true; }

  void libraryChanged() {
    if (!ownChoice_) playback_.refresh(library_.getAll());
    events_.MediaCollectionChange();
  }

  void libraryScanned() {
    if (!ownChoice_) playback_.refresh(library_.getAll());
    if (!wasEmpty_ || library_.empty()) return;
    wasEmpty_ = false;
    if (met_) post_([this] { met_(); });
  }

  void message(const std::string& line) {
    post_([this, line] {
      if (log_) {
        log_(line);
      } else {
        events_.Warning(0, 0, line);
      }
    });
  }

  player::WMP9Events& events_;
  std::function<void(const std::string&)> log_;
  std::function<void()> met_;
  ErrorList errors_;
  Poster post_;
  Screen* screen_;
  OpenCard openCard_;
  bool changeTold_ = false;
  std::unique_ptr<Output> output_;
  Playback playback_;
  PlaybackControls controls_;
  Preferences settings_;
  Library library_;
  StoredPlaylists playlists_;
  CdDrives drives_;
  std::shared_ptr<QueueList> queue_{std::make_shared<QueueList>(
      playback_,
      QueueList::Parts{.shown = [this] { return queueIsShown(); },
                       .mediaOf = [this](const player::ToldMedia& told) { return playlists_.mediaOf(told); },
                       .edited = [this] { queueEdited(); }})};
  std::optional<QueueKeeper> keeper_;
  std::optional<Visualiser> visualiser_;
  std::optional<Projector> projector_;
  bool fullScreen_ = false;
  bool wasEmpty_ = library_.empty();
  bool ownChoice_ = false;  ///< somebody has chosen what to play; until then it is the whole library
};

}  // namespace

std::unique_ptr<player::WMP9> MakePlayer(base::Loop& loop, const Config& config, player::WMP9Events& events,
                                         std::function<void(const std::string&)> log,
                                         std::function<void()> met, Screen* screen) {
  return std::make_unique<Player>(loop, config, events, std::move(log), std::move(met), screen);
}

}  // namespace engine
