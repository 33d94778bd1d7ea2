#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Object.hpp"
#include "bus/PollLoop.hpp"

namespace bus {

class Link;

/// One connection to a message bus: calls objects of other processes by name and serves this process's own.
///
/// While a call waits for its reply, incoming calls are served and nothing else; inside
/// `PollLoop::whileOpen` the loop's timers, posted work and watches run too. All use is on the loop's thread.
class Connection {
 public:
  /// Connects to `address`, or to the session bus when it is empty. Throws 462 when there is no bus.
  explicit Connection(PollLoop& loop, const std::string& address = {});
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  Connection(Connection&&) = delete;
  Connection& operator=(Connection&&) = delete;

  /// Takes a well-known name. Throws number 457 when another process has it.
  void claimName(const std::string& name);
  /// This connection's unique name.
  [[nodiscard]] std::string uniqueName() const;

  /// Serves `object` at `path` until `withdraw`. A local object that is sent as a value without having been
  /// exported gets a path of its own below /objects.
  void exportObject(const std::string& path, base::ObjectRef object);
  void withdraw(const std::string& path);

  /// The object of another process. No call is made yet. `name` is a unique or well-known bus name.
  base::ObjectRef proxy(const std::string& name, const std::string& path);
  /// Has the bus start the service of that name if it does not run (it is activated from its service file).
  /// Throws 429 with the bus's own words when it can't be started, or when the loop is asked to quit
  /// meanwhile inside `PollLoop::whileOpen`.
  void startService(const std::string& name);
  /// True when some process owns the name now.
  bool hasOwner(const std::string& name);
  /// The operating system's number of the process behind a name, 0 when it is unknown.
  std::uint32_t processOf(const std::string& name);

  /// From now on replies are waited for until `limit` has passed, by the calls that are under way and by
  /// later ones together: what is not there by then is failure 462, though the calls are sent. Without a
  /// limit a reply may again take as long as any. For a process that has been told to end.
  void replyWithin(std::optional<base::Milliseconds> limit);

  /// From now on only the process that owns `name` may take as long as it likes with a reply, and not with
  /// that to the reading of a field. Any other gets some seconds, is waited for with the loop open and until
  /// the loop is asked to quit, and only a few are waited for at once: what they owe then is failure 462.
  void waitLongFor(const std::string& name);
  /// True while a call is served whose sender is none of whom `waitLongFor` was told; not for what the loop
  /// does by itself while such a call turns it.
  [[nodiscard]] bool servesStranger() const;

  /// Calls `gone` on a turn of the loop whenever the name loses its owner. One watcher a name.
  void onNameLost(const std::string& name, std::function<void()> gone);
  /// Calls `gone` on a turn of the loop when the bus itself has gone.
  void onDisconnect(std::function<void()> gone);
  /// The bus name that a proxy made by any connection refers to, empty for a local object.
  static std::string peerOf(const base::Object& object);
  /// The path that a proxy refers to, empty for a local object.
  static std::string pathOf(const base::Object& object);

  /// The introspection text of a remote object (org.freedesktop.DBus.Introspectable).
  std::string introspect(const std::string& name, const std::string& path);

 private:
  std::shared_ptr<Link> link_;  // shared with the proxies, which fail with 462 once it is closed
};

}  // namespace bus
