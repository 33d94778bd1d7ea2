#pragma once
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "scripting/Messages.hpp"
#include "standin/process/ChildProgram.hpp"
#include "standin/scripts/ScriptObjects.hpp"

namespace standin {

/// How long a script may go on: `computing` without the time in which it waits for the house, `whole` in all.
/// Its process sees to that itself and names the line; `grace` later it is ended in the midst of a step.
struct ScriptLimits {
  std::chrono::milliseconds computing = std::chrono::seconds(30);
  std::chrono::milliseconds whole = std::chrono::minutes(10);
  std::chrono::milliseconds grace = std::chrono::seconds(2);
  std::size_t output = std::size_t{256} << 10U;
  std::size_t memory = std::size_t{64} << 20U;
};

/// One run of a script, in a process of its own, which asks for what it needs of the house. What comes from
/// there is trusted in nothing: a process that tells anything but what is awaited is ended. All use is on the
/// loop's thread, and nothing waits for the process.
class ScriptRun {
 public:
  struct Parts {
    bus::PollLoop& loop;
    std::shared_ptr<ScriptObjects> objects;
    std::filesystem::path program;
    ScriptLimits limits;
  };
  /// `ended` is called once, on a later turn of the loop, but not after the destructor.
  ScriptRun(const Parts& parts, std::string name, std::string text, std::function<void()> ended);

  /// Ends the process.
  void stop();

  struct Report {
    std::string name;
    bool running = false;
    std::string output;    ///< from the place asked for
    std::size_t next = 0;  ///< where the next report goes on
    scripting::ScriptOutcome outcome;
  };
  [[nodiscard]] Report report(std::size_t from) const;
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] pid_t process() const { return child_.process(); }

 private:
  /// Why its process has ended: by what has ended it, or else by what was told of it.
  [[nodiscard]] std::string reasonOf(const std::string& why) const;
  void come(std::string& come);
  /// Whether that was awaited.
  bool hear(const scripting::Message& message);
  bool hearAsk(const scripting::Message& message);
  void carryOut(const scripting::Ask& ask);
  void sleep(double seconds);
  void answer(const base::Value& value, const base::Failure* failure);
  /// Looks whether it has computed for too long.
  void watch();
  void end(scripting::ScriptOutcome outcome);

  const std::string name_;
  bus::PollLoop& loop_;
  std::shared_ptr<ScriptObjects> objects_;
  const ScriptLimits limits_;
  std::function<void()> told_;
  std::string output_;
  bool waiting_ = false;  ///< the process, for the house
  bool ended_ = false;
  base::Milliseconds since_;     ///< when it began to compute
  base::Milliseconds spent_{0};  ///< before that
  scripting::ScriptOutcome outcome_;
  std::unique_ptr<base::Timer> watch_;
  std::unique_ptr<base::Timer> whole_;
  std::unique_ptr<base::Timer> sleep_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  ChildProgram child_;
};

}  // namespace standin
