#include "standin/player/PluginKeeper.hpp"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kFirstPause = std::chrono::seconds(1);
constexpr base::Milliseconds kLongestPause = std::chrono::seconds(60);
constexpr base::Milliseconds kStable = std::chrono::seconds(60);
constexpr base::Milliseconds kStatusInterval = std::chrono::milliseconds(20);
constexpr base::Milliseconds kDelayInterval = std::chrono::seconds(1);
/// Until InitIO has answered a plug-in opens its library and reads its names, which takes seconds where there
/// are many. From then on it answers at once, and is seen to hang like one that is ready.
constexpr base::Milliseconds kLongStart = std::chrono::seconds(15);
/// What a plug-in writes as an error when its start fails behind InitIO.
constexpr const char* kStartFailed = "Media Player background initialization FAILED";
constexpr std::size_t kErrorsLookedAt = 100;
constexpr base::Milliseconds kFailedInterval = std::chrono::seconds(3);
constexpr base::Milliseconds kLongEnd = std::chrono::seconds(10);
constexpr base::Milliseconds kGrace = std::chrono::seconds(5);

}  // namespace

std::string NameOf(PluginPhase state) {
  switch (state) {
    case PluginPhase::kStarting: return "starting";
    case PluginPhase::kReady: return "ready";
    case PluginPhase::kFailed: return "failed";
    case PluginPhase::kLost: return "lost";
    case PluginPhase::kStopped: break;
  }
  return "stopped";
}

PluginKeeper::PluginKeeper(bus::PollLoop& loop, bus::Connection& connection, House& house,
                           base::ObjectRef callback, Address address)
    : loop_(loop),
      connection_(connection),
      house_(house),
      callback_(std::move(callback)),
      address_(std::move(address)),
      pause_(kFirstPause),
      startTimer_(loop.makeTimer(base::Milliseconds(1), [this] { launch(); })),
      statusTimer_(loop.makeTimer(kStatusInterval, [this] { askStatus(); })),
      delayTimer_(loop.makeTimer(kDelayInterval, [this] { lookForDelay(); })),
      pulse_(loop, {.ask =
                        [this] {
                          if (busy_ || launching_ || !vxif_ || state_ != PluginPhase::kReady) return;
                          command([](base::Object& vxif) { vxif.call("InterfaceStatus"); },
                                  [](const std::string&) {});
                        },
                    .wanted = [this] { return house_.live.readers() > 0; },
                    .changed = [this] { lookForDelay(); }}) {
  connection_.onNameLost(address_.name, [this] { lost(); });
  connection_.waitLongFor(address_.name);
}

PluginKeeper::~PluginKeeper() {
  connection_.onNameLost(address_.name, [] {});
}

void PluginKeeper::enter(PluginPhase state, std::string reason) {
  if (state == PluginPhase::kStarting && state_ != state) startingSince_ = loop_.now();
  state_ = state;
  reason_ = std::move(reason);
  delayTimer_->enabled(state == PluginPhase::kStarting);
  if (state == PluginPhase::kReady) pulse_.start();
  lookForDelay();
  house_.live.tell("frame", "{}");
  for (const auto& heard : phaseHeard_) heard(state);
}

void PluginKeeper::start() {
  startTimer_->interval(base::Milliseconds(1));
  startTimer_->enabled(true);
}

void PluginKeeper::startAgain() {
  if (ending_) return;
  house_.log.write("Info", "The plug-in is started again");
  pause_ = kFirstPause;
  toldReason_.clear();
  if (launching_) {
    // It hangs in the calls of its start. Its end makes them fail, and that starts it again.
    const std::uint32_t hung = process();
    signal(hung, SIGTERM);
    endWithin(kGrace);
    startingSince_ = loop_.now();
    return;
  }
  if (vxif_) {
    ending_ = true;  // its end is wanted, not a loss
    shutDown(stuck_ ? kGrace : kLongEnd);
    ending_ = false;
    if (loop_.quitting()) return;
    house_.forgetPlugin();
  }
  startingSince_ = loop_.now();
  enter(PluginPhase::kStarting, {});
  start();
}

