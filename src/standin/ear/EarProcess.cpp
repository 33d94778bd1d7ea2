#include "standin/ear/EarProcess.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace standin {
namespace {

using Kind = Recogniser::Heard::Kind;

constexpr const char* kTooMany = "too many are speaking at once";

Recogniser::Heard Deaf(const std::string& why) { return {.kind = Kind::kDeaf, .reason = why}; }
Recogniser::Heard FailedOf(const std::string& why) { return Deaf("the recogniser has failed. " + why); }

/// What may be missing, by the word that tells of it in a complaint of the system's, and how to get it.
constexpr std::array<std::pair<std::string_view, const char*>, 4> kWays{
    {{"libpocketsphinx", "Install the packages libpocketsphinx3 and pocketsphinx-en-us"},
     {"libsphinx", "Install the packages libpocketsphinx3 and pocketsphinx-en-us"},
     {"libflite", "Install the package libflite1"},
     {"can’t be started: No such file", "It comes with the server: install that again"}}};

std::string WithWay(const std::string& why) {
  const auto* const way = std::find_if(kWays.begin(), kWays.end(), [&](const auto& each) {
    return why.find(each.first) != std::string::npos;
  });
  return way == kWays.end() ? why : why + ". " + way->second;
}

}  // namespace

/// It is kept, too: the process may die of it, or be another one when it ends.
class EarProcess::Flowing : public Recogniser::Growing {
 public:
  explicit Flowing(EarProcess& ears) : ears_(ears), alive_(ears.alive_) {
    if (!ears_.now_ || ears_.flowing_ != nullptr) return;
    ears_.flowing_ = this;
    number_ = ears_.now_->number;
    ears_.now_->child->send(ear::MessageKind::kBegin, {});
  }
  ~Flowing() override { leave(); }
  Flowing(const Flowing&) = delete;
  Flowing& operator=(const Flowing&) = delete;
  Flowing(Flowing&&) = delete;
  Flowing& operator=(Flowing&&) = delete;

  void more(const std::vector<std::int16_t>& piece) override {
    const std::size_t before = sound_.size();
    const std::size_t some = std::min(piece.size(), kLongestSeconds * kRate - before);
    sound_.insert(sound_.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(some));
    if (some > 0 && flows())
      ears_.now_->child->send(
          ear::MessageKind::kMore,
          ear::SoundContent({sound_.begin() + static_cast<std::ptrdiff_t>(before), sound_.end()}));
  }
  void end(Told told) override {
    const bool flowed = flows();
    leave();
    if (!flowed) return ears_.hear(std::move(sound_), std::move(told));
    if (ears_.full()) return told(Deaf(kTooMany));
    ears_.await(std::move(told));
    ears_.now_->child->send(ear::MessageKind::kEnd, {});
  }

 private:
  [[nodiscard]] bool flows() const { return ears_.flowing_ == this && ears_.hears(number_); }
  void leave() {
    if (!alive_.expired() && ears_.flowing_ == this) ears_.flowing_ = nullptr;
  }

  EarProcess& ears_;
  std::weak_ptr<bool> alive_;  ///< of that: the loop may keep a sound longer
  std::uint64_t number_ = 0;
  std::vector<std::int16_t> sound_;
};

EarProcess::EarProcess(bus::PollLoop& loop, Options options)
    : loop_(loop),
      options_(std::move(options)),
      pause_(options_.pause),
      again_(loop.makeTimer(options_.pause, [this] { startNext(); })) {}

EarProcess::~EarProcess() = default;

void EarProcess::enter(State state, std::string missing, std::string stale) {
  Status before = status_;
  status_.state = state;
  status_.missing = std::move(missing);
  status_.stale = std::move(stale);
  if (status_ != before) onChange();
}

void EarProcess::learn(ear::SpeechNetwork network) {
  network_ = ear::Encoded(network);
  pause_ = options_.pause;
  startNext();
}

void EarProcess::startNext() {
  again_->enabled(false);
  bury(std::move(next_));
  next_ = std::make_unique<Ear>();
  next_->number = ++ears_;
  // Whoever hears now goes on hearing; where there is nobody, all wait for the new one.
  if (!now_) enter(State::kStarting);
  Ear* const ear = next_.get();
  ear->child = std::make_unique<EarChild>(
      loop_, options_.program, options_.arguments,
      EarChild::Told{.message =
                         [this, ear, alive = std::weak_ptr(alive_)](const ear::Message& message) {
                           if (!alive.lock()) return false;
                           return ear == next_.get() ? nextTold(message) : nowTold(*ear, message);
                         },
                     .end =
                         [this, ear, alive = std::weak_ptr(alive_)](const std::string& why) {
                           if (alive.lock()) ended(*ear, why);
                         }});
  ear->child->send(ear::MessageKind::kLearn, *network_);
  ear->child->answerWithin(options_.learns);
}

