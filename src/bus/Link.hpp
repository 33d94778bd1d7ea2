#pragma once
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "bus/CallQueue.hpp"
#include "bus/Exports.hpp"
#include "bus/Introspection.hpp"
#include "bus/Marshal.hpp"
#include "bus/Message.hpp"
#include "bus/Patience.hpp"
#include "bus/PollLoop.hpp"
#include "bus/ReplyLimit.hpp"
#include "bus/Serving.hpp"

namespace bus {

/// The wire behind a Connection and its proxies. The bus library must not be entered again from within its
/// own callbacks; so they only queue what comes, and calls are served from the queue, outside of it. That
/// way serving a call may itself call and wait.
class Link : public References, public std::enable_shared_from_this<Link> {
 public:
  /// Connects. Throws 462 when there is no bus.
  static std::shared_ptr<Link> connect(PollLoop& loop, const std::string& address);
  Link(PollLoop& loop, Bus bus);

  /// Disconnects for good; further calls fail with 462.
  void close();
  [[nodiscard]] bool alive() const { return alive_; }
  /// As `Connection::replyWithin`.
  void replyWithin(std::optional<base::Milliseconds> limit);
  /// As `Connection::waitLongFor`.
  void waitLongFor(const std::string& name) { longFor_ = name; }
  /// As `Connection::servesStranger`.
  [[nodiscard]] bool servesStranger() {
    const std::string sender = serving_.sender();
    return !sender.empty() && isStranger(sender);
  }

  /// A call to be filled with arguments. It doesn't start a service. Throws 438 for an operation name that
  /// the bus can't carry.
  Draft newCall(const std::string& name, const std::string& path, const char* interface,
                const std::string& member);
  /// Sends a call and waits for its reply, serving meanwhile. Throws the failure that came back.
  Message call(const Message& message, Patience patience = Patience::kCall);
  /// Sends without waiting for anything.
  void send(const Message& message);
  /// Calls an operation of the bus itself, with no timers meanwhile.
  Message callDaemon(const std::string& member, const std::vector<base::Value>& args);
  /// The same for what may take long: waits as openly as its caller, and fails when the loop is asked to
  /// quit.
  Message callDaemonLong(const std::string& member, const std::vector<base::Value>& args);

  base::ObjectRef resolve(const Address& address, const std::string& sender) override;
  Address addressOf(const base::ObjectRef& object, const std::string& receiver) override;

  /// The introspection of a remote object, kept until its process goes; null when it has none.
  std::shared_ptr<const NodeInfo> describe(const std::string& name, const std::string& path);
  std::string introspect(const std::string& name, const std::string& path);
  /// A proxy that had been received has gone: its owner is told.
  void release(const std::string& name, const std::string& path);

  void addOwnName(const std::string& name) { ownNames_.insert(name); }
  [[nodiscard]] const std::string& uniqueName() const { return uniqueName_; }
  void onNameLost(const std::string& name, std::function<void()> gone) { lostNames_[name] = std::move(gone); }
  void onDisconnect(std::function<void()> gone) { disconnected_ = std::move(gone); }
  Exports& exports() { return exports_; }

 private:
  Draft daemonMessage(const std::string& member, const std::vector<base::Value>& args);
  struct Waiting;

  std::string descriptionIn(sd_bus_message* error, const sd_bus_error& told);
  void start();
  void process();
  void refresh();
  void waitOnce(const Waiting& waiting);
  /// Until the reply is there. Throws 462 when it can't come any more, or not in time.
  void waitFor(const Waiting& waiting, bool untilQuit);
  /// True for a process that nobody vouches for.
  [[nodiscard]] bool isStranger(const std::string& destination);
  void serve(const Message& call);
  void serveSoon();
  void servePosted();
  void giveUpStuck();
  void waitForBus();
  void lost();
  int received(sd_bus_message* message);
  void nameLost(const std::string& name);
  [[nodiscard]] base::Milliseconds timeout() const;
  std::string holderOf(const std::string& receiver);

  PollLoop& loop_;
  Bus bus_;
  bool alive_ = true;
  std::string uniqueName_;
  Slot filter_;
  std::unique_ptr<PollLoop::Watch> watch_;
  CallQueue calls_;
  Serving serving_;
  bool servesSoon_ = false;
  std::vector<const Waiting*> waits_;  // the innermost last
  ReplyLimit replyLimit_;
  std::string longFor_;  // whose replies may take long; empty for everybody's
  int strangers_ = 0;    // that are waited for
  Exports exports_;
  std::set<std::string> ownNames_;
  std::map<std::string, std::string> owners_;  // well-known names of others, as far as asked for
  std::map<std::string, std::function<void()>> lostNames_;
  std::function<void()> disconnected_;
  std::map<std::pair<std::string, std::string>, std::shared_ptr<const NodeInfo>> descriptions_;
};

}  // namespace bus