void PluginKeeper::launch() {
  if (launching_) return;  // the timer comes again
  startTimer_->enabled(false);
  if (ending_ || vxif_) return;
  launching_ = true;
  launchSteps();
  launching_ = false;
}

void PluginKeeper::launchSteps() {
  linesBefore_ = house_.log.lastId();
  refused_ = false;
  statusTimer_->interval(kStatusInterval);
  enter(PluginPhase::kStarting, {});
  std::string refusal;
  base::ObjectRef vxif;
  try {
    loop_.whileOpen([&] {
      // Somebody may have started it by hand.
      if (!connection_.hasOwner(address_.name)) connection_.startService(address_.name);
      vxif = vxif_ = connection_.proxy(address_.name, address_.path);
      if (loop_.quitting()) return;
      vxif->invoke("RegisterCallback", callback_);
      name_ = base::ToText(vxif->call("Name"));
      refusal = base::ToText(vxif->invoke("InitIO", std::int32_t{house_.webPort}));
    });
  } catch (...) {
    const base::Failure failure = base::CurrentFailure();
    if (ending_ || loop_.quitting() || state_ == PluginPhase::kLost)
      return;  // its loss has been seen to already
    vxif_ = nullptr;
    house_.forgetPlugin();
    const std::string reason = "The plug-in could not be started: " + failure.description();
    if (reason != toldReason_) house_.log.write("Error", reason);  // one line, however often it is tried
    toldReason_ = reason;
    enter(PluginPhase::kLost, reason);
    restartLater();
    return;
  }
  if (ending_ || loop_.quitting() || vxif_ != vxif) return;
  if (!refusal.empty()) {
    house_.log.write("Error", "The plug-in has refused to start: " + refusal);
    refused_ = true;
    enter(PluginPhase::kFailed, refusal);
    return;
  }
  if (state_ == PluginPhase::kStarting) statusTimer_->enabled(true);
}

void PluginKeeper::askStatus() {
  if (busy_ || launching_ || !vxif_) return;
  const auto ready = std::make_shared<std::optional<bool>>();
  ask({[ready](base::Object& vxif) { *ready = base::ToInt16(vxif.call("InterfaceStatus")) == 0; },
       [this, ready](const std::string&) {
         if (*ready) hearStatus(**ready);
       },
       true});
}

void PluginKeeper::hearStatus(bool ready) {
  if (state_ != PluginPhase::kStarting && state_ != PluginPhase::kFailed) return;
  if (ready) {
    statusTimer_->enabled(false);
    toldReason_.clear();
    readySince_ = loop_.now();
    enter(PluginPhase::kReady, {});
    return;
  }
  if (state_ == PluginPhase::kFailed) return;
  // A plug-in whose start fails behind InitIO stays as it is for good, and has no other way to say so than
  // this one line; one that gets ready all the same is taken for ready.
  const std::vector<LogLine> errors = house_.log.newest(kErrorsLookedAt, "Error");
  const auto failed = std::find_if(errors.begin(), errors.end(), [&](const LogLine& line) {
    return line.id > linesBefore_ && line.text.starts_with(kStartFailed);
  });
  if (failed == errors.end()) return;
  statusTimer_->interval(kFailedInterval);
  enter(PluginPhase::kFailed, failed->text);
}

void PluginKeeper::lost() {
  if (forceTimer_) forceTimer_->enabled(false);
  if (ending_ || !vxif_) return;
  vxif_ = nullptr;
  statusTimer_->enabled(false);
  house_.forgetPlugin();
  if (refused_) return;  // it would refuse again; the reason stays on the page
  if (state_ == PluginPhase::kReady && loop_.now() - readySince_ >= kStable) pause_ = kFirstPause;
  house_.log.write("Error", "The plug-in has been lost");
  enter(PluginPhase::kLost, "The plug-in has ended unexpectedly");
  restartLater();
}

