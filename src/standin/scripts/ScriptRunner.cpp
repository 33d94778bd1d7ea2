#include "standin/scripts/ScriptRunner.hpp"

#include <utility>

namespace standin {
namespace {

constexpr base::Milliseconds kWatchInterval = std::chrono::milliseconds(500);
constexpr std::chrono::seconds kGrace{2};

}  // namespace

ScriptRunner::ScriptRunner(bus::PollLoop& loop, bus::Connection& connection, House& house,
                           PluginKeeper& plugin, base::ObjectRef host, ScriptLimits limits)
    : loop_(loop),
      connection_(connection),
      house_(house),
      plugin_(plugin),
      host_(std::move(host)),
      limits_(limits),
      watch_(loop.makeTimer(kWatchInterval, [this] { watch(); })) {}

ScriptRunner::~ScriptRunner() {
  if (!running()) return;
  run_->stop();
  run_->abandon();
  if (run_->waitForEnd(kGrace)) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

bool ScriptRunner::start(const std::string& name, const std::string& text) {
  if (running()) return false;
  ++number_;
  objects_ = std::make_shared<ScriptObjects>(loop_, connection_, plugin_, host_);
  run_ = std::make_shared<ScriptRun>(name, loop_, objects_, limits_);
  house_.log.write("Info", "Script " + name + " is run");
  thread_ = std::thread([this, run = run_, text, &loop = loop_, alive = std::weak_ptr(alive_)] {
    run->run(text, [&] {
      loop.post([this, run, alive] {
        if (alive.lock() && run == run_) ended();
      });
    });
  });
  watch_->enabled(true);
  house_.live.tell("script", "{}");
  return true;
}

void ScriptRunner::ended() {
  if (!running()) return;
  thread_.join();
  watch_->enabled(false);
  objects_.reset();
  const ScriptOutcome outcome = run_->report(0).outcome;
  if (!outcome.error.empty()) house_.log.write("Warning", "Script " + run_->name() + ": " + outcome.error);
  house_.live.tell("script", "{}");
  onEnd();
}

void ScriptRunner::watch() {
  if (!running() || !run_->overdue(kGrace)) return;
  // One step of the language that takes for ever, such as the search for a hostile pattern.
  run_->stop();
  if (!run_->abandon()) return;  // it has just ended
  thread_.detach();
  watch_->enabled(false);
  objects_.reset();
  house_.log.write("Warning", "Script " + run_->name() + " could not be stopped");
  house_.live.tell("script", "{}");
  onEnd();
}

void ScriptRunner::stop() {
  if (running()) run_->stop();
}

std::optional<ScriptRun::Report> ScriptRunner::report(std::size_t from) const {
  if (!run_) return std::nullopt;
  return run_->report(from);
}

}  // namespace standin
