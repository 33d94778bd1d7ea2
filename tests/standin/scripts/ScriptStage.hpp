#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standin/scripts/ScriptRunner.hpp"
#include "support/BusDaemon.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// An object of the house that notes what it is asked, and answers as it is told to.
class NotingObject : public base::Object {
 public:
  using Object::call;
  base::Value call(std::string_view name, base::Args& args) override {
    calls.emplace_back(name);
    const auto found = does.find(std::string(name));
    return found == does.end() ? base::Value() : found->second(args);
  }
  base::Value get(std::string_view) override { return base::Value(std::int32_t{7}); }
  void put(std::string_view name, const base::Value&) override { calls.emplace_back(name); }

  std::vector<std::string> calls;
  std::map<std::string, std::function<base::Value(base::Args&)>> does;
};

/// Scripts in processes of their own, with a house that is made up.
class ScriptStage : public testing::Test {
 protected:
  standin::ScriptRunner& runnerWith(standin::ScriptLimits limits,
                                    const std::filesystem::path& program = SCRIPT_PROGRAM) {
    runner_ = std::make_unique<standin::ScriptRunner>(
        loop, connection_, house, plugin, host,
        standin::ScriptRunner::Options{.program = program, .limits = limits});
    return *runner_;
  }
  bool eventually(const std::function<bool()>& condition) {
    return Eventually([&] {
      loop.turn(std::chrono::milliseconds(20));
      return condition();
    });
  }
  bool ends(const standin::ScriptRunner& runner) {
    return eventually([&] { return !runner.running(); });
  }
  /// What it has ended with.
  std::string errorOf(standin::ScriptRunner& runner, const std::string& text) {
    EXPECT_EQ(runner.start("test", text), "");
    EXPECT_TRUE(ends(runner));
    return runner.report(0)->outcome.error;
  }
  /// Whether there is such a process, dead ones that nobody has asked for included.
  static bool isThere(pid_t process) { return ::kill(process, 0) == 0; }

  bus::PollLoop loop;
  TempFolder folder;
  standin::House house{folder.path() / "data"};
  std::shared_ptr<NotingObject> host = std::make_shared<NotingObject>();

 private:
  BusDaemon bus_;
  bus::Connection connection_{loop, bus_.address()};

 protected:
  standin::PluginKeeper plugin{loop, connection_, house, nullptr};

 private:
  std::unique_ptr<standin::ScriptRunner> runner_;
};

}  // namespace support