void PluginKeeper::restartLater() {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(pause_).count();
  if (pause_ < kLongestPause) {
    house_.log.write("Info", "The plug-in is started again in " + std::to_string(seconds) +
                                 (seconds == 1 ? " second" : " seconds"));
  }
  startTimer_->interval(pause_);
  startTimer_->enabled(true);
  pause_ = std::min(pause_ * 2, kLongestPause);
}

std::string PluginKeeper::failureOf(const Waiting& waiting) {
  const base::ObjectRef vxif = vxif_;  // it may be lost while it is being called
  if (!vxif || (state_ == PluginPhase::kFailed && !waiting.evenIfFailed)) return "The plug-in isn't running";
  try {
    loop_.whileOpen([&] { waiting.command(*vxif); });
    return {};
  } catch (...) {
    const base::Failure caught = base::CurrentFailure();
    return caught.number() == base::number::kHostGone ? "The plug-in has gone" : caught.description();
  }
}

void PluginKeeper::command(Command command, Done done) { ask({std::move(command), std::move(done)}); }

void PluginKeeper::ask(Waiting waiting) {
  waiting_.push_back(std::move(waiting));
  runCommands();
}

void PluginKeeper::runCommands() {
  if (busy_) return;
  busy_ = true;
  while (!waiting_.empty()) {
    const Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    pulse_.begins();
    const std::string failure = failureOf(next);
    pulse_.ends();
    try {
      next.done(failure);
    } catch (...) {  // whoever has asked; the others still wait for their turn
      house_.log.write("Error",
                       "What a command has answered is lost: " + base::CurrentFailure().description());
    }
  }
  busy_ = false;
}

void PluginKeeper::shutDown(base::Milliseconds limit) {
  const base::ObjectRef vxif = std::exchange(vxif_, nullptr);
  if (!vxif) return;
  endWithin(limit);
  try {
    loop_.whileOpen([&] { vxif->call("ShutdownIO"); });
  } catch (...) {
    // It ends instead of answering.
    if (base::CurrentFailure().number() != base::number::kHostGone) {
      house_.log.write("Warning",
                       "The plug-in did not end as asked: " + base::CurrentFailure().description());
    }
  }
  if (forceTimer_) forceTimer_->enabled(false);
}

void PluginKeeper::lookForDelay() {
  const bool starting = state_ == PluginPhase::kStarting && loop_.now() - startingSince_ >= kLongStart;
  const bool stuck = !ending_ && (starting || pulse_.silent());
  if (stuck == stuck_) return;
  stuck_ = stuck;
  if (stuck) house_.log.write("Warning", "The plug-in takes long to answer");
  house_.live.tell("frame", "{}");
}

std::uint32_t PluginKeeper::process() {
  std::uint32_t process = 0;
  try {
    process = connection_.processOf(address_.name);
  } catch (const base::Failure&) {  // there is none
  }
  return process == static_cast<std::uint32_t>(::getpid()) ? 0 : process;
}

void PluginKeeper::signal(std::uint32_t process, int number) {
  // A number that has lost the name may be somebody else's by now.
  if (process != 0 && process == this->process()) ::kill(static_cast<pid_t>(process), number);
}

void PluginKeeper::endWithin(base::Milliseconds limit) {
  const std::uint32_t toEnd = process();
  if (toEnd == 0) return;
  forceTimer_ = loop_.makeTimer(limit, [this, toEnd] {
    forceTimer_->enabled(false);
    signal(toEnd, SIGKILL);
  });
  forceTimer_->enabled(true);
}

void PluginKeeper::stop(base::Milliseconds limit) {
  ending_ = true;
  startTimer_->enabled(false);
  statusTimer_->enabled(false);
  shutDown(limit);
  enter(PluginPhase::kStopped, {});
}

}  // namespace standin
