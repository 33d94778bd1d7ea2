#include "engine/playback/Crossfade.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "base/Attempt.hpp"

namespace engine {
namespace {

constexpr double kLead = 4;         // seconds in which the next title is opened
constexpr double kStep = 0.02;      // between two volumes of a fade
constexpr double kLongestLook = 1;  // the title may be played faster
constexpr double kShortestFade = 0.2;

/// The volume for a part of full loudness: an output's volume is heard as its third power.
std::int32_t Part(std::int32_t volume, double gain) {
  return static_cast<std::int32_t>(std::lround(volume * std::cbrt(std::clamp(gain, 0.0, 1.0))));
}

}  // namespace

Crossfade::Crossfade(base::Loop& loop, double seconds, MakeOutput make, Together together)
    : seconds_(seconds),
      make_(std::move(make)),
      together_(std::move(together)),
      timer_(loop.makeTimer(base::Milliseconds(1000), [this] { look(); })),
      post_(loop) {
  now_ = makeDeck();
}

Crossfade::~Crossfade() = default;

std::unique_ptr<Crossfade::Deck> Crossfade::makeDeck() {
  auto deck = std::make_unique<Deck>(*this);
  deck->output = make_(*deck);
  deck->output->volume(volume_);
  deck->output->mute(mute_);
  return deck;
}

void Crossfade::retire(std::unique_ptr<Deck> deck) {
  if (!deck) return;
  deck->entry = 0;
  deck->output->stop();
  deck->output->look({});
  post_([gone = std::shared_ptr<Deck>(std::move(deck))] {});
}

void Crossfade::dropSecond() {
  if (fading_) now_->output->volume(volume_);
  fading_ = false;
  retire(std::move(second_));
}

void Crossfade::forgetNext() {
  next_ = 0;
  handedOn_ = refused_ = false;
  timer_->enabled(false);
}

void Crossfade::load(EntryId entry, const std::string& location) {
  dropSecond();
  forgetNext();
  paused_ = false;
  location_ = location;
  now_->entry = entry;
  now_->length = 0;
  now_->ready = false;
  now_->output->load(entry, location);
}

void Crossfade::append(EntryId entry, const std::string& location) {
  next_ = entry;
  nextLocation_ = location;
  refused_ = false;
  handedOn_ = together_(location_, location);
  if (handedOn_)
    now_->output->append(entry, location);
  else
    look();
}

bool Crossfade::dropNext() {
  if (fading_) return false;
  if (handedOn_ && !now_->output->dropNext()) return false;
  dropSecond();
  forgetNext();
  return true;
}

void Crossfade::stop() {
  dropSecond();
  forgetNext();
  now_->entry = 0;
  now_->output->stop();
}

void Crossfade::pause(bool value) {
  paused_ = value;
  now_->output->pause(value);
  if (fading_) second_->output->pause(value);
  if (!value) look();
}

void Crossfade::seek(double seconds) {
  dropSecond();  // where the title is heard now, the next one is not
  now_->output->seek(seconds);
  if (next_ != 0 && !handedOn_) lookIn(kStep);
}

void Crossfade::speed(double factor) { now_->output->speed(factor); }

void Crossfade::volume(std::int32_t percent) {
  volume_ = percent;
  if (fading_) return mix();
  now_->output->volume(percent);
}

void Crossfade::mute(bool value) {
  mute_ = value;
  now_->output->mute(value);
  if (second_) second_->output->mute(value);
}

void Crossfade::look(base::PictureSize size) {
  size_ = size;
  now_->output->look(size);
}

void Crossfade::lookIn(double seconds) {
  timer_->interval(base::Milliseconds(static_cast<int>(std::clamp(seconds, kStep, kLongestLook) * 1000)));
  timer_->enabled(true);
}

void Crossfade::look() {
  timer_->enabled(false);
  if (next_ == 0 || handedOn_ || paused_) return;
  if (now_->length < 2 * seconds_) {
    if (now_->length > 0) return;  // too short: the next one follows at its end
    return lookIn(kLongestLook);
  }
  const double left = now_->length - now_->output->position();
  if (fading_) {
    mix();
    return lookIn(kStep);
  }
  if (left > seconds_ + kLead) return lookIn(left - seconds_ - kLead);
  if (!second_ && !refused_) prepare();
  if (refused_ || second_->failure) return;  // it follows at the end
  const bool opened = second_->ready && second_->length >= 2 * seconds_;
  if (left > seconds_) return lookIn(left - seconds_);
  if (!opened || left < kShortestFade) return;  // once it is opened, there is another look
  fading_ = true;
  span_ = left;
  mix();
  second_->output->pause(false);
  lookIn(kStep);
}

void Crossfade::prepare() {
  base::Handled(
      [&] {
        second_ = makeDeck();
        second_->entry = next_;
        second_->output->volume(0);
        second_->output->load(next_, nextLocation_);
        second_->output->pause(true);
      },
      [&](const base::Failure&) {
        second_.reset();
        refused_ = true;  // it is opened by the first one, when that has ended
      });
}

void Crossfade::mix() {
  const double left = now_->length - now_->output->position();
  const double done = std::clamp(1 - left / span_, 0.0, 1.0) * std::numbers::pi / 2;
  // Together as loud as one, as two different sounds add up.
  now_->output->volume(Part(volume_, std::cos(done)));
  second_->output->volume(Part(volume_, std::sin(done)));
}

void Crossfade::moveOn() {
  const EntryId before = now_->entry;
  const EntryId next = next_;
  const bool handedOn = handedOn_;
  events_->ended(before);
  if (now_->entry != before || next_ != next) return;  // whoever was told has chosen something else
  if (next == 0) return;
  location_ = nextLocation_;
  forgetNext();
  if (!second_) {
    now_->entry = next;
    now_->length = 0;
    now_->ready = false;
    if (!handedOn) now_->output->load(next, location_);
    return;
  }
  fading_ = false;
  retire(std::exchange(now_, std::move(second_)));
  now_->output->volume(volume_);
  now_->output->pause(paused_);
  now_->output->look(size_);
  now_->tellAll(*events_);
}

void Crossfade::Deck::tellAll(OutputEvents& events) const {
  // What is told may make another title this output's own.
  const EntryId mine = entry;
  const std::string said = title;
  const auto failed = failure;
  const bool ended = over;
  const double seconds = length;
  if (failed) return events.failed(mine, *failed);
  if (ready) {
    events.heightKnown(mine, height);
    events.started(mine);
  }
  if (entry == mine && seconds > 0) events.lengthKnown(mine, seconds);
  if (entry == mine && !said.empty()) events.titleTold(mine, said);
  if (entry == mine && ended) owner.moveOn();
}

void Crossfade::Deck::started(EntryId which) {
  if (which != entry) return;
  ready = true;
  if (owner.sounds(*this))
    owner.events_->started(which);
  else
    owner.look();
}

void Crossfade::Deck::heightKnown(EntryId which, std::int32_t lines) {
  if (which != entry) return;
  height = lines;
  if (owner.sounds(*this)) owner.events_->heightKnown(which, lines);
}

void Crossfade::Deck::lengthKnown(EntryId which, double seconds) {
  if (which != entry) return;
  length = seconds;
  if (owner.sounds(*this)) owner.events_->lengthKnown(which, seconds);
  owner.look();
}

void Crossfade::Deck::titleTold(EntryId which, const std::string& text) {
  if (which != entry) return;
  title = text;
  if (owner.sounds(*this)) owner.events_->titleTold(which, text);
}

void Crossfade::Deck::ended(EntryId which) {
  if (which != entry) return;
  over = true;
  if (owner.sounds(*this)) owner.moveOn();
}

void Crossfade::Deck::failed(EntryId which, const std::string& reason) {
  if (which != entry) return;
  if (!owner.sounds(*this)) {
    failure = reason;  // told in its turn
    return;
  }
  owner.dropSecond();
  owner.forgetNext();
  owner.events_->failed(which, reason);
}

void Crossfade::Deck::stalled(bool value) {
  if (owner.sounds(*this)) owner.events_->stalled(value);
}

}  // namespace engine
