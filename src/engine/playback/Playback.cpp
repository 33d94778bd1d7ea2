#include "engine/playback/Playback.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Failure.hpp"
#include "engine/library/Media.hpp"

namespace engine {
namespace {

using player::PlayState;

constexpr double kScanSpeed = 5.0;
constexpr base::Milliseconds kReverseStep{250};
constexpr int kToldOneByOne = 100;  // failures in a row, as many as the list of errors holds

}  // namespace

Playback::Playback(base::Loop& loop, Output& output, ErrorList& errors, std::uint32_t seed, Events events)
    : output_(output),
      errors_(errors),
      events_(std::move(events)),
      queue_(seed),
      reverse_(loop.makeTimer(kReverseStep, [this] { stepBack(); })) {}

void Playback::tell(PlayState state) {
  state_ = state;
  events_.place();
  events_.state(state);
}

bool Playback::active() const { return entry_ != 0; }

bool Playback::running() const {
  return state_ == player::kPlaying || state_ == player::kScanForward || state_ == player::kScanReverse;
}

void Playback::assign(const player::PlaylistRef& playlist) {
  endScan();
  if (active()) output_.stop();
  entry_ = nextEntry_ = 0;
  heldAtStart_ = false;
  putOff_.clear();
  startAt_ = 0;
  forgetFailures();
  queue_.assign(playlist);
  tell(queue_.current() ? player::kReady : player::kUndefined);
}

void Playback::preset(const player::PlaylistRef& playlist) {
  queue_.assign(playlist);
  state_ = queue_.current() ? player::kStopped : player::kUndefined;
}

void Playback::preset(const player::PlaylistRef& playlist, const std::string& source, int near,
                      double seconds) {
  const bool there = queue_.assignAt(playlist, source, near);
  state_ = queue_.current() ? player::kStopped : player::kUndefined;
  startAt_ = there && seconds < queue_.current()->duration() ? seconds : 0;
}

void Playback::refresh(const player::PlaylistRef& playlist) {
  queue_.replace(playlist);
  if (!active() && !queue_.current()) state_ = player::kUndefined;
  listChanged();
}

void Playback::listChanged() {
  tried_ = 0;
  queue_.changed();
  queue_.takeUp();
  if (!active()) queue_.letGo();
  if (!active() && !queue_.current()) state_ = player::kUndefined;
  if (state_ == player::kUndefined && queue_.current()) state_ = player::kStopped;
  if (running() || state_ == player::kPaused || state_ == player::kBuffering) prepareNext();
  events_.place();
}

void Playback::comeNext(int first, int count) {
  queue_.comeNext(first, count);
  if (active()) listChanged();
}

void Playback::playAt(int index) {
  if (index < 0 || index >= queue_.count()) throw base::Failure(base::number::kIndex);
  endScan();
  startAt_ = 0;
  heldAtStart_ = false;
  forgetFailures();
  queue_.moveTo(index);
  if (active()) output_.pause(false);
  begin();
}

void Playback::play() {
  switch (state_) {
    case player::kPaused:
      output_.pause(false);
      tell(player::kPlaying);
      tellPutOff();
      break;
    case player::kScanForward:
    case player::kScanReverse:
      endScan();
      tell(player::kPlaying);
      break;
    case player::kUndefined:
    case player::kStopped:
    case player::kReady:
    case player::kMediaEnded:
      queue_.takeUp();  // not every list tells that it was filled
      if (!queue_.current()) break;
      forgetFailures();
      begin();
      break;
    case player::kTransitioning: holdAtStart(false); break;
    default: break;  // under way already
  }
}

void Playback::begin() {
  entry_ = ++lastEntry_;
  nextEntry_ = 0;
  putOff_.clear();
  if (auto* loose = dynamic_cast<LooseMedia*>(queue_.current().get())) loose->streamTitle({});
  output_.load(entry_, LocationOf(*queue_.current()));
  events_.place();
  if (state_ != player::kTransitioning) tell(player::kTransitioning);
}

void Playback::holdAtStart(bool value) {
  if (std::exchange(heldAtStart_, value) != value) events_.place();
}

void Playback::pause() {
  if (state_ == player::kTransitioning) return holdAtStart(true);
  if (!running() && state_ != player::kBuffering) return;
  endScan();
  output_.pause(true);
  tell(player::kPaused);
}

void Playback::stop() {
  if (!active()) return;
  endScan();
  events_.place();  // for the last time where it was
  entry_ = nextEntry_ = 0;
  putOff_.clear();
  startAt_ = 0;
  heldAtStart_ = false;
  tellUntold();
  output_.stop();
  tell(player::kStopped);
}

void Playback::moveOn(std::optional<int> index) {
  if (!index) return;
  const bool wasActive = active();
  endScan();
  startAt_ = 0;
  heldAtStart_ = false;
  forgetFailures();
  queue_.moveTo(*index);
  if (wasActive) {
    begin();
  } else {
    tell(player::kReady);
  }
}

void Playback::next() { moveOn(queue_.following(queue_.loop() || queue_.shuffle())); }

void Playback::previous() { moveOn(queue_.preceding(queue_.loop() || queue_.shuffle())); }

void Playback::fastForward() {
  if (!running() && state_ != player::kPaused) return;
  if (state_ == player::kScanForward) return;
  endScan();
  if (state_ == player::kPaused) output_.pause(false);
  output_.speed(kScanSpeed);
  tell(player::kScanForward);
  tellPutOff();
}

void Playback::fastReverse() {
  if (!running() && state_ != player::kPaused) return;
  if (state_ == player::kScanReverse) return;
  endScan();
  output_.pause(true);
  reverse_->enabled(true);
  tell(player::kScanReverse);
  tellPutOff();
}

void Playback::tellPutOff() {
  const auto putOff = std::exchange(putOff_, {});
  for (const auto& event : putOff) event();
}

void Playback::stepBack() {
  const double step = kScanSpeed * static_cast<double>(kReverseStep.count()) / 1000.0;
  const double target = output_.position() - step;
  output_.seek(std::max(0.0, target));
  if (target > 0) return;
  endScan();
  tell(player::kPlaying);
}

void Playback::endScan() {
  if (state_ == player::kScanForward) output_.speed(1);
  if (state_ != player::kScanReverse) return;
  reverse_->enabled(false);
  output_.pause(false);
}

bool Playback::available(const std::string& step) {
  const bool any = queue_.count() > 0 || active();  // what plays may have been taken out of its list
  const bool wrap = queue_.loop() || queue_.shuffle();
  const bool seekable = running() || state_ == player::kPaused;
  const bool opens = state_ == player::kTransitioning;
  if (step == "play") return any && state_ != player::kBuffering && (!opens || heldAtStart_);
  if (step == "pause") return running() || state_ == player::kBuffering || (opens && !heldAtStart_);
  if (step == "stop") return active();
  if (step == "next") return queue_.following(wrap).has_value();
  if (step == "previous") return queue_.preceding(wrap).has_value();
  if (step == "fastforward") return seekable && state_ != player::kScanForward;
  if (step == "fastreverse") return seekable && state_ != player::kScanReverse;
  if (step == "currentposition") return seekable;
  if (step == "currentitem") return any;
  return false;
}

double Playback::position() const {
  if (!active()) return startAt_;
  return state_ == player::kTransitioning ? startAt_ : output_.position();
}

void Playback::position(double seconds) {
  const double wanted = std::max(0.0, seconds);
  if (running() || state_ == player::kPaused || state_ == player::kBuffering) {
    output_.seek(wanted);
  } else {
    startAt_ = wanted;
  }
  events_.place();
  events_.sought();
}

void Playback::loop(bool value) {
  queue_.loop(value);
  listChanged();
}

void Playback::shuffle(bool value) {
  queue_.shuffle(value);
  listChanged();
}

void Playback::prepareNext() {
  if (!putOff_.empty()) return;  // the output is past what is current here
  const auto index = queue_.following(queue_.loop());
  const player::MediaRef media = index ? queue_.playlist()->item(*index) : nullptr;
  const std::string location = media ? LocationOf(*media) : std::string();
  if (nextEntry_ != 0 && (!media || location != nextLocation_)) {
    if (!output_.dropNext()) return;  // too late: what is under way stays the next one
    nextEntry_ = 0;
  }
  if (!media) return;
  nextIndex_ = *index;
  nextMedia_ = media;
  if (nextEntry_ != 0) return;
  nextEntry_ = ++lastEntry_;
  nextLocation_ = location;
  output_.append(nextEntry_, location);
}

void Playback::heightKnown(EntryId entry, std::int32_t height) {
  if (!putOff_.empty()) {
    putOff_.emplace_back([this, entry, height] { heightKnown(entry, height); });
    return;
  }
  if (entry != entry_ || entry == 0) return;
  if (auto* media = dynamic_cast<EngineMedia*>(queue_.current().get())) media->pictureHeight(height);
}

void Playback::lengthKnown(EntryId entry, double seconds) {
  if (entry != entry_ || entry == 0) return;
  if (auto* loose = dynamic_cast<LooseMedia*>(queue_.current().get())) loose->duration(seconds);
  events_.length();
}

void Playback::titleTold(EntryId entry, const std::string& title) {
  if (entry != entry_ || entry == 0) return;
  auto* loose = dynamic_cast<LooseMedia*>(queue_.current().get());
  if (loose != nullptr && loose->streamTitle(title)) events_.title();
}

void Playback::started(EntryId entry) {
  if (!putOff_.empty()) {
    putOff_.emplace_back([this, entry] { started(entry); });
    return;
  }
  if (entry != entry_ || entry == 0) return;
  tellUntold();
  if (startAt_ > 0) output_.seek(startAt_);
  startAt_ = 0;
  prepareNext();
  const bool held = std::exchange(heldAtStart_, false);
  tell(player::kPlaying);
  if (held && entry == entry_) pause();
}

void Playback::ended(EntryId entry) {
  if (!putOff_.empty() || (state_ == player::kPaused && entry == entry_)) {
    // Nothing moves on while it is paused, even if the end came at the same moment.
    putOff_.emplace_back([this, entry] { ended(entry); });
    return;
  }
  if (entry != entry_ || entry == 0) return;
  endScan();
  forgetFailures();  // not at its start: some broken files start well
  tell(player::kMediaEnded);
  if (entry != entry_) return;  // whoever was told has chosen something else
  if (nextEntry_ != 0) {
    entry_ = nextEntry_;
    nextEntry_ = 0;
    queue_.moveTo(nextMedia_, nextIndex_);
    tell(player::kTransitioning);
    return;
  }
  if (const auto index = queue_.following(queue_.loop())) {
    queue_.moveTo(*index);
    begin();
    return;
  }
  entry_ = 0;
  heldAtStart_ = false;
  queue_.rewind();
  tell(player::kStopped);
}

void Playback::failed(EntryId entry, const std::string& reason) {
  if (!putOff_.empty() || (state_ == player::kPaused && entry == entry_)) {
    putOff_.emplace_back([this, entry, reason] { failed(entry, reason); });
    return;
  }
  if (entry != entry_ || entry == 0) return;
  endScan();
  nextEntry_ = 0;
  noteFailure(*queue_.current(), reason);
  const auto index = queue_.following(queue_.loop());
  if (!index || nothingCanBePlayed()) {
    entry_ = 0;
    heldAtStart_ = false;
    tellUntold();
    output_.stop();
    if (!index) queue_.rewind();
    tell(player::kStopped);
    return;
  }
  queue_.moveTo(*index);
  begin();
}

void Playback::noteFailure(const player::Media& media, const std::string& reason) {
  failed_.insert(LocationOf(media));
  std::string text = media.sourceURL() + ": " + reason;
  if (++failures_ <= kToldOneByOne) {
    errors_.add(kCannotPlay, std::move(text));
    events_.error();
  } else {
    lastUntold_ = std::move(text);
    ++untold_;
  }
}

void Playback::tellUntold() {
  if (untold_ == 0) return;
  errors_.add(kCannotPlay, std::to_string(untold_) + " more can't be played, the last one: " + lastUntold_);
  untold_ = 0;
  events_.error();
}

void Playback::forgetFailures() {
  tellUntold();
  failures_ = tried_ = 0;
  failed_.clear();
}

bool Playback::nothingCanBePlayed() {
  const int count = queue_.count();
  if (failures_ < count) return false;
  // A round that was begun in its middle, or shuffled anew, may not have come to every item yet.
  while (tried_ < count && failed_.contains(LocationOf(*queue_.playlist()->item(tried_)))) ++tried_;
  return tried_ >= count;
}

void Playback::stalled(bool value) {
  if (value && state_ == player::kPlaying) tell(player::kBuffering);
  if (!value && state_ == player::kBuffering) tell(player::kPlaying);
}

std::string StatusText(PlayState state) {
  static constexpr std::array<const char*, 12> kTexts{
      "",          "Stopped", "Paused",      "Playing",       "Scan forward", "Scan backward",
      "Buffering", "Waiting", "Media ended", "Connecting...", "Ready",        "Reconnecting"};
  const auto place = static_cast<std::size_t>(state);
  return place < kTexts.size() ? kTexts[place] : "";
}

}  // namespace engine
