#pragma once
#include <map>
#include <set>

#include "base/Failure.hpp"
#include "player/WMP9.hpp"
#include "support/Journal.hpp"

namespace support {

using base::Failure;

class FakeMedia : public player::Media {
 public:
  std::string title;
  std::map<std::string, std::string> info;
  double seconds = 0;
  std::string url;          ///< empty for one that is made of the title
  bool renames = false;     ///< takes another name
  std::string picture;      ///< the address of the picture in it
  std::int32_t height = 0;  ///< of the picture that it moves, in pixels

  FakeMedia(std::string name, std::string artist, std::string album, std::string genre)
      : title(std::move(name)),
        info{{"Artist", std::move(artist)}, {"Album", std::move(album)}, {"Genre", std::move(genre)}} {}
  [[nodiscard]] std::string name() const override { return title; }
  void rename(const std::string& value) override {
    if (!renames) throw Failure(base::number::kPermissionDenied);
    title = value;
  }
  [[nodiscard]] std::string sourceURL() const override { return url.empty() ? "file:" + title : url; }
  [[nodiscard]] std::string getItemInfo(const std::string& attribute) const override {
    const auto found = info.find(attribute);
    return found == info.end() ? "" : found->second;
  }
  [[nodiscard]] player::Picture getItemInfoByType(const std::string& /*attribute*/,
                                                  const std::string& /*language*/,
                                                  std::int32_t /*index*/) const override {
    return {picture};
  }
  [[nodiscard]] double duration() const override { return seconds; }
  [[nodiscard]] std::string durationString() const override { return "03:25"; }
  [[nodiscard]] std::int32_t imageSourceHeight() const override { return height; }
};

/// A player that records what it is told and does nothing of its own accord.
class FakePlayer : public player::WMP9,
                   public player::Controls,
                   public player::PlayerSettings,
                   public player::ErrorQueue,
                   public player::CdromCollection {
 public:
  FakePlayer(Journal& journal, player::WMP9Events& events) : journal_(journal), events_(events) {}

  // What it answers.
  std::int32_t state = player::kStopped;
  std::string statusText;
  std::string version = "9.0.1";
  std::string rights = "full";
  bool grantsRights = true;
  std::set<std::string> unavailable;
  bool muted = false;
  std::int32_t level = 50;
  std::int32_t loudest = 1'000'000;  ///< more is refused
  std::map<std::string, bool> modes;
  bool answersModes = true;  ///< sends ModeChange when setMode changes one
  player::MediaRef media;
  player::PlaylistRef playlist;
  double position = 0;
  bool full = false;                                ///< screen
  player::MediaCollection* mediaLibrary = nullptr;  ///< such as those of a FakeLibrary
  player::PlaylistCollection* playlistLibrary = nullptr;
  std::vector<player::ErrorItem> errors;
  std::int32_t drives = 1;
  bool ignoresMute = false;
  bool online = false;
  std::set<std::string> failing;  ///< calls that fail
  player::WMP9Events& events() { return events_; }

  // WMP9
  [[nodiscard]] std::string URL() const override { return {}; }
  void URL(const std::string& value) override { told("URL " + value); }
  player::Controls& controls() override { return *this; }
  player::PlayerSettings& settings() override { return *this; }
  [[nodiscard]] player::MediaRef currentMedia() const override { return media; }
  void currentMedia(const player::MediaRef& value) override {
    told("currentMedia " + (value ? value->name() : "nothing"));
    media = value;
  }
  [[nodiscard]] player::PlaylistRef currentPlaylist() const override { return playlist; }
  void currentPlaylist(const player::PlaylistRef& value) override {
    told("currentPlaylist " + (value ? value->name() : "nothing"));
    playlist = value;
  }
  [[nodiscard]] std::int32_t playState() const override { return state; }
  [[nodiscard]] std::string status() const override {
    if (failing.count("status") > 0) throw Failure(base::number::kDeviceIo);
    return statusText;
  }
  [[nodiscard]] std::string versionInfo() const override { return version; }
  player::ErrorQueue& Error() override { return *this; }
  player::CdromCollection& cdromCollection() override { return *this; }
  [[nodiscard]] bool fullScreen() const override { return full; }
  void fullScreen(bool value) override { full = value; }
  [[nodiscard]] bool isOnline() const override { return online; }
  player::MediaCollection& mediaCollection() override { return Present(mediaLibrary); }
  player::PlaylistCollection& playlistCollection() override { return Present(playlistLibrary); }

  // Controls
  [[nodiscard]] bool isAvailable(const std::string& step) const override {
    return unavailable.count(step) == 0;
  }
  void play() override { told("play"); }
  void stop() override { told("stop"); }
  void pause() override { told("pause"); }
  void fastForward() override { told("fastForward"); }
  void fastReverse() override { told("fastReverse"); }
  void next() override { told("next"); }
  void previous() override { told("previous"); }
  [[nodiscard]] double currentPosition() const override { return position; }
  void currentPosition(double seconds) override { told("currentPosition " + std::to_string(int(seconds))); }

  // PlayerSettings
  [[nodiscard]] bool autoStart() const override { return true; }
  void autoStart(bool value) override { told(value ? "autoStart on" : "autoStart off"); }
  [[nodiscard]] bool mute() const override { return muted; }
  void mute(bool value) override {
    told(value ? "mute on" : "mute off");
    if (!ignoresMute) muted = value;
  }
  [[nodiscard]] std::int32_t volume() const override {
    if (failing.count("read volume") > 0) throw Failure(base::number::kDeviceIo);
    return level;
  }
  void volume(std::int32_t value) override {
    if (value > loudest) throw Failure(base::number::kInvalidArgument);
    told("volume " + std::to_string(value));
    level = value;
  }
  [[nodiscard]] bool getMode(const std::string& mode) const override {
    const auto found = modes.find(mode);
    return found != modes.end() && found->second;
  }
  void setMode(const std::string& mode, bool value) override {
    told("setMode " + mode + (value ? " on" : " off"));
    const bool changed = getMode(mode) != value;
    modes[mode] = value;
    if (answersModes && changed) events_.ModeChange(mode, value);
  }
  [[nodiscard]] std::string mediaAccessRights() const override { return rights; }
  bool requestMediaAccessRights(const std::string& wanted) override {
    told("requestMediaAccessRights " + wanted);
    return grantsRights;
  }

  // ErrorQueue
  [[nodiscard]] std::int32_t errorCount() const override { return static_cast<std::int32_t>(errors.size()); }
  [[nodiscard]] player::ErrorItem item(std::int32_t index) const override {
    if (index < 0 || index >= errorCount()) throw Failure(base::number::kIndex);
    return errors[static_cast<std::size_t>(index)];
  }
  void clearErrorQueue() override { told("clearErrorQueue"); }

  // CdromCollection
  [[nodiscard]] std::int32_t count() const override { return drives; }
  std::shared_ptr<player::Cdrom> item(std::int32_t index) override {
    if (index < 0 || index >= drives) throw Failure(base::number::kIndex);
    return std::make_shared<Drive>(journal_, index);
  }

 private:
  class Drive : public player::Cdrom {
   public:
    Drive(Journal& journal, std::int32_t index) : journal_(journal), index_(index) {}
    [[nodiscard]] std::string driveSpecifier() const override { return "D:"; }
    player::PlaylistRef playlist() override { return nullptr; }
    void eject() override { journal_.add("player: eject " + std::to_string(index_)); }

   private:
    Journal& journal_;
    std::int32_t index_;
  };

  template <class Collection>
  static Collection& Present(Collection* collection) {
    if (collection == nullptr) throw Failure(base::number::kObjectMissing);
    return *collection;
  }

  void told(const std::string& what) {
    journal_.add("player: " + what);
    if (failing.count(what) > 0) throw Failure(base::number::kDeviceIo);
  }

  Journal& journal_;
  player::WMP9Events& events_;
};

}  // namespace support
