#include "standin/scripts/ScriptRun.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace standin {
namespace {

constexpr const char* kStopped = "the script was stopped";
constexpr const char* kTooLong = "the script was stopped: it took too long";

}  // namespace

ScriptRun::ScriptRun(std::string name, base::Loop& loop, const std::shared_ptr<ScriptObjects>& objects,
                     ScriptLimits limits)
    : name_(std::move(name)), objects_(objects), limits_(limits), gate_(loop, limits.whole) {}

base::Value ScriptRun::ask(std::int32_t object, Work work) {
  struct Reply {
    base::Value value;
    std::optional<base::Failure> failure;
  };
  const auto reply = std::make_shared<Reply>();
  const Clock::time_point from = Clock::now();
  {
    const std::lock_guard lock(mutex_);
    waiting_ = true;
  }
  const LoopGate::Outcome outcome =
      gate_.run([known = objects_, object, reply, work = std::move(work)](const std::function<void()>& done) {
        const auto objects = known.lock();
        if (!objects) return done();
        ScriptObjects& its = *objects;
        its.with(
            object, [&its, work](base::Object& found) { return work(its, found); },
            [objects, reply, done](const base::Value& value, const base::Failure* failure) {
              reply->value = value;
              if (failure != nullptr) reply->failure = *failure;
              done();
            });
      });
  {
    const std::lock_guard lock(mutex_);
    waiting_ = false;
    waited_ += Clock::now() - from;
  }
  if (outcome != LoopGate::Outcome::kDone) throw base::Failure(base::number::kHostGone, kStopped);
  if (reply->failure) throw base::Failure(*reply->failure);
  return reply->value;
}

base::Value ScriptRun::call(std::int32_t object, const std::string& name, base::Args args) {
  return ask(object, [name, args = std::move(args)](ScriptObjects& objects, base::Object& found) {
    base::Args given = objects.unwrappedAll(args);
    return found.call(name, given);
  });
}

base::Value ScriptRun::get(std::int32_t object, const std::string& name) {
  return ask(object, [name](ScriptObjects&, base::Object& found) { return found.get(name); });
}

void ScriptRun::put(std::int32_t object, const std::string& name, const base::Value& value) {
  ask(object, [name, value](ScriptObjects& objects, base::Object& found) {
    found.put(name, objects.unwrapped(value));
    return base::Value();
  });
}

bool ScriptRun::isField(std::int32_t object, const std::string& name) {
  return base::ToBoolean(ask(object, [object, name](ScriptObjects& objects, base::Object& found) {
    return base::Value(objects.isField(found, object, name));
  }));
}

void ScriptRun::sleep(double seconds) {
  const auto time = std::chrono::duration<double>(std::clamp(seconds, 0.0, 86400.0));
  const Clock::time_point from = Clock::now();
  const Clock::time_point end =
      std::min(from + std::chrono::duration_cast<Clock::duration>(time), begun_ + limits_.whole);
  std::unique_lock lock(mutex_);
  waiting_ = true;
  changed_.wait_until(lock, end, [this] { return stopped_; });
  waiting_ = false;
  waited_ += Clock::now() - from;
}

void ScriptRun::print(std::string_view text) {
  static constexpr std::string_view kCut = "… the rest of the output is left out\n";
  const std::lock_guard lock(mutex_);
  if (cut_) return;
  cut_ = output_.size() + text.size() > limits_.output;
  output_ += cut_ ? kCut : text;
}

const char* ScriptRun::reasonAt(Clock::time_point now) {
  if (stopped_) return kStopped;
  if (now - begun_ > limits_.whole || now - begun_ - waited_ > limits_.computing) return kTooLong;
  return nullptr;
}

const char* ScriptRun::endReason() {
  const std::lock_guard lock(mutex_);
  return reasonAt(Clock::now());
}

void ScriptRun::run(const std::string& text, const std::function<void()>& ended) {
  ScriptOutcome outcome;
  try {
    outcome = RunLua(name_, text, *this);
  } catch (...) {
    outcome = {base::CurrentFailure().description(), 0};
  }
  const std::lock_guard lock(mutex_);
  outcome_ = std::move(outcome);
  ended_ = true;
  changed_.notify_all();
  if (!abandoned_) ended();
}

void ScriptRun::stop() {
  {
    const std::lock_guard lock(mutex_);
    if (!stopped_) stoppedAt_ = Clock::now();
    stopped_ = true;
  }
  changed_.notify_all();
  gate_.close();
}

bool ScriptRun::overdue(std::chrono::milliseconds grace) {
  const std::lock_guard lock(mutex_);
  if (ended_ || (waiting_ && !stopped_)) return false;
  const Clock::time_point then = Clock::now() - grace;
  return stopped_ ? stoppedAt_ < then : reasonAt(then) != nullptr;
}

bool ScriptRun::abandon() {
  const std::lock_guard lock(mutex_);
  if (ended_) return false;
  abandoned_ = true;
  outcome_ = {"the script could not be stopped: it is left to itself", 0};
  return true;
}

bool ScriptRun::waitForEnd(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [this] { return ended_; });
}

ScriptRun::Report ScriptRun::report(std::size_t from) {
  const std::lock_guard lock(mutex_);
  const std::size_t at = std::min(from, output_.size());
  return {name_, !ended_ && !abandoned_, output_.substr(at), output_.size(), outcome_};
}

}  // namespace standin
