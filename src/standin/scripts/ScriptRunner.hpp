#pragma once
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "standin/house/House.hpp"
#include "standin/scripts/ScriptRun.hpp"

namespace standin {

/// Runs one script at a time, each in a process of its own. All use is on the loop's thread.
class ScriptRunner {
 public:
  struct Options {
    std::filesystem::path program;
    ScriptLimits limits{};
  };
  ScriptRunner(bus::PollLoop& loop, bus::Connection& connection, House& house, PluginKeeper& plugin,
               base::ObjectRef host, Options options);

  /// Empty when it has started it, or why not: another one runs, or too much of what those before it have
  /// asked for is still being done.
  std::string start(const std::string& name, const std::string& text);
  void stop();
  [[nodiscard]] bool running() const { return running_; }
  /// Of the script that runs; -1 where there is none.
  [[nodiscard]] pid_t process() const { return run_ ? run_->process() : -1; }
  /// Of the script that runs or ran last; nothing when there was none. The output is told from `from` on.
  [[nodiscard]] std::optional<ScriptRun::Report> report(std::size_t from) const;
  /// Counts the runs, so that a page can tell them apart.
  [[nodiscard]] int number() const { return number_; }
  /// Called when a script has ended, however it did, and another one may be started.
  std::function<void()> onEnd = [] {};

 private:
  void ended();

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  House& house_;
  PluginKeeper& plugin_;
  base::ObjectRef host_;
  Options options_;
  int number_ = 0;
  bool running_ = false;
  std::unique_ptr<ScriptRun> run_;
  /// Of scripts that have ended: each is there for as long as a call of its script is under way.
  std::vector<std::weak_ptr<ScriptObjects>> left_;
};

}  // namespace standin