void EarProcess::ended(Ear& ear, const std::string& why) {
  // It is gone before anybody is told: who is told may ask again at once.
  const std::deque<Told> asked = std::exchange(ear.asked, {});
  const std::string reason = WithWay(why);
  const auto leaves =
      std::find_if(leaving_.begin(), leaving_.end(), [&](const auto& each) { return each.get() == &ear; });
  if (&ear == next_.get()) {
    bury(std::move(next_));
    failed(reason);
  } else if (&ear == now_.get()) {
    bury(std::move(now_));
    failed(reason);
  } else if (leaves != leaving_.end()) {
    bury(std::move(*leaves));
    leaving_.erase(leaves);
  }
  for (const Told& told : asked) told(FailedOf(reason));
}

void EarProcess::failed(const std::string& why) {
  if (next_) return enter(State::kStarting);  // which will hear
  failedAt_ = loop_.now();
  again_->interval(pause_);
  again_->enabled(true);
  pause_ = std::min(pause_ * 2, options_.longestPause);
  if (now_) return enter(State::kReady, {}, why);
  enter(State::kFailed, why);
  for (const Sound& each : std::exchange(waiting_, {})) each.told(FailedOf(why));
}

bool EarProcess::nextTold(const ear::Message& message) {
  const std::optional<ear::Learnt> learnt =
      message.kind == ear::MessageKind::kReady ? ear::LearntIn(message.content) : std::nullopt;
  if (!learnt) return false;
  next_->child->answerWithin(base::Milliseconds(0));
  failedAt_.reset();
  if (now_ && !now_->asked.empty()) {
    leaving_.push_back(std::move(now_));
  } else {
    bury(std::move(now_));
  }
  now_ = std::move(next_);
  status_.words = learnt->words;
  status_.unspoken = learnt->unspoken;
  status_.state = State::kStarting;  // what it knows has changed in any case
  enter(State::kReady);
  for (Sound& each : std::exchange(waiting_, {})) ask(std::move(each));
  return true;
}

bool EarProcess::nowTold(Ear& ear, const ear::Message& message) {
  if (message.kind != ear::MessageKind::kHeard || ear.asked.empty()) return false;
  const std::optional<ear::Heard> heard = ear::HeardIn(message.content);
  if (!heard) return false;
  pause_ = options_.pause;  // it is of use
  const Told told = std::move(ear.asked.front());
  ear.asked.pop_front();
  ear.child->answerWithin(ear.asked.empty() ? base::Milliseconds(0) : options_.hears);
  const auto leaves =
      std::find_if(leaving_.begin(), leaving_.end(), [&](const auto& each) { return each.get() == &ear; });
  if (ear.asked.empty() && leaves != leaving_.end()) {
    std::unique_ptr<Ear> gone = std::move(*leaves);
    leaving_.erase(leaves);
    bury(std::move(gone));
  }
  if (heard->speech) {
    told({.kind = Kind::kWords, .words = heard->words, .confidence = heard->thousandths / 1000.0});
  } else {
    told({.kind = Kind::kSilence});
  }
  return true;
}

void EarProcess::bury(std::unique_ptr<Ear> ear) {
  if (!ear) return;
  loop_.post([gone = std::shared_ptr<Ear>(std::move(ear))] {});
}

void EarProcess::await(Told told) {
  if (now_->asked.empty()) now_->child->answerWithin(options_.hears);
  now_->asked.push_back(std::move(told));
}

void EarProcess::ask(Sound sound) {
  await(std::move(sound.told));
  now_->child->send(ear::MessageKind::kHear, ear::SoundContent(sound.samples));
}

bool EarProcess::rests() const { return failedAt_ && loop_.now() - *failedAt_ < options_.pause; }

void EarProcess::retry() {
  if (failedAt_ && !next_ && !rests()) startNext();
}

bool EarProcess::full() const { return waiting_.size() + (now_ ? now_->asked.size() : 0) >= kMostWaiting; }

std::unique_ptr<Recogniser::Growing> EarProcess::begin() { return std::make_unique<Flowing>(*this); }

void EarProcess::hear(std::vector<std::int16_t> sound, Told told) {
  sound.resize(std::min(sound.size(), kLongestSeconds * kRate));
  if (full()) return told(Deaf(kTooMany));
  if (now_) return ask({std::move(sound), std::move(told)});
  if (!next_ && (rests() || !network_))
    return told(
        Deaf(status_.missing.empty() ? "nobody has told the recogniser what can be said" : status_.missing));
  waiting_.push_back({std::move(sound), std::move(told)});
  if (!next_) startNext();
}

}  // namespace standin
