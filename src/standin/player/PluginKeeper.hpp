#pragma once
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bus/Connection.hpp"
#include "bus/PollLoop.hpp"
#include "standin/house/House.hpp"
#include "standin/player/Pulse.hpp"

namespace standin {

/// Where the plug-in stands, as its page tells.
enum class PluginPhase { kStopped, kStarting, kReady, kFailed, kLost };

/// "stopped", "starting", "ready", "failed", "lost".
std::string NameOf(PluginPhase state);

/// Starts the plug-in, hands it the callback object, hears when it is ready, starts it again with a growing
/// pause when it is lost, and ends it. Commands to it wait for each other, so that a page can't pile them up.
class PluginKeeper {
 public:
  /// The bus name and object that the plug-in is known by.
  struct Address {
    std::string name = "org.vantorix.vxif_WMP9";
    std::string path = "/vxif";
  };

  PluginKeeper(bus::PollLoop& loop, bus::Connection& connection, House& house, base::ObjectRef callback)
      : PluginKeeper(loop, connection, house, std::move(callback), Address()) {}
  PluginKeeper(bus::PollLoop& loop, bus::Connection& connection, House& house, base::ObjectRef callback,
               Address address);
  ~PluginKeeper();
  PluginKeeper(const PluginKeeper&) = delete;
  PluginKeeper& operator=(const PluginKeeper&) = delete;
  PluginKeeper(PluginKeeper&&) = delete;
  PluginKeeper& operator=(PluginKeeper&&) = delete;

  /// Starts it on the next turn of the loop.
  void start();
  /// Ends the plug-in if it runs, by force if it has to be, and starts it anew.
  void startAgain();
  /// True when its start takes long, or it doesn't answer: the user may want to start it again. A plug-in
  /// that hangs is seen within three seconds while a page is open.
  [[nodiscard]] bool stuck() const { return stuck_; }
  /// Has the plug-in end, and waits for it, by force after `limit`.
  void stop(base::Milliseconds limit = std::chrono::seconds(10));
  /// Ends the plug-in by force when `stop` has not ended it in that time: a call to it may be under way, and
  /// nothing returns before that call does.
  void endWithin(base::Milliseconds limit);

  using Command = std::function<void(base::Object& vxif)>;
  /// The text is empty, or says what has gone wrong.
  using Done = std::function<void(const std::string& failure)>;
  /// Runs the command when those before it have ended. `done` is called in every case.
  void command(Command command, Done done);

  /// Adds a listener, for good: called whenever the plug-in enters a phase, also the one that it is in.
  void onPhase(std::function<void(PluginPhase phase)> heard) { phaseHeard_.push_back(std::move(heard)); }
  [[nodiscard]] PluginPhase state() const { return state_; }
  /// Why it failed or was lost; empty otherwise.
  [[nodiscard]] const std::string& reason() const { return reason_; }
  /// The interface name of its devices, as it gave it; empty before it has started.
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  struct Waiting {
    Command command;
    Done done;
    bool evenIfFailed = false;  ///< also to a plug-in whose start has failed
  };
  void launch();
  void launchSteps();
  void askStatus();
  void hearStatus(bool ready);
  void ask(Waiting waiting);
  void lost();
  void restartLater();
  void runCommands();
  void enter(PluginPhase state, std::string reason);
  /// Calls the plug-in. Answers why it failed; an empty text where it did not.
  std::string failureOf(const Waiting& waiting);
  void shutDown(base::Milliseconds limit);
  void lookForDelay();
  [[nodiscard]] std::uint32_t process();
  void signal(std::uint32_t process, int number);

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  House& house_;
  base::ObjectRef callback_;
  Address address_;
  base::ObjectRef vxif_;
  PluginPhase state_ = PluginPhase::kStopped;
  std::string reason_;
  std::string name_;
  std::string toldReason_;  ///< of a start that failed, as the log has it
  std::vector<std::function<void(PluginPhase)>> phaseHeard_;
  std::deque<Waiting> waiting_;
  bool busy_ = false;
  bool launching_ = false;
  bool ending_ = false;
  bool stuck_ = false;
  bool refused_ = false;  ///< by InitIO's answer
  base::Milliseconds startingSince_{0};
  std::int64_t linesBefore_ = 0;  ///< in the log when the start began
  base::Milliseconds pause_;
  base::Milliseconds readySince_{0};
  std::unique_ptr<base::Timer> startTimer_;
  std::unique_ptr<base::Timer> statusTimer_;
  std::unique_ptr<base::Timer> forceTimer_;
  std::unique_ptr<base::Timer> delayTimer_;
  Pulse pulse_;
};

}  // namespace standin
