#include "standin/scripts/ScriptRun.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace standin {
namespace {

using scripting::Ask;
using scripting::MessageKind;

constexpr const char* kStopped = "the script was stopped";
using scripting::kTooLong;
constexpr const char* kEnded = "the script was ended: ";
constexpr const char* kNonsense = "the script was ended: its process talks nonsense";
/// What its process says in place of the output that is too much.
constexpr std::size_t kLongestCut = 100;
constexpr double kLongestSleep = 86400;  // seconds

std::uint32_t Small(std::chrono::milliseconds time) { return static_cast<std::uint32_t>(time.count()); }

std::string OrderOf(const std::string& name, std::string text, const ScriptLimits& limits) {
  const scripting::Order order{.name = name,
                               .text = std::move(text),
                               .computing = Small(limits.computing),
                               .whole = Small(limits.whole),
                               .output = static_cast<std::uint32_t>(limits.output),
                               .memory = static_cast<std::uint32_t>(limits.memory)};
  return scripting::Framed(MessageKind::kRun, scripting::Encoded(order));
}

/// What the object is asked to do.
ScriptObjects::Work WorkOf(ScriptObjects& objects, const Ask& ask) {
  switch (ask.kind) {
    case MessageKind::kCall:
      return [&objects, ask](base::Object& found) {
        base::Args args = objects.unwrappedAll(ask.args);
        return found.call(ask.name, args);
      };
    case MessageKind::kPut:
      return [&objects, ask](base::Object& found) {
        found.put(ask.name, objects.unwrapped(ask.args.at(0)));
        return base::Value();
      };
    case MessageKind::kIsField:
      return [&objects, ask](base::Object& found) {
        return base::Value(objects.isField(found, ask.object, ask.name));
      };
    default: return [ask](base::Object& found) { return found.get(ask.name); };
  }
}

}  // namespace

ScriptRun::ScriptRun(const Parts& parts, std::string name, std::string text, std::function<void()> ended)
    : name_(std::move(name)),
      loop_(parts.loop),
      objects_(parts.objects),
      limits_(parts.limits),
      told_(std::move(ended)),
      since_(loop_.now()),
      watch_(loop_.makeTimer(limits_.computing + limits_.grace, [this] { watch(); })),
      whole_(loop_.makeTimer(limits_.whole + limits_.grace,
                             [this] {
                               end({kTooLong, 0});
                             })),
      sleep_(loop_.makeTimer(limits_.whole,
                             [this] {
                               sleep_->enabled(false);
                               answer({}, nullptr);
                             })),
      // Of the server's own words it needs the time zone alone.
      child_(loop_, {.program = parts.program, .environment = {"TZ"}},
             {.come = [this](std::string& all) { come(all); },
              .end =
                  [this](const std::string& why) {
                    end({kEnded + reasonOf(why), 0});
                  }}) {
  child_.send(OrderOf(name_, std::move(text), limits_));
  watch_->enabled(true);
  whole_->enabled(true);
}

std::string ScriptRun::reasonOf(const std::string& why) const {
  const char* signal = child_.signal() == 0 ? nullptr : ::sigdescr_np(child_.signal());
  return signal == nullptr ? why : signal + (" (signal " + std::to_string(child_.signal())) + ")";
}

void ScriptRun::come(std::string& come) {
  std::string_view left = come;
  try {
    while (!ended_) {
      const auto message = scripting::TakeMessage(left, scripting::kLongestAsked);
      if (!message) break;
      if (!hear(*message)) end({kNonsense, 0});
    }
  } catch (const std::length_error&) {
    end({kNonsense, 0});
  }
  come.erase(0, come.size() - left.size());
}

bool ScriptRun::hear(const scripting::Message& message) {
  if (waiting_) return false;
  switch (message.kind) {
    case MessageKind::kPrint:
      if (output_.size() + message.content.size() > limits_.output + kLongestCut) return false;
      output_ += message.content;
      return true;
    case MessageKind::kEnded: {
      auto outcome = scripting::OutcomeIn(message.content);
      if (!outcome) return false;
      end(std::move(*outcome));
      return true;
    }
    default: return hearAsk(message);
  }
}

bool ScriptRun::hearAsk(const scripting::Message& message) {
  auto ask = scripting::AskIn(message);
  if (!ask) return false;
  waiting_ = true;
  spent_ += loop_.now() - since_;
  if (ask->kind == MessageKind::kSleep) {
    sleep(base::ToDouble(ask->args.at(0)));
    return true;
  }
  // What it asks for may turn the loop for a while, and the process is listened to meanwhile.
  loop_.post([this, alive = std::weak_ptr(alive_), asked = std::move(*ask)] {
    if (alive.lock() && !ended_) carryOut(asked);
  });
  return true;
}

void ScriptRun::carryOut(const Ask& ask) {
  if (const auto seconds = objects_->waitIn(ask)) return sleep(*seconds);
  const auto objects = objects_;
  // It may be over, and this object gone, before that has been done.
  objects->with(
      ask.object, WorkOf(*objects, ask),
      [this, alive = std::weak_ptr(alive_), objects](const base::Value& value, const base::Failure* failure) {
        if (alive.lock()) answer(value, failure);
      });
}

void ScriptRun::sleep(double seconds) {
  const double bounded = seconds > 0 ? std::min(seconds, kLongestSleep) : 0;
  const auto time = std::chrono::duration_cast<base::Milliseconds>(std::chrono::duration<double>(bounded));
  sleep_->interval(std::max(time, base::Milliseconds(1)));
  sleep_->enabled(true);
}

void ScriptRun::answer(const base::Value& value, const base::Failure* failure) {
  if (ended_) return;
  std::string message;
  try {
    message = failure == nullptr ? scripting::Framed(MessageKind::kAnswer, scripting::Encoded(value))
                                 : scripting::Framed(MessageKind::kFailure, scripting::Encoded(*failure));
  } catch (const base::Failure& tooMuch) {
    message = scripting::Framed(MessageKind::kFailure, scripting::Encoded(tooMuch));
  }
  waiting_ = false;
  since_ = loop_.now();
  child_.send(std::move(message));
}

void ScriptRun::watch() {
  const base::Milliseconds spent = waiting_ ? spent_ : spent_ + (loop_.now() - since_);
  const base::Milliseconds left = limits_.computing + limits_.grace - spent;
  if (!waiting_ && left.count() <= 0) return end({kTooLong, 0});
  watch_->interval(std::max(left, base::Milliseconds(1)));
}

void ScriptRun::stop() { end({kStopped, 0}); }

void ScriptRun::end(scripting::ScriptOutcome outcome) {
  if (std::exchange(ended_, true)) return;
  outcome_ = std::move(outcome);
  for (const auto* timer : {&watch_, &whole_, &sleep_}) (*timer)->enabled(false);
  objects_->close();
  objects_.reset();
  child_.endSoon({});
  loop_.post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.lock()) return;
    const auto told = std::move(told_);  // which may be the end of this object
    told();
  });
}

ScriptRun::Report ScriptRun::report(std::size_t from) const {
  const std::size_t at = std::min(from, output_.size());
  return {name_, !ended_, output_.substr(at), output_.size(), outcome_};
}

}  // namespace standin
