#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "standin/scripts/ScriptRun.hpp"

namespace standin {

/// Runs one script at a time, each on a thread of its own. All use is on the loop's thread.
class ScriptRunner {
 public:
  ScriptRunner(bus::PollLoop& loop, bus::Connection& connection, House& house, PluginKeeper& plugin,
               base::ObjectRef host, ScriptLimits limits);
  ~ScriptRunner();
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;
  ScriptRunner(ScriptRunner&&) = delete;
  ScriptRunner& operator=(ScriptRunner&&) = delete;

  /// False when another one is running.
  bool start(const std::string& name, const std::string& text);
  void stop();
  [[nodiscard]] bool running() const { return thread_.joinable(); }
  /// Of the script that runs or ran last; nothing when there was none. The output is told from `from` on.
  [[nodiscard]] std::optional<ScriptRun::Report> report(std::size_t from) const;
  /// Counts the runs, so that a page can tell them apart.
  [[nodiscard]] int number() const { return number_; }
  /// Called when a script has ended, however it did, and another one may be started.
  std::function<void()> onEnd = [] {};

 private:
  void ended();
  void watch();

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  House& house_;
  PluginKeeper& plugin_;
  base::ObjectRef host_;
  ScriptLimits limits_;
  int number_ = 0;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::shared_ptr<ScriptObjects> objects_;
  std::shared_ptr<ScriptRun> run_;
  std::thread thread_;
  std::unique_ptr<base::Timer> watch_;
};

}  // namespace standin
