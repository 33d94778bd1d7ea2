#include "standin/eventworld/Wake.hpp"

#include <utility>

#include "standin/eventworld/VolumeRamp.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kHeardWithin = std::chrono::seconds(10);
constexpr base::Milliseconds kLookEvery = std::chrono::milliseconds(250);
constexpr std::int32_t kPlayStatePlaying = 3;

/// A waking under way.
class Wake : public Deed {
 public:
  Wake(base::Loop& loop, PluginCalls& plugin, WakeWords say, WakeMemory& memory,
       std::shared_ptr<RepeatGuard> guard, WakeAction action, EventWorld::Done done)
      : loop_(loop),
        plugin_(plugin),
        say_(std::move(say)),
        memory_(memory),
        guard_(std::move(guard)),
        action_(std::move(action)),
        done_(std::move(done)),
        timer_(loop.makeTimer(kLookEvery, [this] { tick(); })) {}
  ~Wake() override {
    *alive_ = false;
    if (!rising_ && done_) memory_.putBack();  // broken off in the silence before the first sound
  }
  Wake(const Wake&) = delete;
  Wake& operator=(const Wake&) = delete;
  Wake(Wake&&) = delete;
  Wake& operator=(Wake&&) = delete;

  void begin() {
    call(
        [&memory = memory_, volume = action_.seconds > 0 ? 0 : action_.volume](base::Object& vxif) {
          RawPlayer player(vxif);
          memory.remember(player.place(), player.mark());
          // What goes on playing would be taken for the choice that isn't heard.
          player.stop();
          player.mute(false);
          player.volume(volume);
        },
        [this](const std::string& failure) {
          if (failure.empty()) return tryNext();
          failures_ = failure;
          lastResort();
        });
  }

 private:
  void tryNext() {
    timer_->enabled(false);
    if (choice_ == action_.choices.size()) return lastResort();
    const std::string& choice = action_.choices[choice_];
    // Woken twice, or by what an event has just played: the plug-in would leave it, and nothing be heard.
    const base::Milliseconds left = guard_->left(choice);
    waiting_ = left.count() > 0;
    if (waiting_) {
      timer_->interval(left);
      timer_->enabled(true);
      return;
    }
    lastPosition_.reset();
    call([guard = guard_, choice](base::Object& vxif) { guard->carryOut(vxif, choice); },
         [this](const std::string& failure) {
           if (!failure.empty()) return notHeard(failure);
           since_ = loop_.now();  // not before: a long list takes its time to begin
           timer_->interval(kLookEvery);
           timer_->enabled(true);
         });
  }

  void tick() {
    if (busy_) return;
    if (waiting_) return tryNext();
    if (rising_) return rise();
    const auto seen = std::make_shared<std::pair<std::int32_t, double>>();
    call(
        [&memory = memory_, seen](base::Object& vxif) {
          const RawPlayer player(vxif);
          *seen = {player.state(), player.position()};
          if (seen->first == kPlayStatePlaying) memory.plays(player.mark());
        },
        [this, seen](const std::string& failure) {
          const bool plays = failure.empty() && seen->first == kPlayStatePlaying;
          if (plays && lastPosition_ && seen->second > *lastPosition_) return heard();
          lastPosition_ = plays ? std::optional(seen->second) : std::nullopt;
          if (!failure.empty() || loop_.now() - since_ >= kHeardWithin) notHeard(failure);
        });
  }

  void notHeard(const std::string& failure) {
    timer_->enabled(false);
    if (!failure.empty()) failures_ = failure;
    ++choice_;
    call([](base::Object& vxif) { RawPlayer(vxif).stop(); }, [this](const std::string&) { tryNext(); });
  }

  void heard() {
    rising_ = true;
    memory_.watch();
    since_ = loop_.now();
    ramp_ = {0, action_.volume, std::chrono::seconds(action_.seconds)};
    timer_->interval(ramp_.step());
    rise();
  }

