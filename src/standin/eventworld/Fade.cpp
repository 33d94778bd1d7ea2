#include "standin/eventworld/Fade.hpp"

#include <utility>

#include "standin/eventworld/RawPlayer.hpp"
#include "standin/eventworld/VolumeRamp.hpp"

namespace standin {
namespace {

/// A fade under way.
class Fade : public Deed {
 public:
  Fade(base::Loop& loop, PluginCalls& plugin, const FadeAction& action, EventWorld::Done done)
      : loop_(loop),
        plugin_(plugin),
        action_(action),
        done_(std::move(done)),
        timer_(loop.makeTimer(std::chrono::seconds(1), [this] { step(); })) {}

  ~Fade() override {
    call_.reset();
    if (before_ && givesBack() && !over_) {
      plugin_.callAnyway([volume = *before_](base::Object& vxif) { RawPlayer(vxif).volume(volume); }, {});
    }
  }
  Fade(const Fade&) = delete;
  Fade& operator=(const Fade&) = delete;
  Fade(Fade&&) = delete;
  Fade& operator=(Fade&&) = delete;

  void begin() {
    const auto volume = std::make_shared<std::int32_t>(0);
    call([volume](base::Object& vxif) { *volume = RawPlayer(vxif).volume(); },
         [this, volume] {
           before_ = *volume;
           since_ = loop_.now();
           ramp_ = {*before_, action_.to, std::chrono::seconds(action_.seconds)};
           timer_->interval(ramp_.step());
           timer_->enabled(true);
         });
  }

 private:
  [[nodiscard]] bool givesBack() const { return action_.then != FadeAction::Then::kNothing; }

  void step() {
    if (busy_) return;  // the plug-in is slow; the next step is a larger one
    const base::Milliseconds passed = loop_.now() - since_;
    const bool last = passed >= ramp_.length;
    call([volume = ramp_.at(passed)](base::Object& vxif) { RawPlayer(vxif).volume(volume); },
         [this, last] {
           if (last) finish();
         });
  }

  void finish() {
    timer_->enabled(false);
    if (!givesBack()) return end({});
    call(
        [volume = *before_, pauses = action_.then == FadeAction::Then::kPause](base::Object& vxif) {
          RawPlayer player(vxif);
          if (pauses) {
            player.pause();
          } else {
            player.stop();
          }
          player.volume(volume);
        },
        [this] { end({}); });
  }

  /// `then` only after a success; a failure ends the fade.
  void call(PluginKeeper::Command command, std::function<void()> then) {
    busy_ = true;
    call_ = plugin_.call(std::move(command), [this, then = std::move(then)](const std::string& failure) {
      busy_ = false;
      if (!failure.empty()) return end(failure);
      then();
    });
  }

  void end(const std::string& failure) {
    timer_->enabled(false);
    over_ = failure.empty();
    const EventWorld::Done done = std::exchange(done_, nullptr);
    if (done) done(failure);
  }

  base::Loop& loop_;
  PluginCalls& plugin_;
  FadeAction action_;
  EventWorld::Done done_;
  std::optional<std::int32_t> before_;
  VolumeRamp ramp_;
  base::Milliseconds since_{0};
  bool busy_ = false;
  bool over_ = false;
  std::unique_ptr<base::Timer> timer_;
  std::unique_ptr<Deed> call_;
};

}  // namespace

std::unique_ptr<Deed> BeginFade(base::Loop& loop, PluginCalls& plugin, const FadeAction& action,
                                EventWorld::Done done) {
  auto fade = std::make_unique<Fade>(loop, plugin, action, std::move(done));
  fade->begin();
  return fade;
}

}  // namespace standin
