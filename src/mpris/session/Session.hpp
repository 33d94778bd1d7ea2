#pragma once
#include <sys/types.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "bus/Message.hpp"
#include "bus/PollLoop.hpp"
#include "mpris/session/Exported.hpp"

namespace mpris {

/// Lets go of a connection without waiting until everything has been sent.
struct BusDrop {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};

/// The user's session bus, which may be there or not. Nothing here waits: the way in, the name, calls and
/// replies all come and go on turns of the loop. A bus that is not there, goes, or won't let us in is tried
/// again, at growing intervals.
///
/// Of the calls that come, some wait for their turn and the others on the bus; they are served one a turn, in
/// their order, outside of the bus library and never within each other. While the bus takes nothing, none is.
class Session {
 public:
  struct Parts {
    bus::PollLoop& loop;
    std::function<std::string()> address;  ///< where the bus is now; empty for nowhere
    uid_t user;                            ///< whose bus alone is taken
    std::string name;                      ///< the well-known name; with a number behind it where it is taken
    std::function<void()> opened;          ///< the name is ours
    std::function<void()> flowing;         ///< the bus takes again what it did not take for a while
  };
  Session(Parts parts, const Exported& object);

  /// Looks for the bus from now on.
  void open();
  /// We are on the bus, under our name.
  [[nodiscard]] bool ready() const { return ready_; }
  /// False as well while the bus takes nothing; `flowing` comes afterwards.
  [[nodiscard]] bool canSend();
  /// Tells everybody on the bus.
  void emit(const std::string& interface, const std::string& name, const Values& values);

  static constexpr base::Milliseconds kFirstPause = std::chrono::seconds(1);
  static constexpr base::Milliseconds kLongestPause = std::chrono::minutes(1);
  static constexpr std::size_t kMostHeld = 64;

 private:
  void attempt();
  bool connect(const std::string& address);
  [[nodiscard]] bool isOwn() const;
  void close();
  void lost();
  void process();
  void watchWhat();
  void requestName(const std::string& name);
  void nameAnswered(sd_bus_message* reply);
  int received(sd_bus_message* message);
  void serveSoon();
  void serve();
  void send(const bus::Message& message);
  void post(std::function<void()> work);

  Parts parts_;
  const Exported& object_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();
  std::unique_ptr<base::Timer> retry_;
  std::unique_ptr<base::Timer> timeout_;
  base::Milliseconds pause_ = kFirstPause;
  std::unique_ptr<sd_bus, BusDrop> bus_;
  int generation_ = 0;  ///< of the connection
  bus::Slot filter_;
  bus::Slot naming_;
  int watched_ = -1;
  std::unique_ptr<bus::PollLoop::Watch> watch_;
  std::deque<Exported::Call> calls_;
  bool asked_ = false;  ///< for the name
  bool askedOther_ = false;
  bool ready_ = false;
  bool blocked_ = false;
  bool serving_ = false;
  bool servesSoon_ = false;
};

}  // namespace mpris