  void rise() {
    const base::Milliseconds passed = loop_.now() - since_;
    const bool last = passed >= ramp_.length;
    call([volume = ramp_.at(passed)](base::Object& vxif) { RawPlayer(vxif).volume(volume); },
         [this, last](const std::string& failure) {
           if (last || !failure.empty()) end(failure);
         });
  }

  void lastResort() {
    timer_->enabled(false);
    memory_.putBack();
    say_(action_.words.empty() ? "Wake up" : action_.words,
         [this, alive = alive_](const std::string& unheard) {
           if (!*alive) return;
           end("None of the choices was heard" + (failures_.empty() ? "" : " (" + failures_ + ")") +
               (unheard.empty() ? "; a tone and the words were, instead"
                                : "; nor were the words (" + unheard + ")"));
         });
  }

  void call(PluginKeeper::Command command, EventWorld::Done then) {
    busy_ = true;
    call_ = plugin_.call(std::move(command), [this, then = std::move(then)](const std::string& failure) {
      busy_ = false;
      then(failure);
    });
  }

  void end(const std::string& failure) {
    timer_->enabled(false);
    const EventWorld::Done done = std::exchange(done_, nullptr);
    if (done) done(failure);
  }

  base::Loop& loop_;
  PluginCalls& plugin_;
  WakeWords say_;
  WakeMemory& memory_;
  std::shared_ptr<RepeatGuard> guard_;
  WakeAction action_;
  EventWorld::Done done_;
  std::size_t choice_ = 0;
  std::string failures_;  ///< what the plug-in has failed with last
  std::optional<double> lastPosition_;
  VolumeRamp ramp_;
  base::Milliseconds since_{0};
  bool busy_ = false;
  bool rising_ = false;
  bool waiting_ = false;  ///< until the plug-in would carry out the next choice
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::unique_ptr<base::Timer> timer_;
  std::unique_ptr<Deed> call_;
};

}  // namespace

WakeMemory::WakeMemory(base::Loop& loop, PluginCalls& plugin, EventWorld::Done failed)
    : plugin_(plugin),
      failed_(std::move(failed)),
      soon_(loop.makeTimer(std::chrono::milliseconds(500), [this] {
        soon_->enabled(false);
        look();
      })) {}

void WakeMemory::remember(const PlayerPlace& place, const std::string& mark) {
  watching_ = false;
  if (place_ && mark == mark_) return;
  place_ = place;
  mark_ = mark;
}

void WakeMemory::putBack() {
  if (!place_) return;
  const PlayerPlace place = *std::exchange(place_, std::nullopt);
  plugin_.callAnyway([place](base::Object& vxif) { RawPlayer(vxif).putBack(place); },
                     [this](const std::string& failure) {
                       if (!failure.empty()) failed_(failure);
                     });
}

// Not at once: between two titles of a list the player stops for a moment too.
void WakeMemory::playbackEnded() {
  if (place_ && watching_) soon_->enabled(true);
}

void WakeMemory::look() {
  if (!place_ || !watching_) return;
  enum class Seen { kPlays, kStopped, kOther };
  const auto seen = std::make_shared<Seen>(Seen::kPlays);
  plugin_.callAnyway(
      [this, seen](base::Object& vxif) {
        const RawPlayer player(vxif);
        if (player.mark() != mark_) {
          *seen = Seen::kOther;
        } else if (!player.isActive()) {
          *seen = Seen::kStopped;
        }
      },
      [this, seen](const std::string& failure) {
        if (!failure.empty() || *seen == Seen::kPlays) return;
        if (*seen == Seen::kStopped) return putBack();
        place_.reset();
      });
}

std::unique_ptr<Deed> BeginWake(base::Loop& loop, PluginCalls& plugin, WakeWords say, WakeMemory& memory,
                                std::shared_ptr<RepeatGuard> guard, const WakeAction& action,
                                EventWorld::Done done) {
  auto wake =
      std::make_unique<Wake>(loop, plugin, std::move(say), memory, std::move(guard), action, std::move(done));
  wake->begin();
  return wake;
}

}  // namespace standin
