#include "standin/scripts/ScriptRunner.hpp"

#include <utility>

namespace standin {
namespace {

/// Each call that turns the loop has its place on the stack above those before it.
constexpr std::size_t kMostLeft = 4;

}  // namespace

ScriptRunner::ScriptRunner(bus::PollLoop& loop, bus::Connection& connection, House& house,
                           PluginKeeper& plugin, base::ObjectRef host, Options options)
    : loop_(loop),
      connection_(connection),
      house_(house),
      plugin_(plugin),
      host_(std::move(host)),
      options_(std::move(options)) {}

std::string ScriptRunner::start(const std::string& name, const std::string& text) {
  if (running_) return "A script is running; stop it first";
  std::erase_if(left_, [](const auto& each) { return each.expired(); });
  if (left_.size() >= kMostLeft) return "What stopped scripts have asked for is still being done";
  ++number_;
  const auto objects = std::make_shared<ScriptObjects>(loop_, connection_, plugin_, host_);
  left_.push_back(objects);
  house_.log.write("Info", "Script " + name + " is run");
  running_ = true;
  run_ = std::make_unique<ScriptRun>(ScriptRun::Parts{loop_, objects, options_.program, options_.limits},
                                     name, text, [this] { ended(); });
  house_.live.tell("script", "{}");
  return {};
}

void ScriptRunner::ended() {
  running_ = false;
  const scripting::ScriptOutcome outcome = run_->report(0).outcome;
  if (!outcome.error.empty()) house_.log.write("Warning", "Script " + run_->name() + ": " + outcome.error);
  house_.live.tell("script", "{}");
  onEnd();
}

void ScriptRunner::stop() {
  if (running_) run_->stop();
}

std::optional<ScriptRun::Report> ScriptRunner::report(std::size_t from) const {
  if (!run_) return std::nullopt;
  return run_->report(from);
}

}  // namespace standin
