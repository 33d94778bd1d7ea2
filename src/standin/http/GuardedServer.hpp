#pragma once
#include <httplib.h>

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <mutex>

namespace standin {

/// A connection of the web's that is open now.
struct WebConnection {
  socket_t socket = INVALID_SOCKET;
  bool waits = false;  ///< for something to read
  bool ended = false;  ///< to make room
};

/// The connections that are open, so that room can be made and all can be ended. Thread-safe.
class WebConnections {
 public:
  using Entry = std::list<WebConnection>::iterator;

  Entry add(socket_t socket);
  void remove(Entry entry);
  void waits(Entry entry, bool value);
  [[nodiscard]] std::size_t count() const;
  [[nodiscard]] bool ending() const;
  /// Ends the oldest one that waits for its peer. When all are at work it is the next one that begins to
  /// wait, unless one has gone by itself before.
  void makeRoom();
  /// Ends what is read, now and of connections yet to come; what is being answered may go on.
  void endReading();
  /// Ends them all.
  void endAll();

 private:
  static void end(WebConnection& connection);

  mutable std::mutex mutex_;
  std::list<WebConnection> open_;  ///< the oldest first
  int owed_ = 0;                   ///< so many are still to make room
  bool ending_ = false;
};

/// What one connection may take.
struct WebLimits {
  std::size_t connections = 96;  ///< at once; beyond that the one that has kept us waiting longest goes
  std::size_t threads = 96;
  std::size_t head = 64U << 10U;      ///< bytes of a request before its body
  std::size_t request = 4U << 20U;    ///< bytes of a request in all, as sent
  std::size_t leftOver = 32U << 20U;  ///< bytes of a refused body that are still taken, unread
  std::chrono::seconds whole{20};     ///< for a request to be there in full
  std::chrono::seconds idle{2};       ///< between two requests
  std::chrono::seconds drained{5};    ///< for the rest of a refused body
  std::chrono::seconds answered{15};  ///< for each piece of an answer to be taken
  int requests = 100;                 ///< on one connection
};

/// A web server that no peer can hold up: by sending slowly or without end, by not reading, or by opening
/// more and more connections.
class GuardedServer : public httplib::Server {
 public:
  GuardedServer() : GuardedServer(WebLimits()) {}
  explicit GuardedServer(const WebLimits& limits);

  /// Stops listening and ends all connections; answers under way have a moment left.
  void stopNow();

 private:
  bool process_and_close_socket(socket_t socket) override;

  WebLimits limits_;
  WebConnections connections_;
};

}  // namespace standin
