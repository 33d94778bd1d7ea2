#include "standin/room/RoomMicrophone.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "ear/Messages.hpp"

namespace standin {
namespace {

constexpr const char* kSettings = "voice.ini";
constexpr const char* kSection = "Voice";
constexpr const char* kListens = "ListensInTheRoom";
/// No session of the web's is called so.
constexpr const char* kRoom = "the room";
constexpr const char* kOnlySilence =
    "Only silence comes from the microphone. See whether it is muted, and whether it is the system’s default "
    "source";
constexpr base::Milliseconds kLongestPause = std::chrono::minutes(10);
constexpr base::Milliseconds kLook = std::chrono::seconds(2);
/// More than two things that are said one after the other nobody waits for.
constexpr int kMostUnanswered = 2;
/// So long, from when the house has asked it, a question is answered in the room.
constexpr std::size_t kAnswers = 10 * EnergyGate::kRate;
constexpr int kMostInVain = 2;
constexpr base::Milliseconds kLongestPeace = std::chrono::minutes(16);
constexpr const char* kPlayerDevices[] = {"Media Player Status", "Media Player Title"};

}  // namespace

RoomMicrophone::RoomMicrophone(const Parts& parts)
    : parts_(parts),
      gate_({.begins = [this] { begins(); },
             .more = [this](const std::vector<std::int16_t>& piece) { sound_->more(piece); },
             .ends = [this] { ends(); },
             .nothing = [this] { nothing(); }}),
      again_(parts.loop.makeTimer(kShortestPause,
                                  [this] {
                                    again_->enabled(false);
                                    startNext();
                                  })),
      look_(parts.loop.makeTimer(kLook, [this] { look(); })),
      devices_(parts.house.hearDevices([this](const Device& device) { hearPlayer(device); })) {
  if (parts_.house.settings.get(kSettings, kSection, kListens) == "1") begin();
}

RoomMicrophone::~RoomMicrophone() = default;

void RoomMicrophone::soon(std::function<void()> work) {
  parts_.loop.post([work = std::move(work), alive = std::weak_ptr(alive_)] {
    if (alive.lock()) work();
  });
}

void RoomMicrophone::on(bool wished) {
  parts_.house.settings.save(kSettings, kSection, kListens, wished ? "1" : "0");
  const bool works = status_.state == State::kStarting || status_.state == State::kListening;
  if (wished && !works) begin();
  if (wished) return;
  again_->enabled(false);
  drop();
  enter(State::kOff);
}

void RoomMicrophone::begin() {
  pause_ = kShortestPause;
  parts_.voice.wake();
  again_->enabled(false);
  enter(State::kStarting);
  startNext();
}

/// What was being said is not heard to its end.
void RoomMicrophone::drop() {
  ++turn_;
  look_->enabled(false);
  check_.reset();
  gate_.rest();
  awaitAnswer(0);
  if (!child_) return;
  child_->endSoon({});
  parts_.loop.post([gone = std::shared_ptr<ChildProgram>(std::move(child_))] {});  // it may be at work
}

void RoomMicrophone::startNext() {
  drop();
  // Each that is installed, once.
  while (next_ < parts_.programs.size()) {
    const ChildProgram::Command command = CommandOf(parts_.programs[next_++]);
    if (command.program.empty()) continue;
    check_.emplace(parts_.loop.now());
    look_->enabled(true);
    child_ = std::make_unique<ChildProgram>(
        parts_.loop, command,
        ChildProgram::Told{.come =
                               [this, mine = turn_, alive = std::weak_ptr(alive_)](std::string& bytes) {
                                 if (alive.lock() && mine == turn_) come(bytes);
                               },
                           .end =
                               [this, mine = turn_, alive = std::weak_ptr(alive_)](const std::string& why) {
                                 if (alive.lock() && mine == turn_) failed(why);
                               }});
    return;
  }
  next_ = 0;
  std::string why;
  for (const std::string& each : std::exchange(troubles_, {})) why += (why.empty() ? "" : ". ") + each;
  if (why.empty() && !parts_.programs.empty()) {
    why = "No program that records is installed. Install the package ";
    for (const CaptureProgram& each : parts_.programs)
      why += (&each == &parts_.programs.front() ? "" : " or ") + each.package;
  }
  again_->interval(pause_);
  again_->enabled(true);
  pause_ = std::min(pause_ * 2, kLongestPause);
  enter(State::kFailed, why);
}

void RoomMicrophone::failed(const std::string& why) {
  parts_.house.log.write("Info", "The room’s microphone (" + parts_.programs[next_ - 1].name + "): " + why);
  if (check_->proved()) {
    // The others have nothing better to give: it is the microphone that has gone.
    pause_ = kShortestPause;
    next_ = parts_.programs.size();
    troubles_.clear();
  }
  troubles_.push_back(WithAdvice(why));
  startNext();
}

void RoomMicrophone::look() {
  const std::string trouble = check_->trouble(parts_.loop.now());
  if (!trouble.empty()) return failed(trouble);
  if (status_.state != State::kListening) return;
  const std::string silence = check_->onlySilence() ? kOnlySilence : "";
  if (silence != status_.trouble) enter(State::kListening, silence);
}

void RoomMicrophone::come(std::string& bytes) {
  const std::vector<std::int16_t> sound = ear::SoundIn(bytes);
  bytes.erase(0, sound.size() * 2);  // of the last sample only a half may be there
  if (sound.empty()) return;
  status_.samples += sound.size();
  check_->take(sound, parts_.loop.now());
  if (const std::string trouble = check_->trouble(parts_.loop.now()); !trouble.empty())
    return failed(trouble);
  if (status_.state != State::kListening) {
    troubles_.clear();
    enter(State::kListening);
  }
  const AudioEvents& events = parts_.speech.events();
  const bool quiet = events.making() || events.interrupted();
  if (std::exchange(quiet_, quiet) != quiet) quiet ? gate_.playersLeave() : gate_.playersReturn();
  if (parts_.speech.speaking() || parts_.quiet.hasOthers(kRoom)) return gate_.pause();
  gate_.take(sound);
  // Who has begun to answer in time may end.
  if (answerWithin_ > 0 && !sound_ && unanswered_ == 0)
    awaitAnswer(answerWithin_ - std::min(answerWithin_, sound.size()));
}

void RoomMicrophone::hearPlayer(const Device& device) {
  const std::string name = device.fullName();
  if (std::find(std::begin(kPlayerDevices), std::end(kPlayerDevices), name) == std::end(kPlayerDevices))
    return;
  std::string tells = std::to_string(device.value) + " " + device.text;
  if (std::exchange(playing_[name], tells) == tells) return;
  // While players make room they tell of that. Somebody else's command leaves them little time to be heard.
  const AudioEvents& events = parts_.speech.events();
  if (!events.making() && !(events.interrupted() && sound_)) soon([this] { gate_.rest(); });
}

bool RoomMicrophone::makesRoom() const { return inVain_ < kMostInVain || parts_.loop.now() >= peaceUntil_; }

void RoomMicrophone::awaitAnswer(std::size_t samples) {
  const bool over = samples == 0 && answerWithin_ > 0;
  answerWithin_ = samples;
  gate_.awaitsWord(samples > 0);
  if (!over) return;
  parts_.voice.forgetQuestion(kRoom);
  soon([this] { quietEnds(); });
}

void RoomMicrophone::begins() {
  sound_ = parts_.voice.begin();
  if (!makesRoom()) return;
  soon([this] { parts_.quiet.begin(kRoom); });
}

void RoomMicrophone::nothing() {
  sound_.reset();
  soon([this] { quietEnds(); });
}

void RoomMicrophone::understood(const Understanding& understanding) {
  using Kind = Understanding::Kind;
  if (understanding.kind == Kind::kDeaf) return;
  const bool nobody = understanding.kind == Kind::kUnknown || understanding.kind == Kind::kSilence;
  // A television that is half understood is asked back, and never answers.
  if (!nobody && understanding.kind != Kind::kUnclear) {
    inVain_ = 0;
    peace_ = kShortestPeace;
  } else if (parts_.speech.events().making() && ++inVain_ >= kMostInVain) {
    peaceUntil_ = parts_.loop.now() + peace_;
    peace_ = std::min(peace_ * 2, kLongestPeace);
  }
  if (!nobody) awaitAnswer(understanding.kind == Kind::kUnclear ? kAnswers : 0);
}

void RoomMicrophone::ends() {
  soon([this, sound = std::exchange(sound_, nullptr)] {
    if (unanswered_ >= kMostUnanswered) return;
    ++unanswered_;
    parts_.voice.end({.session = kRoom, .room = true}, sound,
                     [this, alive = std::weak_ptr(alive_)](const Understanding& understanding) {
                       if (!alive.lock()) return;
                       --unanswered_;
                       understood(understanding);
                       soon([this] { quietEnds(); });  // behind the answer, where that is said aloud
                       if (understanding.kind == Understanding::Kind::kSilence) return;
                       ++status_.heard;
                       status_.last = understanding;
                       parts_.house.live.tell("room", "{}");
                     });
  });
}

void RoomMicrophone::quietEnds() {
  // Who was asked aloud is waited for.
  const bool asked = answerWithin_ > 0 && parts_.voice.speaks();
  if (!sound_ && unanswered_ == 0 && !asked) parts_.quiet.end(kRoom);
}

void RoomMicrophone::enter(State state, const std::string& trouble) {
  status_.state = state;
  status_.trouble = trouble;
  parts_.house.live.tell("room", "{}");
}

}  // namespace standin
