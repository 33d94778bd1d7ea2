#pragma once
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "standin/house/LoopGate.hpp"
#include "standin/scripts/LuaScript.hpp"
#include "standin/scripts/ScriptObjects.hpp"

namespace standin {

/// How long a script may go on: `computing` without the time in which it waits for the house, `whole` in all.
struct ScriptLimits {
  std::chrono::milliseconds computing = std::chrono::seconds(30);
  std::chrono::milliseconds whole = std::chrono::minutes(10);
  std::size_t output = std::size_t{256} << 10U;
};

/// One run of a script: what its thread and the loop both know of it. The thread reaches the house through a
/// gate, so that the loop goes on whatever the script does.
class ScriptRun : public ScriptHouse {
 public:
  ScriptRun(std::string name, base::Loop& loop, const std::shared_ptr<ScriptObjects>& objects,
            ScriptLimits limits);

  base::Value call(std::int32_t object, const std::string& name, base::Args args) override;
  base::Value get(std::int32_t object, const std::string& name) override;
  void put(std::int32_t object, const std::string& name, const base::Value& value) override;
  bool isField(std::int32_t object, const std::string& name) override;
  void sleep(double seconds) override;
  void print(std::string_view text) override;
  const char* endReason() override;

  /// On the script's thread: runs the text to its end, then calls `ended` unless the run was abandoned.
  void run(const std::string& text, const std::function<void()>& ended);

  /// On the loop's thread.
  void stop();
  /// True when it should have ended `grace` ago and goes on nevertheless.
  [[nodiscard]] bool overdue(std::chrono::milliseconds grace);
  /// Nobody waits for the end of it any longer. False when it has ended already.
  bool abandon();
  /// Waits for the end; false when the limit passes before it.
  bool waitForEnd(std::chrono::milliseconds limit);

  struct Report {
    std::string name;
    bool running = false;
    std::string output;    ///< from the place asked for
    std::size_t next = 0;  ///< where the next report goes on
    ScriptOutcome outcome;
  };
  [[nodiscard]] Report report(std::size_t from);
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  using Clock = std::chrono::steady_clock;
  using Work = std::function<base::Value(ScriptObjects& objects, base::Object& object)>;
  base::Value ask(std::int32_t object, Work work);
  const char* reasonAt(Clock::time_point now);

  const std::string name_;
  const std::weak_ptr<ScriptObjects> objects_;  // they end on the loop's thread
  const ScriptLimits limits_;
  LoopGate gate_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string output_;
  bool cut_ = false;
  bool stopped_ = false;
  bool ended_ = false;
  bool abandoned_ = false;
  bool waiting_ = false;  ///< for the house
  Clock::time_point begun_ = Clock::now();
  Clock::duration waited_{0};
  Clock::time_point stoppedAt_;
  ScriptOutcome outcome_;
};

}  // namespace standin
